// Load and build of plane tables, up to ten million cells: time, and memory at its peak.

#include "geometry/grid_file.h"
#include "geometry/model_build.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
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

/// A folder with the table of a plane of side by side cells, which is also the working directory: a build writes its
/// stop file there.
struct TableFolder {
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "norvane-load-bench";
    std::filesystem::path formerDirectory = std::filesystem::current_path();

    TableFolder(int side, Texts texts) {
        std::filesystem::create_directories(folder);
        std::filesystem::current_path(folder);
        std::ofstream table("m.gmt", std::ios::binary);
        const std::string tabs(static_cast<std::size_t>(side) - 1, '\t');
        table << "L" << tabs << "\n";
        for (int row = 0; row < side; ++row)
            for (int column = 0; column < side; ++column)
                table << cellText(texts, row, column) << (column < side - 1 ? '\t' : '\n');
        table << "L" << tabs << "\n";
    }

    ~TableFolder() {
        std::error_code ignored;
        std::filesystem::current_path(formerDirectory, ignored);
        std::filesystem::remove_all(folder, ignored);
    }

    TableFolder(const TableFolder&) = delete;
    TableFolder& operator=(const TableFolder&) = delete;
};

/// Bytes of this process in memory, now ("VmRSS:") or at most ("VmHWM:"); 0 where the system does not tell.
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

void loadAndBuild(benchmark::State& state, Texts texts) {
    const TableFolder table(static_cast<int>(state.range(0)), texts);
    double cells = 0;
    double standing = 0;
    const double before = residentBytes("VmRSS:");
    forgetPeak();
    for (auto _ : state) {
        SimState sim;
        Interface ui;
        ui.showMessage = [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); };
        ui.NV_in.Dir1.path = table.folder.string();
        ui.NV_in.File1.selected = "m.gmt";
        sim.batchMode = 1; // without the message about the cells
        loadGeometry(sim, ui);
        buildModel(sim, ui);
        benchmark::DoNotOptimize(sim.cellVolume[1]);
        cells = sim.nCells;
        state.PauseTiming(); // to measure, and for the release of the model
        standing = residentBytes("VmRSS:");
        sim = SimState();
        state.ResumeTiming();
    }
    state.counters["time/cell"] = benchmark::Counter(cells * static_cast<double>(state.iterations()),
                                                     benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["bytes/cell"] = (standing - before) / cells;
    state.counters["peak bytes/cell"] = (residentBytes("VmHWM:") - before) / cells;
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
