#pragma once

#include "core/run_operations.h"
#include "platform/run_events.h"

namespace norvane {

/// Runs that may be under way at once: each but the last is suspended in a yield of the next.
constexpr int maxRunDepth = 8;

/// The whole run: builds the model as runMode says, then steps until stopFlag is set at the end of a step, at least
/// once. Faults, each with a message: no geometry; too many runs on top of one another.
void runSimulation(SimState& sim, const RunEvents& events, const RunOperations& operations);

/// Goes on from the state as it stands. Faults as above.
void continueRun(SimState& sim, const RunEvents& events, const RunOperations& operations);

} // namespace norvane
