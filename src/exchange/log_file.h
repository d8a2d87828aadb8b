#pragma once
// The log of a run: baseName + "_log" in inputDir, a line for each logged step with velocity along dimension 1, m/s, a
// tab, and pressure, Pa, of one cell.

#include "core/sim_state.h"
#include "platform/run_events.h"

namespace norvane {

/// The cell of the log: zero-based coordinates 4, 16, 16 where the grid reaches so far, else limited to the last cell
/// of each dimension. Gives 0 when the grid has no cells.
std::int32_t logCell(const SimState& sim);

/// Empties the log of an earlier run, creating the file if need be. A fault is reported once for a run.
void startLog(SimState& sim, const RunEvents& events);

/// Adds the line of this step; nothing on a grid without cells. A fault is reported, and the log of the run ends there.
void writeLogLine(SimState& sim, const RunEvents& events);

} // namespace norvane
