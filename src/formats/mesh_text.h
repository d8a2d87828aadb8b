#pragma once
// The description of a file of frames for programs that draw meshes: XDMF, which points into the data.

#include "formats/frame_file.h"

#include <string>

namespace norvane {

/// "m_frames.xdmf" beside "m_frames.nc".
std::string meshPathOf(const std::string& path);

/// A series in time of one mesh: rectilinear, or boxes with corners of their own. `dataName` is the file of the frames
/// in the same folder; the layout has a mesh.
std::string meshText(const FrameLayout& layout, const std::string& dataName, const FrameTimes& times);

/// Whether a file begins as such a description.
bool isMeshText(const std::string& beginning);

} // namespace norvane
