#pragma once
// Sums over the cells, for laws that hold for the whole grid.

#include "core/sim_state.h"

namespace norvane {

inline double totalMass(const SimState& sim, int species) {
    double sum = 0;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
        sum += double(sim.stageSpecies(committedSlot, species, cell));
    return sum;
}

inline double totalEnergy(const SimState& sim) {
    double sum = 0;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) sum += double(sim.stageEnergy(committedSlot, cell));
    return sum;
}

} // namespace norvane
