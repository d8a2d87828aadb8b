// Speed of a run and of a load, on grids of one, two and three dimensions.

#include "core/stage_engine.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"
#include "support/plain_stage.h"

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

/// Grids by their shapes, and what they hold besides gas.
enum Kind { uniform, mixed, walls };

/// Gives every cell coefficients of its own, or lays walls and held cells into every third row.
void vary(SimState& sim, Kind kind) {
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const float factor = 1 + 0.001f * static_cast<float>(cell % 97);
        if (kind == mixed) sim.heatCapacity[cell] *= factor;
        for (int dim = 1; kind == mixed && dim <= sim.nDim; ++dim) {
            sim.inverseSize(cell, dim) *= factor;
            sim.faceArea(cell, dim) *= factor;
            sim.conductionCoef(cell, dim) *= factor;
            sim.viscousCoef(cell, dim) *= factor;
        }
        const std::int32_t row = (cell - 1) / sim.cellCount[1];
        if (kind == walls && row % 3 == 0 && cell % 11 < 3) sim.wallVelocity(cell, 1) = 1;
        if (kind == walls && row % 3 == 0 && cell % 29 == 0) sim.wallTemperature[cell] = -1;
    }
}

void countCellSteps(benchmark::State& state, const SimState& sim) {
    const auto cellSteps = static_cast<double>(state.iterations()) * sim.nCells;
    state.counters["cell-steps/s"] = benchmark::Counter(cellSteps, benchmark::Counter::kIsRate);
}

void loadModel(benchmark::State& state, Model& model) {
    load(model, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    buildModel(model.sim, model.ui);
    vary(model.sim, static_cast<Kind>(state.range(3)));
    model.sim.stageWork = workSlot;
}

void plainSteps(benchmark::State& state) {
    Model model;
    loadModel(state, model);
    for (auto _ : state) {
        for (int stage = 1; stage <= 4; ++stage) {
            plain::formWorkState(model.sim, stage);
            plain::updatePrimitives(model.sim, model.ui);
            plain::computeSlopes(model.sim, stage);
        }
    }
    countCellSteps(state, model.sim);
}

/// The last argument is the number of threads.
void engineSteps(benchmark::State& state) {
    Model model;
    loadModel(state, model);
    StagePlan plan = planStages(model.sim, static_cast<int>(state.range(4)));
    for (auto _ : state)
        for (int stage = 1; stage <= 4; ++stage) runStage(model.sim, model.ui, plan, stage);
    state.SetLabel(plan.kernels->name);
    countCellSteps(state, model.sim);
}

/// A grid both ways, in turn.
void registerGrid(const std::string& name, int columns, int rows, int layers, Kind kind) {
    benchmark::RegisterBenchmark(("plain/" + name).c_str(), plainSteps)
        ->Args({columns, rows, layers, kind})
        ->Unit(benchmark::kMillisecond);
    for (const int threads : {1, 2})
        benchmark::RegisterBenchmark(("engine/" + name + "/threads").c_str(), engineSteps)
            ->Args({columns, rows, layers, kind, threads})
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
    registerGrid("1-D", 10000, 1, 1, uniform);
    registerGrid("2-D", 64, 64, 1, uniform);
    registerGrid("2-D", 1024, 1024, 1, uniform);
    registerGrid("3-D", 128, 128, 128, uniform);
    registerGrid("3-D mixed", 128, 128, 128, mixed);
    registerGrid("2-D walls", 1024, 1024, 1, walls);
    return true;
}();

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
