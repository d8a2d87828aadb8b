#pragma once
// The report style of "norvane plot".

#include "drawing/field_figure.h"
#include "frontends/cli/chart_command.h"

namespace norvane {

/// Makes the figure of the plane of a model of two dimensions or more that stands. Gives the exit status.
ExitStatus makeFigure(const PlotOptions& options, const SimState& sim, FieldFigure& figure);

/// Draws the plane of a model that stands which its settings choose, as a figure for a report; a grid of one dimension
/// as a chart, of several frames if they are given; the first one is in the model already. Gives the exit status.
ExitStatus plotReport(const PlotOptions& options, SimState& sim, const PlotFrames& frames);

} // namespace norvane
