// Saving and recalling the state of a million cells in motion, in bytes of text a second and beside the conversion of
// the same numbers alone.

#include "bench_model.h"
#include "core/number_text.h"
#include "exchange/number_items.h"
#include "exchange/state_file.h"
#include "platform/files.h"
#include "platform/safe_file.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace norvane {

namespace {

constexpr int side = 1000;

struct Model : BenchModel {
    Model() : BenchModel(side, side) { setDigits(); }

    /// Values with all their digits in use: a state at rest would save and recall in less text than a run's.
    void setDigits() {
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

    std::int64_t textBytes() const {
        return static_cast<std::int64_t>(std::filesystem::file_size(folder.path / "bench_state"));
    }
};

/// The numbers of a state file, in its order.
struct StateNumbers {
    std::vector<float> conserved; ///< groups A to C, which a recall reads
    std::vector<float> velocities;
    std::vector<double> temperatures;
    std::vector<float> concentrations;

    explicit StateNumbers(const SimState& sim) {
        const auto add = [&](std::vector<float>& numbers, const float* component) {
            numbers.insert(numbers.end(), component + 1, component + 1 + sim.nCells);
        };
        for (int dim = 1; dim <= sim.nDim; ++dim) add(conserved, sim.stageMomentum.slot(committedSlot).component(dim));
        add(conserved, sim.stageEnergy.slot(committedSlot).component(0));
        add(conserved, sim.stageSpecies.slot(committedSlot).component(0));
        for (int dim = 1; dim <= sim.nDim; ++dim) add(velocities, sim.velocity.component(dim));
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
            temperatures.push_back(double(sim.temperature[cell]) - 273.15);
        add(concentrations, sim.concentration.component(0));
    }
};

/// What a save can't do without: its numbers as text, in memory.
std::string formatNumbers(const StateNumbers& numbers) {
    std::string text;
    text.reserve(140 * static_cast<std::size_t>(side) * side);
    for (const float number : numbers.conserved) appendFramed(text, number);
    for (const float number : numbers.velocities) appendFramed(text, number);
    for (const double number : numbers.temperatures) appendFramed(text, number);
    for (const float number : numbers.concentrations) appendFramed(text, number);
    return text;
}

/// What a recall can't do without: the numbers of groups A to C from the text in memory.
float parseNumbers(const std::string& text, std::size_t count) {
    NumberItems items{text};
    float number = 0;
    std::int32_t whole = 0;
    for (int line = 0; line < 4; ++line) readWhole(items, whole);
    for (std::size_t k = 0; k < count; ++k) readNumber(items, number);
    return number;
}

template <class Work>
double secondsOf(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Times `whole`, and in turn with it the conversion of the same numbers alone; their ratio becomes a counter.
template <class Whole, class Conversion>
void compareWithConversion(benchmark::State& state, const Whole& whole, const Conversion& conversion) {
    double wholeTime = 0;
    double conversionTime = 0;
    for (auto _ : state) {
        const double seconds = secondsOf(whole);
        state.SetIterationTime(seconds);
        wholeTime += seconds;
        conversionTime += secondsOf(conversion);
    }
    state.counters["conversion ms"] = 1e3 * conversionTime / static_cast<double>(state.iterations());
    state.counters["times the conversion"] = wholeTime / conversionTime;
}

void saveMillionCells(benchmark::State& state) {
    Model model;
    const StateNumbers numbers(model.sim);
    saveState(model.sim, model.ui); // a later save meets a file of the same length
    compareWithConversion(
        state, [&] { saveState(model.sim, model.ui); },
        [&] { benchmark::DoNotOptimize(formatNumbers(numbers).data()); });
    state.SetBytesProcessed(state.iterations() * model.textBytes());
}

/// The part of a save that is the file: the text written over the old one, and flushed to the disc.
void writeMillionCells(benchmark::State& state) {
    Model model;
    saveState(model.sim, model.ui);
    std::string text;
    const std::string path = (model.folder.path / "bench_state").string();
    readFile(path, text);
    for (auto _ : state) overwriteFile(path, text);
    state.SetBytesProcessed(state.iterations() * model.textBytes());
}

/// The whole of a recall, the new build of the model included.
void recallMillionCells(benchmark::State& state) {
    Model model;
    const std::size_t count = StateNumbers(model.sim).conserved.size();
    saveState(model.sim, model.ui);
    std::string text;
    readFile((model.folder.path / "bench_state").string(), text);
    compareWithConversion(
        state, [&] { recallState(model.sim, model.ui); }, [&] { benchmark::DoNotOptimize(parseNumbers(text, count)); });
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

BENCHMARK(saveMillionCells)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(writeMillionCells)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(recallMillionCells)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(buildMillionCells)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace norvane
