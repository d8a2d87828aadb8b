#pragma once
// The stages of a step cell by cell, as docs/equations.md has them with its numbers: the yardstick of every engine, in
// bits and in speed.

#include "core/sim_state.h"
#include "platform/interface.h"

namespace norvane::plain {

void formWorkState(SimState& sim, int stage);
void updatePrimitives(SimState& sim, const Interface& ui);
void computeSlopes(SimState& sim, int stage);

} // namespace norvane::plain
