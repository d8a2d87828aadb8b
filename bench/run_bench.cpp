// Speed of a run and of a load, on grids of one, two and three dimensions.

#include "core/primitive_update.h"
#include "core/run_driver.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace norvane {
namespace {

/// A grid of gas at rest with a pressure step across it, so that everything moves.
std::string table(int columns, int rows, int layers) {
    std::string text = "DT 1E-6:UT 0";
    text.append(static_cast<std::size_t>(columns - 1), '\t');
    const std::string layerMark = "\nL" + std::string(static_cast<std::size_t>(columns - 1), '\t');
    std::string row = "\n";
    for (int column = 0; column < columns; ++column) {
        if (column > 0) row += '\t';
        if (column < columns / 2) row += "PP 11E4";
    }
    text += layerMark;
    for (int layer = 0; layer < layers; ++layer) {
        for (int k = 0; k < rows; ++k) text += row;
        text += layerMark;
    }
    return text;
}

struct Model {
    SimState sim;
    Interface ui;
};

/// Loads from a folder of its own, which is also the working directory: a build writes its stop file there.
void load(Model& model, int columns, int rows, int layers) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "norvane-bench";
    std::filesystem::create_directories(folder);
    std::filesystem::current_path(folder);
    std::ofstream("bench.gmt", std::ios::binary) << table(columns, rows, layers);
    model.ui.NV_in.Dir1.path = folder.string();
    model.ui.NV_in.File1.selected = "bench.gmt";
    loadGeometry(model.sim, model.ui);
}

void steps(benchmark::State& state) {
    Model model;
    load(model, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    buildModel(model.sim, model.ui);
    model.sim.stageWork = workSlot;
    for (auto _ : state) {
        for (int stage = 1; stage <= 4; ++stage) {
            formWorkState(model.sim, stage);
            updatePrimitives(model.sim, model.ui);
            computeSlopes(model.sim, stage);
        }
    }
    const auto cellSteps = static_cast<double>(state.iterations()) * model.sim.nCells;
    state.counters["cell-steps/s"] = benchmark::Counter(cellSteps, benchmark::Counter::kIsRate);
}

BENCHMARK(steps)->Name("steps/1-D")->Args({10000, 1, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(steps)->Name("steps/2-D")->Args({100, 100, 1})->Args({1000, 1000, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(steps)->Name("steps/3-D")->Args({30, 30, 30})->Args({100, 100, 100})->Unit(benchmark::kMillisecond);

void loadAndBuild(benchmark::State& state) {
    for (auto _ : state) {
        Model model;
        load(model, static_cast<int>(state.range(0)), static_cast<int>(state.range(0)), 1);
        buildModel(model.sim, model.ui);
        benchmark::DoNotOptimize(model.sim.cellVolume[1]);
    }
}

BENCHMARK(loadAndBuild)->Arg(500)->Arg(2000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace norvane
