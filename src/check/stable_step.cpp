#include "check/stable_step.h"

#include "core/addressing.h"
#include "core/wall_codes.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace norvane {

namespace {

constexpr double decayBound = 2.785; ///< of the method on the negative real axis
constexpr double soundBound = 2.62;  ///< on the imaginary axis, 2.83, less what damping and flow take away

/// Rates in 1/s, summed over the faces of a cell.
struct CellRates {
    double conduction = 0;
    double sound2 = 0; ///< square of the rate of sound
    double in = 0;     ///< mass flow in by mass
    double out = 0;
};

struct Faces {
    const SimState& sim;
    double extraSpeed;
    std::vector<CellRates> rates{};  ///< [0..nCells]
    std::vector<double> viscosity{}; ///< [0..nCells], of the component that is damped most
    std::vector<double> component{}; ///< [0..nCells], of the component in hand
};

bool isFree(std::int16_t code) { return code == wallFree; }

/// A neighbour that moves as well doubles the largest eigenvalue of a link.
double weight(bool neighbourIsFree) { return neighbourIsFree ? 2 : 1; }

void addConduction(Faces& faces, std::int32_t lower, std::int32_t upper, int dim) {
    const SimState& sim = faces.sim;
    const double conductance = sim.conductionCoef(lower, dim);
    const auto add = [&](std::int32_t cell, std::int32_t other) {
        if (!isFree(sim.wallTemperature[cell])) return;
        faces.rates[static_cast<std::size_t>(cell)].conduction +=
            weight(isFree(sim.wallTemperature[other])) * conductance
            / (double(sim.heatCapacity[cell]) * double(sim.cellMass[cell]));
    };
    add(lower, upper);
    add(upper, lower);
}

void addSound(Faces& faces, std::int32_t lower, std::int32_t upper, int dim) {
    const SimState& sim = faces.sim;
    if (!isFree(sim.wallVelocity(lower, dim))) return;
    const double temperature = std::max(sim.temperature[lower], sim.temperature[upper]);
    const double areaBySize = double(sim.faceArea(lower, dim)) / double(sim.cellSize(lower, dim));
    const auto add = [&](std::int32_t cell, std::int32_t other) {
        if (!isFree(sim.wallPressure[cell])) return;
        faces.rates[static_cast<std::size_t>(cell)].sound2 += weight(isFree(sim.wallPressure[other]))
                                                              * double(sim.gasFactor) * temperature * areaBySize
                                                              / double(sim.cellVolume[cell]);
    };
    add(lower, upper);
    add(upper, lower);
}

void addFlow(Faces& faces, std::int32_t lower, std::int32_t upper, int dim) {
    const SimState& sim = faces.sim;
    if (isClosed(sim.wallVelocity(lower, dim))) return;
    const double velocity = sim.velocity(lower, dim);
    const std::int32_t donor = velocity >= 0 ? lower : upper;
    const std::int32_t taker = velocity >= 0 ? upper : lower;
    const double flow =
        (std::abs(velocity) + faces.extraSpeed) * double(sim.density[donor]) * double(sim.faceArea(lower, dim));
    faces.rates[static_cast<std::size_t>(donor)].out += flow / double(sim.cellMass[donor]);
    faces.rates[static_cast<std::size_t>(taker)].in += flow / double(sim.cellMass[taker]);
}

void addViscosity(Faces& faces, std::int32_t lower, std::int32_t upper, int dim, int component) {
    const SimState& sim = faces.sim;
    const double coefficient = sim.viscousCoef(lower, dim);
    const auto add = [&](std::int32_t cell, std::int32_t other) {
        if (!isFree(sim.wallVelocity(cell, component))) return;
        faces.component[static_cast<std::size_t>(cell)] +=
            weight(isFree(sim.wallVelocity(other, component))) * coefficient / double(sim.cellMass[cell]);
    };
    add(lower, upper);
    add(upper, lower);
}

/// Calls `take(lower, upper, dim)` for each pair of neighbours.
template <class Take>
void forEachLink(const SimState& sim, const Take& take) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const std::int32_t stride = sim.cellStride[dim];
        const std::int32_t period = sim.cellStride[dim + 1];
        for (std::int32_t cell = 1; cell <= sim.nCells - stride; ++cell)
            if ((cell - 1) % period < period - stride) take(cell, cell + stride, dim);
    }
}

void sumFaces(Faces& faces) {
    const SimState& sim = faces.sim;
    const auto count = static_cast<std::size_t>(sim.nCells) + 1;
    faces.rates.assign(count, {});
    faces.viscosity.assign(count, 0);
    forEachLink(sim, [&](std::int32_t lower, std::int32_t upper, int dim) {
        addConduction(faces, lower, upper, dim);
        addSound(faces, lower, upper, dim);
        addFlow(faces, lower, upper, dim);
    });
    for (int component = 1; component <= sim.nDim; ++component) {
        faces.component.assign(count, 0);
        forEachLink(sim, [&](std::int32_t lower, std::int32_t upper, int dim) {
            addViscosity(faces, lower, upper, dim, component);
        });
        for (std::size_t cell = 1; cell < count; ++cell)
            faces.viscosity[cell] = std::max(faces.viscosity[cell], faces.component[cell]);
    }
}

void addRadiation(Faces& faces) {
    const SimState& sim = faces.sim;
    const double sigma = std::pow(sim.sigmaRoot, 4);
    for (std::int32_t pair = 1; sim.radActive && pair <= sim.radPairCount; ++pair)
        for (int side = 0; side < 2; ++side) {
            const std::int32_t cell = sim.radPair[side][pair];
            const std::int32_t other = sim.radPair[1 - side][pair];
            const bool exists = cell >= 1 && cell <= sim.nCells && other >= 0 && other <= sim.nCells;
            if (!exists || !isFree(sim.wallTemperature[cell])) continue;
            const bool otherIsFree = other > 0 && isFree(sim.wallTemperature[other]);
            faces.rates[static_cast<std::size_t>(cell)].conduction +=
                4 * weight(otherIsFree) * sigma * double(sim.radFactor[pair])
                * std::pow(double(sim.temperature[cell]), 3)
                / (double(sim.heatCapacity[cell]) * double(sim.cellMass[cell]));
        }
}

void take(LimitingCell& limit, double step, std::int32_t cell) {
    if (!(step > 0) || !std::isfinite(step)) return;
    if (limit.cell == 0 || step < limit.step) limit = {step, cell};
}

double dragOf(const SimState& sim, std::int64_t cell) {
    return isFree(sim.wallVelocity(cell, 0)) ? double(sim.friction[cell]) / double(sim.cellMass[cell]) : 0;
}

/// Viscosity and drag of a cell; the momentum on its lower faces belongs to its neighbours.
double dampingOf(const Faces& faces, std::int32_t cell) {
    const SimState& sim = faces.sim;
    double viscosity = faces.viscosity[static_cast<std::size_t>(cell)];
    double drag = dragOf(sim, cell);
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const std::int64_t lower = std::int64_t{cell} - sim.cellStride[dim];
        if (!inSameRow(sim, lower, cell, dim)) continue;
        viscosity = std::max(viscosity, faces.viscosity[static_cast<std::size_t>(lower)]);
        drag = std::max(drag, dragOf(sim, lower));
    }
    return viscosity + drag;
}

/// Of a cell whose temperature is free: the heat of the exchange moves the balance that it goes to.
double reactionStep(const SimState& sim, std::int32_t cell) {
    const bool acts =
        exchangesSpecies(sim.wallConcentration[cell]) && sim.nsMax >= 1 && isFree(sim.wallTemperature[cell]);
    if (!acts) return 0;
    const double temperature = sim.temperature[cell];
    const double growth = double(sim.paramGP[11]) * std::exp(double(sim.paramGP[12]) / temperature);
    const double slope = double(sim.paramGP[13]) * growth * double(sim.paramGP[12])
                         / (temperature * temperature * (growth + 1) * (growth + 1));
    const double rate = std::exp(double(sim.paramGP[14]) * (1 / 973.0 - 1 / temperature)) / double(sim.paramGP[15]);
    const double feedback = 1 + 13e6 / double(sim.heatCapacity[cell]) * std::abs(slope);
    constexpr double cap = 0.5; // of the exchange in one step
    return feedback * cap <= decayBound ? 0 : decayBound / (rate * feedback);
}

bool isUnstableAgainst(const SimState& sim, std::int32_t cell, int dim) {
    const std::int64_t upper = std::int64_t{cell} + sim.cellStride[dim];
    if (isClosed(sim.wallVelocity(cell, dim)) || !inSameRow(sim, cell, upper, dim)) return false;
    const double velocity = std::min(sim.velocity(cell, dim), sim.velocityInit(cell, dim));
    if (!(velocity < 0)) return false;
    const double density = sim.density[cell];
    const double size = sim.cellSize(cell, dim);
    const double drag = double(sim.friction[cell]) / double(sim.cellVolume[cell]);
    const double damping = 2 * double(sim.viscosity[cell]) / (density * size) + drag * size / (2 * density);
    return double(sim.gasFactor) * double(sim.temperature[cell]) <= -velocity * (-velocity + damping);
}

} // namespace

const char* limitText(StepLimit kind) {
    switch (kind) {
    case StepLimit::sound: return "sound and flow";
    case StepLimit::conduction: return "heat conduction and radiation";
    case StepLimit::friction: return "viscosity and drag";
    case StepLimit::reaction: return "the exchange of species 0 and 1";
    default: return "nothing";
    }
}

LimitingCell StableStep::smallest() const {
    LimitingCell least;
    for (const LimitingCell& each : {sound, conduction, friction, reaction})
        if (each.cell != 0) take(least, each.step, each.cell);
    return least;
}

StepLimit StableStep::kind() const {
    const double least = smallest().step;
    if (sound.cell != 0 && sound.step == least) return StepLimit::sound;
    if (conduction.cell != 0 && conduction.step == least) return StepLimit::conduction;
    if (friction.cell != 0 && friction.step == least) return StepLimit::friction;
    return reaction.cell != 0 ? StepLimit::reaction : StepLimit::none;
}

StableStep stableStep(const SimState& sim, double extraSpeed) {
    Faces faces{sim, extraSpeed};
    sumFaces(faces);
    addRadiation(faces);
    StableStep result;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const CellRates& rates = faces.rates[static_cast<std::size_t>(cell)];
        const double flow = std::max(rates.in, rates.out);
        const double damping = dampingOf(faces, cell);
        if (rates.conduction > 0) take(result.conduction, decayBound / (2 * flow + rates.conduction), cell);
        if (damping > 0) take(result.friction, decayBound / (2 * flow + damping), cell);
        if (rates.sound2 > 0) take(result.sound, soundBound / (flow + std::sqrt(rates.sound2)), cell);
        take(result.reaction, reactionStep(sim, cell), cell);
        for (int dim = 1; result.againstUpwind == 0 && dim <= sim.nDim; ++dim)
            if (isUnstableAgainst(sim, cell, dim)) result.againstUpwind = cell;
    }
    return result;
}

} // namespace norvane
