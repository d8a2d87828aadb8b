// What a run takes beside the stages of its steps: yields, log lines, the poll of the stop file and the schedule.

#include "bench_model.h"
#include "core/processor_engine.h"
#include "core/run_driver.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace norvane {

namespace {

constexpr int side = 100;
constexpr int blockSteps = 20; // too short for another program to slow down one block and not its partner

constexpr auto warmUp = std::chrono::seconds(4); // a stop file that has just been written is read at every poll

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// Seconds of a block of steps that are stages and nothing else.
double secondsOfStages(BenchModel& model, StagePlan& plan) {
    const Clock::time_point begin = Clock::now();
    for (int step = 0; step < blockSteps; ++step)
        for (int stage = 1; stage <= 4; ++stage) runStage(model.sim, plan, stage, ignoreFault);
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
    BenchModel& model;
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
        if (!state.KeepRunning()) model.sim.stopFlag = true;
        begin = Clock::now();
    }
};

/// The time is that of a block of steps of a run. The argument is the steps between log lines. Other programs disturb
/// single blocks, so the counters come from the medians of the blocks.
void schedule(benchmark::State& state) {
    BenchModel model(side, side, 1, "DT 1E-6:UT 0");
    model.setInMotion();
    model.sim.runMode = modeContinuation; // the build of the run keeps the motion
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
