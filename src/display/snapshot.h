#pragma once
// Pictures of a plot as bitmap files.

#include "core/sim_state.h"
#include "platform/interface.h"

#include <cstdint>

namespace norvane {

/// Draws the plot once more into the image that the surface keeps, and saves that beside the geometry as baseName,
/// "_yyyymmdd_hhmmss" (the moment of the call) and ".bmp"; a file of that name is replaced. Leaves the surface empty,
/// and yields once. Without a model the picture is the empty surface. `announce`: a message names the finished file.
/// Faults: a file that can't be written, reported once for a run, and always where `announce` is set.
void takeSnapshot(SimState& sim, Interface& ui, bool announce);

} // namespace norvane
