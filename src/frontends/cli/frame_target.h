#pragma once
// The files that frames go to, and what already lies there.

#include "formats/frame_file.h"

#include <string>

namespace norvane {

inline constexpr const char* framesEnding = "_frames.nc";
inline constexpr const char* meshEnding = "_frames.xdmf";

#define NORVANE_PROGRAM_NAME "Norvane " NORVANE_VERSION

/// Gives what speaks against writing frames to a file and the description of its mesh beside it: something else is
/// there, or nothing can be made there; empty: nothing. `info` becomes what a file of ours says of itself.
std::string faultOfTarget(const std::string& path, FrameFileInfo& info);

} // namespace norvane
