#pragma once

#include "core/sim_state.h"

namespace norvane {

/// Terms of single cells [1..nCells] that add to slot `stage` [1..4] of that cell, behind its faces, drag and gravity.
/// Each does nothing where the cell's wall codes don't ask for it. Faults: none; infinities and NaNs pass through.

/// The balance of a pressure-held cell (wallPressure below 0): what the faces bring in leaves again, and what they take
/// away is made up, at the cell's own temperature and velocity.
void addSink(SimState& sim, int stage, std::int32_t cell);

/// The exchange between species 0 and 1 (wallConcentration 1).
void addSpeciesExchange(SimState& sim, int stage, std::int32_t cell);

/// Adds the radiation between the cells of all pairs to the energy slopes, W. Cell 0 as second cell stands for the
/// surroundings at temperature[0]. A pair with a cell that the grid does not have is skipped.
/// Source: Stefan-Boltzmann law, with the exchange factor of the pair in m2.
void radiationPairs(SimState& sim, int stage);

/// Whether both cells of a pair [1..radPairCount] exist, so that the stage does not skip it.
bool pairInGrid(const SimState& sim, std::int32_t pair);

} // namespace norvane
