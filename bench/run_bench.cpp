// Speed of the stages of a run: the plain evaluation, the engine on one thread and on two, in turn on the same model.

#include "bench_model.h"
#include "core/processor_engine.h"
#include "core/remainders.h"
#include "support/plain_stage.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace norvane {
namespace {

/// What grids hold besides one species of gas.
enum Kind {
    uniform,
    ownCoefficients, ///< coefficients differ from cell to cell
    walled,          ///< walls and held cells in every third row, two species
};

void giveOwnCoefficients(SimState& sim, std::int32_t cell) {
    const float factor = 1 + 0.001f * static_cast<float>(cell % 97);
    sim.heatCapacity[cell] *= factor;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        sim.inverseSize(cell, dim) *= factor;
        sim.faceArea(cell, dim) *= factor;
        sim.conductionCoef(cell, dim) *= factor;
        sim.viscousCoef(cell, dim) *= factor;
    }
}

void layWalls(SimState& sim, std::int32_t cell) {
    if ((cell - 1) / sim.cellCount[1] % 3 != 0) return;
    if (cell % 11 < 3) sim.wallVelocity(cell, 1) = 1;
    if (cell % 29 == 0) sim.wallTemperature[cell] = -1;
}

void plainStep(BenchModel& model) {
    for (int stage = 1; stage <= 4; ++stage) {
        plain::formWorkState(model.sim, stage);
        plain::updatePrimitives(model.sim, model.ui);
        plain::computeSlopes(model.sim, stage);
    }
    model.sim.revision += 1;
}

void engineStep(BenchModel& model, StagePlan& plan) {
    for (int stage = 1; stage <= 4; ++stage) runStage(model.sim, plan, stage, ignoreFault);
}

/// Cells times steps a second.
double rateOf(const SimState& sim, int steps, const std::function<void()>& step) {
    const auto start = std::chrono::steady_clock::now();
    for (int k = 0; k < steps; ++k) step();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    return double(sim.nCells) * steps / time.count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Each iteration measures all ways one behind the other; the gains are medians of what the rounds give.
void compareWays(benchmark::State& state, int columns, int rows, int layers, Kind kind) {
    BenchModel model(columns, rows, layers, kind == walled ? "NS 1:DT 1E-6:CC 1;0.3" : "DT 1E-6");
    SimState& sim = model.sim;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        if (kind == ownCoefficients) giveOwnCoefficients(sim, cell);
        if (kind == walled) layWalls(sim, cell);
    }
    model.setInMotion();
    StagePlan alone = planStages(sim, 1);
    StagePlan together = planStages(sim, 2);
    const int plainSteps = std::max(1, 500'000 / sim.nCells);
    const int engineSteps = std::max(2, 5'000'000 / sim.nCells);
    std::vector<double> plain, one, two, gain, gainOfTwo;
    for (auto _ : state) {
        plain.push_back(rateOf(sim, plainSteps, [&] { plainStep(model); }));
        one.push_back(rateOf(sim, engineSteps, [&] { engineStep(model, alone); }));
        two.push_back(rateOf(sim, engineSteps, [&] { engineStep(model, together); }));
        gain.push_back(one.back() / plain.back());
        gainOfTwo.push_back(two.back() / one.back());
        state.SetIterationTime(sim.nCells / one.back());
    }
    state.SetLabel(alone.kernels->name);
    state.counters["plain"] = median(plain);
    state.counters["1 thread"] = median(one);
    state.counters["gain"] = median(gain);
    state.counters["2 threads"] = median(two);
    state.counters["gain of 2"] = median(gainOfTwo);
}

/// A ball of hot gas in the middle, a quarter as wide as the grid.
void heatBall(SimState& sim) {
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        double squares = 0;
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            const double middle = 0.5 * sim.cellCount[dim];
            const double distance = (cell - 1) % sim.cellStride[dim + 1] / sim.cellStride[dim] - middle;
            squares += distance * distance / (middle * middle);
        }
        if (squares < 0.25 * 0.25) sim.stageEnergy(committedSlot, cell) *= 3;
    }
}

/// A hot ball in quiet gas, ten steps on: all rows, and all but those that rest.
void leaveOutRestingRows(benchmark::State& state) {
    BenchModel model(128, 128, 128, "DT 1E-6");
    heatBall(model.sim);
    SimState other = model.sim;
    StagePlan resting = planStages(model.sim, 1);
    StagePlan restless = planStages(other, 1);
    restless.resting.enabled = false;
    const auto step = [&](SimState& sim, StagePlan& plan) {
        for (int stage = 1; stage <= 4; ++stage) runStage(sim, plan, stage, ignoreFault);
    };
    for (int k = 0; k < 10; ++k) step(model.sim, resting);
    for (int k = 0; k < 10; ++k) step(other, restless);
    std::vector<double> with, without, gain;
    for (auto _ : state) {
        with.push_back(rateOf(model.sim, 1, [&] { step(model.sim, resting); }));
        without.push_back(rateOf(other, 1, [&] { step(other, restless); }));
        gain.push_back(with.back() / without.back());
        state.SetIterationTime(model.sim.nCells / with.back());
    }
    state.counters["all rows"] = median(without);
    state.counters["without resting rows"] = median(with);
    state.counters["gain"] = median(gain);
}

/// A compensated run against one that is not, in turn on the same model.
void compensate(benchmark::State& state, int columns, int rows, int layers) {
    BenchModel model(columns, rows, layers, "DT 1E-6");
    SimState& sim = model.sim;
    model.setInMotion();
    StagePlan plan = planStages(sim, 1);
    const int steps = std::max(1, 1'500'000 / sim.nCells);
    const auto rate = [&](bool compensated) {
        sim.compensated = compensated;
        fitRemainders(sim);
        engineStep(model, plan); // the first use of the memory is not counted
        return rateOf(sim, steps, [&] { engineStep(model, plan); });
    };
    std::vector<double> single, compensated, gain;
    for (auto _ : state) {
        single.push_back(rate(false));
        compensated.push_back(rate(true));
        gain.push_back(compensated.back() / single.back());
        state.SetIterationTime(sim.nCells / compensated.back());
    }
    const double bytes = stateBytes(sim.nDim, sim.nsMax, sim.nCells);
    state.counters["single"] = median(single);
    state.counters["compensated"] = median(compensated);
    state.counters["gain"] = median(gain);
    state.counters["memory"] = 1 + remainderBytes(sim.nDim, sim.nsMax, sim.nCells) / bytes;
}

constexpr int rounds = 7;

void registerCompensated(const std::string& name, int columns, int rows, int layers) {
    benchmark::RegisterBenchmark(("run/compensated, " + name).c_str(), compensate, columns, rows, layers)
        ->UseManualTime()
        ->Iterations(rounds)
        ->Unit(benchmark::kMillisecond);
}

void registerCase(const std::string& name, int columns, int rows, int layers, Kind kind) {
    benchmark::RegisterBenchmark(("run/" + name).c_str(), compareWays, columns, rows, layers, kind)
        ->UseManualTime()
        ->Iterations(rounds)
        ->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
    registerCase("3-D 128 x 128 x 128", 128, 128, 128, uniform);
    registerCase("3-D, coefficients of each cell's own", 128, 128, 128, ownCoefficients);
    registerCase("2-D 1024 x 1024", 1024, 1024, 1, uniform);
    registerCase("2-D, walls, held cells, two species", 1024, 1024, 1, walled);
    registerCase("2-D 64 x 64", 64, 64, 1, uniform);
    registerCase("1-D 10000", 10000, 1, 1, uniform);
    registerCompensated("3-D 128 x 128 x 128", 128, 128, 128);
    registerCompensated("2-D 1024 x 1024", 1024, 1024, 1);
    return true;
}();

BENCHMARK(leaveOutRestingRows)->UseManualTime()->Iterations(rounds)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace norvane
