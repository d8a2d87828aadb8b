#pragma once

#include "core/sim_state.h"
#include "platform/interface.h"

namespace norvane {

/// Makes a model of the table in `grid`: defaults, keys of the rows with defaults, template cell, cell texts, volumes,
/// start state, wall codes, coefficients. Starts every run and every recall, and reads all texts again each time.
/// Behaves by runMode: with modeContinuation it keeps stage arrays, cellMass, stepCount and the display settings; with
/// modeGeometryRead and logEvery above 0 it empties the log file. Leaves runMode at modeModelStands.
/// Faults: without a geometry a message, and nothing changes; a log file that can't be written, a message.
void buildModel(SimState& sim, Interface& ui);

} // namespace norvane
