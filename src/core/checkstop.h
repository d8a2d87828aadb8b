#pragma once
// The stop file: "checkstop" in the working directory holds 0, and an outside process ends a run by writing 1 into it.

#include "core/run_operations.h"

namespace norvane {

/// Writes the value 0 into the stop file, which is created if need be. A fault is told once for a run, which goes on.
void clearCheckstop(SimState& sim, const Interface& ui);

/// Ends the run and brings up the exit question when the stop file holds 1, and clears the file again. A file that is
/// missing, empty or holds something other than a number counts as 0.
void pollCheckstop(SimState& sim, Interface& ui, const RunOperations& operations);

} // namespace norvane
