#pragma once

#include "core/sim_state.h"

namespace norvane {

/// Adds to the slopes of a cell what does not pass through a face: drag and gravity, the sink of a pressure-held cell,
/// the exchange between species 0 and 1. Called behind the last face of the cell: the sink balances the slopes so far.
///   stage  slot [1..4] that is written, at this cell only;  cell [1..nCells]
/// Faults: none; infinities and NaNs pass through.
void cellSources(SimState& sim, int stage, std::int32_t cell);

/// Adds the radiation between the cells of all pairs to the energy slopes, W. Cell 0 as second cell stands for the
/// surroundings at temperature[0]. A pair with a cell that the grid does not have is skipped.
/// Source: Stefan-Boltzmann law, with the exchange factor of the pair in m2.
void radiationPairs(SimState& sim, int stage);

/// Whether both cells of a pair [1..radPairCount] exist, so that the stage does not skip it.
bool pairInGrid(const SimState& sim, std::int32_t pair);

} // namespace norvane
