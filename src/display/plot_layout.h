#pragma once
// Where on the surface a plot lays its cells, and which cell lies at a pixel.

#include "core/sim_state.h"
#include "platform/controls.h"

#include <cstdint>
#include <string>

namespace norvane {

// Margins of the surface, in pixels.
constexpr double plotLeft = 5;
constexpr double plotTop = 25;
constexpr double legendStrip = 120; ///< kept free at the right
constexpr double plotBottom = 5;    ///< kept free below the map when a cell is placed

/// Pixels of a cell along one axis.
struct Span {
    float low;
    float high;
};

/// A cell on the surface.
struct CellBox {
    Span x;
    Span y;
    bool inRange; ///< it lies within the margins; others are left out
};

/// Lays out the plane that axisPair and sliceSel choose on a surface of this size, in pixels. Slices and zooms that are
/// none count as they are: plotField corrects them first.
PlotLayout layOut(const SimState& sim, float width, float height);

/// The cell at two coordinates along the axes of the plane.
std::int32_t cellOfPlane(const PlotLayout& layout, std::int64_t across, std::int64_t down);

/// A cell is one pixel inside its rounded edges, so that the background shows as seams between cells.
CellBox placeCell(const PlotLayout& layout, const SimState& sim, std::int32_t cell);

/// The cell painted at a pixel, the last one where cells share it; 0: none, or the picture shows another grid. The seam
/// before a cell belongs to it.
std::int32_t cellAt(const PlotLayout& layout, const SimState& sim, double x, double y);

/// The two characters that name a dimension [1..4] on the screen, empty for any other.
std::string dimensionMark(int dim);

/// The number of a cell, its coordinates, position and present value of the quantity that is drawn.
std::string describeCell(const PlotLayout& layout, const SimState& sim, std::int32_t cell);

} // namespace norvane
