#pragma once
// Frames of a run, and of a model that stands. Only where there is netCDF.

#include "frontends/cli/export_command.h"
#include "frontends/cli/frame_options.h"

namespace norvane {

RunExtra framesOf(const FrameOptions& options);

/// Writes the fields of a model that stands as a file with a single frame. Gives the exit status.
int exportFrames(const ExportOptions& options, const SimState& sim);

} // namespace norvane
