#pragma once
// What lies over a colour map: contour lines, arrows of the velocity, streamlines.

#include "display/plane_flow.h"
#include "drawing/field_map.h"

#include <vector>

namespace norvane {

/// Contour lines of these levels; dashed ones differ from streamlines.
void drawContours(const SimState& sim,
                  const Plane& plane,
                  const std::vector<float>& values,
                  const std::vector<double>& levels,
                  bool dashed,
                  const MapPlace& place,
                  const Canvas& canvas);

/// What an arrow's length means.
struct ArrowScale {
    double reference = 0;     ///< m/s, a round speed; 0: the gas rests
    double unitsPerSpeed = 0; ///< units of the canvas for 1 m/s
};

/// The fastest gas gets an arrow that reaches to the next one.
ArrowScale scaleArrows(const SimState& sim, const Plane& plane, const MapPlace& place);

/// Arrows at the centres of cells; of small cells at every so many of them.
void drawArrows(const SimState& sim, const Plane& plane, const MapPlace& place, const Canvas& canvas);

/// An arrow from one point to another, with a white edge that keeps it visible on any colour.
void drawArrow(Point from, Point to, const Canvas& canvas);

void drawStreamlines(const SimState& sim, const Plane& plane, const MapPlace& place, const Canvas& canvas);

} // namespace norvane
