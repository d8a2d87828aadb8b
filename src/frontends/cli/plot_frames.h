#pragma once
// Frames that "norvane plot" draws.

#include "display/shown_quantity.h"
#include "frontends/cli/exit_status.h"
#include "frontends/cli/plot_command.h"

#include <cstddef>
#include <string>
#include <vector>

namespace norvane {

/// Frames of a file, in the order in which --frame names them.
struct PlotFrames {
    std::string path;
    std::vector<std::size_t> places; ///< in the file, from 0
    std::vector<std::int32_t> steps; ///< as many
};

/// Chooses the frames of --frame for a model that stands, from the file beside its drawing. Prints what is wrong.
ExitStatus chooseFrames(const PlotOptions& options, const SimState& sim, PlotFrames& frames);

/// Whether the frames hold the fields from which quantities follow, and with `isFlow` all velocities. Prints what they
/// lack.
bool holdFields(const PlotFrames& frames, const SimState& sim, const std::vector<ShownQuantity>& shown, bool isFlow);

/// Puts the fields of the k-th of the frames into the model. Prints what is wrong.
ExitStatus takeFrame(const PlotFrames& frames, std::size_t k, SimState& sim);

} // namespace norvane
