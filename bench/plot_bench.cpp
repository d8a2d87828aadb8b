// A plot and a snapshot of a plane of a million cells, the table of values written each time.

#include "bench_model.h"
#include "display/field_plot.h"
#include "display/snapshot.h"
#include "drawing/image_surface.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace norvane {

namespace {

constexpr int side = 1000;

/// A temperature and a flow of many digits.
struct Plane : BenchModel {
    Plane() : BenchModel(side, side) {
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
            sim.temperature[cell] = static_cast<float>(500 + 200 * std::sin(1e-5 * cell));
            for (int dim = 1; dim <= sim.nDim; ++dim)
                sim.velocity(cell, dim) = static_cast<float>(std::cos(cell * dim));
        }
    }
};

void plotMillionCells(benchmark::State& state, int quantity, bool onImage) {
    Plane plane;
    plane.sim.showWhat = static_cast<std::int16_t>(quantity);
    if (onImage) drawOnImage(plane.ui.NV_out.Picture1);
    for (auto _ : state) plotField(plane.sim, plane.ui);
    state.SetItemsProcessed(state.iterations() * plane.sim.nCells);
}

/// A snapshot, and in turn with it the plot that it is taken of: the counter is what it costs beyond that.
void snapshotMillionCells(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    const auto secondsSince = [](Clock::time_point start) {
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    Plane plane;
    drawOnImage(plane.ui.NV_out.Picture1);
    double beyondPlot = 0;
    for (auto _ : state) {
        const auto snapshotStart = Clock::now();
        takeSnapshot(plane.sim, plane.ui, 0);
        const double snapshot = secondsSince(snapshotStart);
        state.SetIterationTime(snapshot);
        const auto plotStart = Clock::now();
        plotField(plane.sim, plane.ui);
        beyondPlot += snapshot - secondsSince(plotStart);
    }
    state.counters["ms beyond the plot"] = 1e3 * beyondPlot / static_cast<double>(state.iterations());
}

BENCHMARK_CAPTURE(plotMillionCells, temperatureWithoutAnImage, 1, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plotMillionCells, temperature, 1, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plotMillionCells, speed, 2, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plotMillionCells, arrows, 11, true)->Unit(benchmark::kMillisecond);
BENCHMARK(snapshotMillionCells)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace norvane
