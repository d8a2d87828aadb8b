#pragma once
// The flow in a plane of cells: velocities at the centres of cells, and streamlines.

#include "display/plane_field.h"
#include "platform/canvas.h"

#include <vector>

namespace norvane {

/// The velocity in the middle of a cell [0..cells.size()-1] of a plane, m/s across and down: the mean of its two faces
/// along each dimension; at the first cell of a row its one face. 0 in walls.
Point centreVelocity(const SimState& sim, const Plane& plane, std::size_t k);

struct Streamline {
    std::vector<Point> points; ///< m, in the direction of the flow
};

/// Streamlines of the velocities within the plane, everywhere at least about `distance` (m, above 0) from one another.
/// In a cell each velocity follows a straight line from face to face, so that a line doesn't cross a wall. They end at
/// the edges of the plane, where they come to another one or meet themselves, and where the gas rests.
std::vector<Streamline> streamlines(const SimState& sim, const Plane& plane, double distance);

} // namespace norvane
