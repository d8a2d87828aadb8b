#pragma once

#include "core/sim_state.h"
#include "geometry/build_trace.h"
#include "platform/run_events.h"

namespace norvane {

/// Makes a model of the table in `grid`: defaults, keys of the rows with defaults, template cell, cell texts, volumes,
/// start state, wall codes, coefficients. Starts every run and every recall, and reads all texts again each time.
/// Behaves by runMode: with modeContinuation it keeps stage arrays, cellMass, stepCount and the display settings.
/// Leaves runMode at modeModelStands. Faults: without a geometry a message, and nothing changes. Throws std::bad_alloc.
/// `trace`: takes every assignment, for those who ask where a value comes from.
void buildModel(SimState& sim, const RunEvents& events, const BuildTrace& trace = {});

} // namespace norvane
