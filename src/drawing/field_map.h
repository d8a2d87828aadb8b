#pragma once
// A plane of cells as a colour map: colours, walls, closed faces, held cells.

#include "display/color_tables.h"
#include "display/plane_field.h"
#include "drawing/axes.h"

#include <vector>

namespace norvane {

/// From values to colours.
struct ColorScale {
    Range range;
    bool isLog = false;
    const ColorTable* colors = nullptr; ///< never null where something is drawn

    Color of(double value) const;
};

/// Where the metres of a plane lie on a canvas.
struct MapPlace {
    AxisFrame frame;
    AxisScale across;
    AxisScale down;

    Point at(Point metres) const { return {across.place(metres.x), down.place(metres.y)}; }
};

/// Lays a plane over a frame, all of it.
MapPlace placeMap(const Plane& plane, const AxisFrame& frame);

/// Fills the cells: walls that have no value are grey, gas without one stays white. On images, and where a page would
/// hold very many cells, the cells become pixels.
void fillCells(const SimState& sim,
               const Plane& plane,
               const std::vector<float>& values,
               const ColorScale& scale,
               const MapPlace& place,
               const Canvas& canvas);

/// Lines along the walls, and thicker ones along closed faces in the gas.
void drawWalls(const SimState& sim, const Plane& plane, const MapPlace& place, const Canvas& canvas);

/// Slanting lines over the held cells.
void hatchHeld(const SimState& sim, const Plane& plane, const MapPlace& place, const Canvas& canvas);

/// Slanting lines in a box are added to others, as two points and one that is none each.
void addHatching(std::vector<Point>& lines, Point low, Point high);
void strokeHatching(const std::vector<Point>& lines, const Canvas& canvas);

} // namespace norvane
