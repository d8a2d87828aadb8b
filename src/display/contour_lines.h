#pragma once
// Contour lines of the values in a plane of cells.

#include "display/plane_field.h"
#include "platform/canvas.h"

#include <vector>

namespace norvane {

/// The contour lines of a level, in m, each ended by a point that is none. Between the centres of neighbours values
/// follow straight lines. Where a value is missing, as in walls, there is no line.
std::vector<Point>
contourLines(const SimState& sim, const Plane& plane, const std::vector<float>& values, double level);

} // namespace norvane
