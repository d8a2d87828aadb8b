#pragma once
// Charts of "norvane plot": profiles along lines of cells, and probes over time.

#include "display/profile.h"
#include "display/shown_quantity.h"
#include "drawing/figure_file.h"
#include "frontends/cli/console.h"
#include "frontends/cli/plot_command.h"
#include "frontends/cli/plot_frames.h"

#include <optional>
#include <string>
#include <vector>

namespace norvane {

/// Draws the profiles of a model that stands, or of several frames, which it takes; the first one is there already.
/// Gives the exit status.
ExitStatus plotProfiles(const PlotOptions& options, SimState& sim, const PlotFrames& frames);

/// Draws quantities of a list along lines of cells, which are not empty. Gives the exit status.
ExitStatus plotLines(const PlotOptions& options,
                     SimState& sim,
                     const PlotFrames& frames,
                     const std::vector<CellLine>& lines,
                     const std::string& quantities);

/// "step 200, t = 0.02 s", or which step a saved state is of: its fields are those at the start of that step.
std::string momentOf(const PlotOptions& options, const SimState& sim);

/// Draws the probes of a geometry that is loaded. Gives the exit status.
ExitStatus plotHistory(const PlotOptions& options, const SimState& sim);

/// The component of a quantity of the catalogue that a text names; none after a message. 0 is another quantity.
std::optional<int> componentNamed(const std::string& text, const SimState& sim, int quantity);

/// The quantities of a list such as "T,p,u"; without one, the quantity that the geometry shows. Gives false after a
/// message.
bool chosenQuantities(const PlotOptions& options,
                      const SimState& sim,
                      const std::string& list,
                      std::vector<ShownQuantity>& shown);

/// Sizes a canvas as --size says, without it to a width that fits a page. The height of one that is not given is 0.
/// Gives false after a message.
bool sizeCanvas(const PlotOptions& options, bool isPage, Canvas& canvas);

/// Writes a figure; prints what prevents it.
ExitStatus writtenFigure(const FigureFile& figure, const std::string& path);

} // namespace norvane
