// Load and build of plane tables, up to ten million cells: time, and memory at its peak.

#include "bench_model.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <fstream>
#include <string>

namespace norvane {
namespace {

/// What the data cells hold.
enum Texts {
    keysInOneOfTen, ///< the mixed table of everyday
    sizesInAll,     ///< DD of each cell's own
    sizesAcross,    ///< in the first row: the width of each column
    sizesInAllOn,   ///< DD in every cell that spreads to all behind it in its column
    heightsAcross,  ///< in the first row: the height of each column
    heightsInAll,   ///< HH in every cell that spreads over its whole column
};

std::string cellText(Texts texts, int row, int column) {
    const std::string number = "0." + std::to_string(100 + (row + column) % 100);
    switch (texts) {
    case keysInOneOfTen: return (row + column) % 10 == 0 ? "TT 350:PP 1E5:VV 1;3" : "";
    case sizesInAll: return "DD 1;" + number;
    case sizesAcross: return row == 0 ? "DD -1;" + number : "";
    case sizesInAllOn: return "DD -1;" + number;
    case heightsAcross: return row == 0 ? "HH 1;" + number : "";
    case heightsInAll: return "HH 1;" + number;
    }
    return "";
}

/// The table of a plane of side by side cells, in the working directory.
void writeTable(int side, Texts texts) {
    std::ofstream table("bench.gmt", std::ios::binary);
    const std::string tabs(static_cast<std::size_t>(side) - 1, '\t');
    table << "L" << tabs << "\n";
    for (int row = 0; row < side; ++row)
        for (int column = 0; column < side; ++column)
            table << cellText(texts, row, column) << (column < side - 1 ? '\t' : '\n');
    table << "L" << tabs << "\n";
}

/// Bytes of this process in memory, now ("VmRSS:") or at most ("VmHWM:"); 0 where the system does not know.
double residentBytes(const std::string& which) {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kilobytes = 0;
    while (status >> word)
        if (word == which && status >> kilobytes) return 1024 * kilobytes;
    return 0;
}

/// The highest mark is counted anew from here, so that a benchmark is not told what an earlier one took.
void forgetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }

/// Before any model: what an earlier one leaves behind in the allocator counts for the later ones.
const double residentAtStart = residentBytes("VmRSS:");

void loadAndBuild(benchmark::State& state, Texts texts) {
    const BenchFolder folder;
    writeTable(static_cast<int>(state.range(0)), texts);
    double cells = 0;
    double standing = 0;
    forgetPeak();
    for (auto _ : state) {
        SimState sim;
        Interface ui;
        loadAndBuild(sim, ui, folder);
        benchmark::DoNotOptimize(sim.cellVolume[1]);
        cells = sim.nCells;
        state.PauseTiming(); // to measure, and for the release of the model
        standing = residentBytes("VmRSS:");
        sim = SimState();
        state.ResumeTiming();
    }
    state.counters["time/cell"] = benchmark::Counter(cells * static_cast<double>(state.iterations()),
                                                     benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["bytes/cell"] = (standing - residentAtStart) / cells;
    state.counters["peak bytes/cell"] = (residentBytes("VmHWM:") - residentAtStart) / cells;
}

void sides(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(2000)->Arg(3162)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(loadAndBuild, keysInOneOfTen, keysInOneOfTen)->Apply(sides);
BENCHMARK_CAPTURE(loadAndBuild, sizesInAll, sizesInAll)->Apply(sides);
BENCHMARK_CAPTURE(loadAndBuild, sizesAcross, sizesAcross)->Apply(sides);
BENCHMARK_CAPTURE(loadAndBuild, sizesInAllOn, sizesInAllOn)->Apply(sides);
BENCHMARK_CAPTURE(loadAndBuild, heightsAcross, heightsAcross)->Apply(sides);
BENCHMARK_CAPTURE(loadAndBuild, heightsInAll, heightsInAll)->Apply(sides);

} // namespace
} // namespace norvane
