// What a run takes beside the stages of its steps: yields, log lines, the poll of the stop file and the schedule.

#include "core/run_driver.h"
#include "core/stage_engine.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace norvane {

namespace {

constexpr int side = 100;
constexpr int blockSteps = 20; // too short for another program to slow down one block and not its partner

constexpr auto warmUp = std::chrono::seconds(4); // a stop file that has just been written is read at every poll

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// A built grid of side by side cells with a pressure step across it, in a folder of its own, which it makes and
/// removes.
struct Model {
    SimState sim;
    Interface ui;
    std::filesystem::path formerDirectory = std::filesystem::current_path();
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "norvane-schedule-bench";

    Model() {
        std::filesystem::create_directories(folder);
        std::filesystem::current_path(folder); // a build writes the stop file into it
        writeTable();
        ui.NV_in.Dir1.path = folder.string();
        ui.NV_in.File1.selected = "bench.gmt";
        sim.batchMode = 1; // without the message about the cells
        loadGeometry(sim, ui);
        buildModel(sim, ui);
        sim.stageWork = workSlot;
    }

    ~Model() {
        std::error_code ignored;
        std::filesystem::current_path(formerDirectory, ignored);
        std::filesystem::remove_all(folder, ignored);
    }

    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    void writeTable() const {
        std::ofstream table("bench.gmt", std::ios::binary);
        const std::string tabs(side - 1, '\t');
        table << "DT 1E-6:UT 0" << tabs << "\nL" << tabs;
        for (int row = 0; row < side; ++row) table << (row % 2 == 0 ? "\nPP 11E4" : "\n") << tabs;
        table << "\nL" << tabs;
    }
};

/// Seconds of a block of steps that are stages and nothing else.
double secondsOfStages(Model& model, StagePlan& plan) {
    const Clock::time_point begin = Clock::now();
    for (int step = 0; step < blockSteps; ++step)
        for (int stage = 1; stage <= 4; ++stage) runStage(model.sim, model.ui, plan, stage);
    model.sim.revision += 1; // for the run, which has not written these fields itself
    return Seconds(Clock::now() - begin).count();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Blocks of steps of a run that is under way, in turn with blocks of stages of the same model.
struct Turns {
    benchmark::State& state;
    Model& model;
    StagePlan plan = planStages(model.sim, 1);
    std::vector<double> runs = {};
    std::vector<double> differences = {};
    Clock::time_point start = Clock::now();
    Clock::time_point begin = {};
    int step = 0; ///< of the block

    /// At the begin of each step of the run.
    void stepBegan() {
        if (step++ % blockSteps != 0) return;
        const double run = Seconds(Clock::now() - begin).count();
        if (begin != Clock::time_point()) {
            runs.push_back(run);
            differences.push_back(run - secondsOfStages(model, plan));
            state.SetIterationTime(run);
        }
        if (Clock::now() - start < warmUp) return;
        if (!state.KeepRunning()) model.sim.stopFlag = 1;
        begin = Clock::now();
    }
};

/// The time is that of a block of steps of a run. The argument is the steps between log lines. Other programs disturb
/// single blocks, so the counters come from the medians of the blocks.
void schedule(benchmark::State& state) {
    Model model;
    model.sim.logEvery = static_cast<std::int32_t>(state.range(0));
    model.sim.stopStep = -1;
    model.sim.threads = 1; // with more a step is shorter, but by how much depends on the machine
    Turns turns{state, model};
    model.ui.stepBegan = [&] { turns.stepBegan(); };
    runSimulation(model.sim, model.ui, {});
    const double step = median(turns.runs) / blockSteps;
    const double rest = median(turns.differences) / blockSteps;
    state.counters["step_us"] = 1e6 * step;
    state.counters["schedule_us"] = 1e6 * rest;
    state.counters["schedule_percent"] = 100 * rest / step;
}

BENCHMARK(schedule)->ArgName("log")->Arg(0)->Arg(1)->Iterations(150)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace norvane
