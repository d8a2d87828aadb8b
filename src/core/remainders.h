#pragma once
// The remainders of a compensated run: what the commit of a step rounds away of each conserved quantity of a cell, kept
// for the next commit ((S4), (S5) of docs/equations.md). The fields are members of SimState.

#include "core/sim_state.h"

namespace norvane {

/// Whether the record has remainders: then the stages form the state with them.
inline bool hasRemainders(const SimState& sim) { return sim.energyRemainder.hasCell(0); }

/// As SimState::compensated says: makes remainders of 0 where there are none, or drops them. Needs a geometry. Throws
/// std::bad_alloc, and leaves none.
void fitRemainders(SimState& sim);

/// All remainders 0, where there are any.
void clearRemainders(SimState& sim);

/// Gives their memory back.
void dropRemainders(SimState& sim);

} // namespace norvane
