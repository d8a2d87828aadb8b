#include "core/resting_rows.h"

#include <algorithm>
#include <bit>

namespace norvane {

namespace {

constexpr std::uint8_t allStages = 0b11110;

/// Whether a row and its neighbours stand as in the stage before.
bool isNeighbourhoodUnchanged(const SimState& sim, const StagePlan& plan, std::int64_t row) {
    const std::vector<std::uint8_t>& unchanged = plan.resting.unchanged;
    if (unchanged[row] == 0) return false;
    for (int dim = 2; dim <= sim.nDim; ++dim) {
        const NeighbourRows neighbours = neighbourRows(sim, plan, row, dim);
        if (unchanged[neighbours.below] == 0 || unchanged[neighbours.above] == 0) return false;
    }
    return true;
}

bool isPositiveZero(const float* values, int count) {
    return std::bit_cast<std::uint32_t>(values[0]) == 0 && sameBits(values, values + 1, count - 1);
}

bool hasZeroSlopes(const SimState& sim, const StagePlan& plan, int stage, std::int64_t row) {
    const std::int64_t first = firstCell(plan, row);
    bool zero = isPositiveZero(sim.stageEnergy.slot(stage).component(0) + first, plan.rowCells);
    for (int species = 0; zero && species <= sim.nsMax; ++species)
        zero = isPositiveZero(sim.stageSpecies.slot(stage).component(species) + first, plan.rowCells);
    for (int dim = 1; zero && dim <= sim.nDim; ++dim)
        zero = isPositiveZero(sim.stageMomentum.slot(stage).component(dim) + first, plan.rowCells);
    return zero;
}

} // namespace

void reviewResting(const SimState& sim, StagePlan& plan) {
    RestingRows& resting = plan.resting;
    // Radiation changes slopes of cells anywhere, and only a step forward in time leaves no negative zero.
    const bool possible = resting.enabled && !sim.radActive && sim.dt > 0 && sim.rhoFloor >= 0;
    if (possible && resting.revision == sim.revision) return;
    resting.revision = sim.revision;
    for (auto* const flags : {&resting.zeroSlopes, &resting.settled, &resting.quiet})
        std::fill(flags->begin(), flags->end(), 0);
}

bool wakesForPrimitives(StagePlan& plan, std::int64_t row) {
    RestingRows& resting = plan.resting;
    resting.unchanged[row] = resting.settled[row];
    return resting.settled[row] == 0;
}

void noteRecovered(StagePlan& plan, int stage, std::int64_t row) {
    RestingRows& resting = plan.resting;
    // After a step of zero slopes no value is a negative zero, and adding zeros leaves such values as they are.
    if (stage == 1 && resting.zeroSlopes[row] == allStages && resting.mayRest[row] != 0 && plan.thinRow[row] == 0)
        resting.settled[row] = 1;
}

bool wakesForSlopes(const SimState& sim, StagePlan& plan, std::int64_t row) {
    std::uint8_t& quiet = plan.resting.quiet[row];
    if (!isNeighbourhoodUnchanged(sim, plan, row)) {
        quiet = 0;
        return true;
    }
    if (quiet == 4) return false; // the slopes of all stages followed from the values that stand
    quiet += 1;
    return true;
}

void noteSlopes(const SimState& sim, StagePlan& plan, int stage, std::int64_t row) {
    RestingRows& resting = plan.resting;
    if (resting.mayRest[row] == 0) return;
    const auto bit = static_cast<std::uint8_t>(1 << stage);
    if (hasZeroSlopes(sim, plan, stage, row)) {
        resting.zeroSlopes[row] |= bit;
    } else {
        resting.zeroSlopes[row] &= static_cast<std::uint8_t>(~bit);
        resting.settled[row] = 0;
    }
}

} // namespace norvane
