#pragma once
// The grid in a file of frames: where its cells are, how large, and what their walls are.

#include "formats/frame_layout.h"
#include "formats/netcdf_file.h"

#include <string>
#include <vector>

namespace norvane {

/// Defines the dimensions of the grid, the last one first, and gives them in that order. Of a rectilinear grid the axes
/// are coordinate variables with bounds.
std::vector<int> addAxes(NetcdfFile& file, const SimState& sim, const FrameLayout& layout);

/// Writes the axes, and numbers, sizes, positions, heights, volumes and wall codes of the cells. `axes` are the
/// dimensions of the grid. Where it has a mesh that is not rectilinear come the corners of its cells.
void addGrid(NetcdfFile& file, const SimState& sim, const FrameLayout& layout, const std::vector<int>& axes);

/// The auxiliary coordinates of a grid that is not rectilinear: "centre_x centre_y".
std::string centreNames(const FrameLayout& layout);

} // namespace norvane
