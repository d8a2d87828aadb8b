// Saving and recalling the state of a million cells in motion, in bytes of text a second.

#include "exchange/state_file.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace norvane {

namespace {

constexpr int side = 1000;

/// A loaded and built grid of side by side cells in a folder of its own, which it makes and removes.
struct Model {
    SimState sim;
    Interface ui;
    std::filesystem::path formerDirectory = std::filesystem::current_path();
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "norvane-state-bench";

    Model() {
        std::filesystem::create_directories(folder);
        std::filesystem::current_path(folder); // a build writes the stop file into it
        writeTable();
        ui.showMessage = [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); };
        ui.NV_in.Dir1.path = folder.string();
        ui.NV_in.File1.selected = "m.gmt";
        sim.batchMode = 1; // without the message about the cells
        loadGeometry(sim, ui);
        buildModel(sim, ui);
        setInMotion();
    }

    ~Model() {
        std::error_code ignored;
        std::filesystem::current_path(formerDirectory, ignored);
        std::filesystem::remove_all(folder, ignored);
    }

    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    void writeTable() const {
        std::ofstream table(folder / "m.gmt");
        const std::string row(side - 1, '\t');
        table << "L" << row << "\n";
        for (int k = 0; k < side; ++k) table << row << "\n";
        table << "L" << row << "\n";
    }

    /// Values with all their digits in use: a state at rest would save and recall in less text than a run's.
    void setInMotion() {
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
            const double wave = std::sin(0.001 * cell);
            sim.temperature[cell] = static_cast<float>(300 + 100 * wave);
            sim.stageEnergy(committedSlot, cell) = static_cast<float>(30 + 0.3 * wave);
            sim.stageSpecies(committedSlot, 0, cell) = static_cast<float>(1.2e-4 * (1 + 0.1 * wave));
            for (int dim = 1; dim <= sim.nDim; ++dim) {
                sim.velocity(cell, dim) = static_cast<float>(10 * wave * dim);
                sim.stageMomentum(committedSlot, cell, dim) = static_cast<float>(1.2e-3 * wave * dim);
            }
        }
    }

    std::int64_t textBytes() const { return static_cast<std::int64_t>(std::filesystem::file_size(folder / "m_state")); }
};

void saveMillionCells(benchmark::State& state) {
    Model model;
    for (auto _ : state) saveState(model.sim, model.ui);
    state.SetBytesProcessed(state.iterations() * model.textBytes());
}

/// The whole of a recall, the new build of the model included.
void recallMillionCells(benchmark::State& state) {
    Model model;
    saveState(model.sim, model.ui);
    for (auto _ : state) recallState(model.sim, model.ui);
    state.SetBytesProcessed(state.iterations() * model.textBytes());
}

/// What of a recall is not the file: it may be taken off the time of the whole.
void buildMillionCells(benchmark::State& state) {
    Model model;
    for (auto _ : state) {
        model.sim.runMode = modeModelStands;
        buildModel(model.sim, model.ui);
    }
}

BENCHMARK(saveMillionCells)->Unit(benchmark::kMillisecond);
BENCHMARK(recallMillionCells)->Unit(benchmark::kMillisecond);
BENCHMARK(buildMillionCells)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace norvane
