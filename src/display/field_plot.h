#pragma once
// The plot: one plane of cells as a colour map with a legend, or as velocity arrows.

#include "core/sim_state.h"
#include "platform/interface.h"

namespace norvane {

/// Draws the plane of cells that axisPair and sliceSel choose on the plot window, shows the window, and rewrites the
/// plot file. Does nothing before a model has been built (density[0] is not above 0). Reads the primitive fields, the
/// geometry, wall codes and the display settings. Corrects settings where it uses them and stores that: zoom of both
/// axes not above 0 becomes 1; showDims becomes one that the quantity has; in a vector plot scaleMin and scaleMax not
/// above 0 become 1; a slice that does not exist becomes slice 0. A showWhat below 1 draws as 1, and stays. An axis
/// that the grid does not have (the second one of a one-dimensional grid) makes the plot a band, one cell of a fixed
/// height. Leaves the layout with the window. Faults: a plot file that can't be written, reported once for a run or a
/// click.
void plotField(SimState& sim, Interface& ui);

/// The same without the plot file.
void drawField(SimState& sim, Interface& ui);

/// Clears the picture; no cell lies at its pixels then.
void clearPlot(Interface& ui);

/// The plot window got another inner size: its picture stays away until the next plot, which sizes the surface anew.
void resizePlotWindow(Interface& ui);

/// The smallest and the largest finite value of the plane that plotField would draw.
struct PlaneRange {
    bool found = false; ///< false: no model, a vector plot, or no finite value
    float low = 0;
    float high = 0;
};

PlaneRange planeRange(const SimState& sim);

} // namespace norvane
