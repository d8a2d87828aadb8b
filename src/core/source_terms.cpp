#include "core/source_terms.h"

#include "core/accumulate.h"
#include "core/exponential.h"
#include "core/wall_codes.h"

#include <cstdlib>

namespace norvane {

namespace {

// Elements of paramGP that the exchange of species reads.
constexpr int balanceFactor = 11;      ///< -
constexpr int balanceTemperature = 12; ///< K
constexpr int balanceLimit = 13;       ///< mass fraction, that of a large exponential
constexpr int rateTemperature = 14;    ///< K, negative
constexpr int rateTime = 15;           ///< s, at 973 K

bool hasSink(const SimState& sim, std::int32_t cell) { return isImposed(sim.wallPressure[cell]); }

} // namespace

// The masses of a pressure-held cell are not integrated: what the faces bring in leaves again at the cell's own
// temperature and velocity, and what they take away is made up at them.
void addSink(SimState& sim, int stage, std::int32_t cell) {
    if (!hasSink(sim, cell)) return;
    double netInflow = 0;
    for (int species = 0; species <= sim.nsMax; ++species) netInflow += double(sim.stageSpecies(stage, species, cell));
    const double makeUp = 0 - netInflow;
    accumulate(sim.stageEnergy(stage, cell), makeUp * double(sim.temperature[cell]) * double(sim.heatCapacity[cell]));
    for (int dim = 1; dim <= sim.nDim; ++dim)
        accumulate(sim.stageMomentum(stage, cell, dim), makeUp * double(sim.velocity(cell, dim)));
}

bool hasSpeciesExchange(const SimState& sim, std::int32_t cell) {
    return exchangesSpecies(sim.wallConcentration[cell]) && sim.nsMax >= 1;
}

double speciesExchangeFlow(const SimState& sim, std::int32_t cell) {
    const auto parameter = [&](int number) { return double(sim.paramGP[number]); };
    const double temperature = sim.temperature[cell];
    const double growth = parameter(balanceFactor) * exponential(parameter(balanceTemperature) / temperature);
    const double balance = growth * parameter(balanceLimit) / (growth + 1);

    const double rateScale = parameter(rateTemperature);
    double rate = exponential(-rateScale / temperature) * (1 / parameter(rateTime)) / exponential(-rateScale / 973);
    // The full dt in every stage, not the stage step: the cap bounds what one whole step may exchange.
    const double cap = 0.5 / double(sim.dt);
    if (rate > cap) rate = cap;
    return (double(sim.concentration(cell, 1)) - balance) * double(sim.cellMass[cell]) * rate;
}

// What leaves species 1 becomes species 0 and takes heat with it.
void addSpeciesExchange(SimState& sim, int stage, std::int32_t cell) {
    if (!hasSpeciesExchange(sim, cell)) return;
    const double flow = speciesExchangeFlow(sim, cell);
    accumulate(sim.stageSpecies(stage, 1, cell), -flow);
    accumulate(sim.stageSpecies(stage, 0, cell), flow);
    accumulate(sim.stageEnergy(stage, cell), -speciesExchangeHeat(flow));
}

namespace {

template <auto acts>
std::int32_t find(const SimState& sim, bool acting, std::int32_t first, std::int32_t end) {
    while (first < end && acts(sim, first) != acting) ++first;
    return first;
}

template <auto add>
void addToCells(SimState& sim, int stage, std::int32_t first, std::int32_t end) {
    for (std::int32_t cell = first; cell < end; ++cell) add(sim, stage, cell);
}

template <auto acts, auto add>
constexpr CellTerm term(const char* name) {
    return {name, find<acts>, addToCells<add>};
}

// A sink takes away what all terms before it have brought: forces on the momentum stand above it.
constexpr CellTerm terms[] = {
    term<hasSink, addSink>("Sink of a pressure-held cell"),
    term<hasSpeciesExchange, addSpeciesExchange>("Exchange of species 0 and 1"),
};

} // namespace

std::span<const CellTerm> cellTerms() { return terms; }

namespace {

double fourthPower(double x) { return x * x * x * x; }

} // namespace

bool pairInGrid(const SimState& sim, std::int32_t pair) {
    const std::int64_t second = std::llabs(sim.radPair[1][pair]);
    return sim.radPair[0][pair] >= 1 && sim.radPair[0][pair] <= sim.nCells && second <= sim.nCells;
}

float radiatedPower(const SimState& sim, std::int32_t pair) {
    const std::int32_t first = sim.radPair[0][pair];
    const std::int32_t second = std::abs(sim.radPair[1][pair]);
    // The root scales the temperatures, so that their fourth powers are emissive powers in W/m2.
    const auto firstScaled = static_cast<float>(sim.sigmaRoot * double(sim.temperature[first]));
    const auto secondScaled = static_cast<float>(sim.sigmaRoot * double(sim.temperature[second]));
    return static_cast<float>((fourthPower(firstScaled) - fourthPower(secondScaled)) * double(sim.radFactor[pair]));
}

void radiationPairs(SimState& sim, int stage) {
    for (std::int32_t pair = 1; pair <= sim.radPairCount; ++pair) {
        if (!pairInGrid(sim, pair)) continue;
        const std::int32_t first = sim.radPair[0][pair];
        const std::int32_t second = std::abs(sim.radPair[1][pair]);
        const float flow = radiatedPower(sim, pair);
        if (sim.wallTemperature[first] <= 0) accumulate(sim.stageEnergy(stage, first), -double(flow));
        if (second >= 1 && sim.wallTemperature[second] <= 0) accumulate(sim.stageEnergy(stage, second), double(flow));
    }
}

} // namespace norvane
