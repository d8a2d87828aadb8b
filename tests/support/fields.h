#pragma once
// Sums over the cells, for laws that hold for the whole grid; of a compensated run with what it keeps.

#include "core/remainders.h"

namespace norvane {

inline double totalMass(const SimState& sim, int species) {
    double sum = 0;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
        sum += double(sim.stageSpecies(committedSlot, species, cell))
               + (hasRemainders(sim) ? double(sim.speciesRemainder(cell, species)) : 0);
    return sum;
}

inline double totalEnergy(const SimState& sim) {
    double sum = 0;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
        sum += double(sim.stageEnergy(committedSlot, cell))
               + (hasRemainders(sim) ? double(sim.energyRemainder(cell, 0)) : 0);
    return sum;
}

} // namespace norvane
