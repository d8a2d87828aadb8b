#include "core/source_terms.h"

#include "core/accumulate.h"

#include <cmath>
#include <cstdlib>

namespace norvane {

/// The masses of a pressure-held cell are not integrated: what the faces bring in leaves again at the cell's own
/// temperature and velocity, and what they take away is made up at them.
void addSink(SimState& sim, int stage, std::int32_t cell) {
    if (sim.wallPressure[cell] >= 0) return;
    double netInflow = 0;
    for (int species = 0; species <= sim.nsMax; ++species) netInflow += double(sim.stageSpecies(stage, species, cell));
    const double makeUp = 0 - netInflow;
    accumulate(sim.stageEnergy(stage, cell), makeUp * double(sim.temperature[cell]) * double(sim.heatCapacity[cell]));
    for (int dim = 1; dim <= sim.nDim; ++dim)
        accumulate(sim.stageMomentum(stage, cell, dim), makeUp * double(sim.velocity(cell, dim)));
}

/// Species 1 relaxes towards its balance fraction; what leaves it becomes species 0 and takes heat with it.
void addSpeciesExchange(SimState& sim, int stage, std::int32_t cell) {
    if (sim.wallConcentration[cell] != 1 || sim.nsMax < 1) return;
    const double temperature = sim.temperature[cell];
    const double growth = double(sim.paramGP[11]) * std::exp(double(sim.paramGP[12]) / temperature);
    const double balance = growth * double(sim.paramGP[13]) / (growth + 1);

    const double rateScale = sim.paramGP[14];
    double rate = std::exp(-rateScale / temperature) * (1 / double(sim.paramGP[15])) / std::exp(-rateScale / 973);
    // The full dt in every stage, not the stage step: the cap bounds what one whole step may exchange.
    const double cap = 0.5 / double(sim.dt);
    if (rate > cap) rate = cap;

    const double flow = (double(sim.concentration(cell, 1)) - balance) * double(sim.cellMass[cell]) * rate; // kg/s
    accumulate(sim.stageSpecies(stage, 1, cell), -flow);
    accumulate(sim.stageSpecies(stage, 0, cell), flow);
    accumulate(sim.stageEnergy(stage, cell), -(flow * 208 * 1000 * 1000 / 16)); // 208 kJ/mol, 16 g/mol
}

namespace {

double fourthPower(double x) { return x * x * x * x; }

} // namespace

bool pairInGrid(const SimState& sim, std::int32_t pair) {
    const std::int64_t second = std::llabs(sim.radPair[1][pair]);
    return sim.radPair[0][pair] >= 1 && sim.radPair[0][pair] <= sim.nCells && second <= sim.nCells;
}

void radiationPairs(SimState& sim, int stage) {
    for (std::int32_t pair = 1; pair <= sim.radPairCount; ++pair) {
        if (!pairInGrid(sim, pair)) continue;
        const std::int32_t first = sim.radPair[0][pair];
        const std::int32_t second = std::abs(sim.radPair[1][pair]);
        // The root scales the temperatures, so that their fourth powers are emissive powers in W/m2.
        const auto firstScaled = static_cast<float>(sim.sigmaRoot * double(sim.temperature[first]));
        const auto secondScaled = static_cast<float>(sim.sigmaRoot * double(sim.temperature[second]));
        const auto flow =
            static_cast<float>((fourthPower(firstScaled) - fourthPower(secondScaled)) * double(sim.radFactor[pair]));
        if (sim.wallTemperature[first] <= 0) accumulate(sim.stageEnergy(stage, first), -double(flow));
        if (second >= 1 && sim.wallTemperature[second] <= 0) accumulate(sim.stageEnergy(stage, second), double(flow));
    }
}

} // namespace norvane
