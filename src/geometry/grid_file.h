#pragma once

#include "core/sim_state.h"
#include "platform/interface.h"

namespace norvane {

/// Reads the table that is selected in File1, deduces the shape of the grid from its L rows, shows the cell structure
/// and creates the arrays; runMode becomes modeGeometryRead. Text1 shows the rows and columns. Faults: each is reported
/// by a message that says what to mend, and leaves no geometry loaded (nDim 0), so that no command finds a mix of two
/// grids. During a run or another load it is refused, and nothing changes.
void loadGeometry(SimState& sim, Interface& ui);

/// Shows the cells along each dimension, unless the program was started in batch mode.
void showCellStructure(const SimState& sim, const Interface& ui);

} // namespace norvane
