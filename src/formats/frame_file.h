#pragma once
// A netCDF-4 file of frames after the CF conventions 1.8: the grid once, then the fields of each frame.

#include "formats/frame_layout.h"
#include "formats/netcdf_file.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace norvane {

/// What the frames are made of.
struct FrameOrigin {
    std::string program; ///< "Norvane 0.1.0"
    std::string fingerprint;
    std::string title;
    bool isSavedState = false; ///< the fields come from a state file, not from a run
};

FrameOrigin originOf(const SimState& sim, const std::string& program);

/// Makes a file without frames, over the one at `path`: axes, grid and attributes of a model that stands. Gives what is
/// wrong, empty: nothing.
std::string
createFrameFile(const std::string& path, const SimState& sim, const FrameLayout& layout, const FrameOrigin& origin);

/// Adds frames, of which the first one becomes frame `place`, counted from 0.
std::string
addFrames(const std::string& path, const FrameLayout& layout, std::size_t place, std::span<const Frame> frames);

/// When frames were taken.
struct FrameTimes {
    std::vector<std::int32_t> steps;
    std::vector<double> times; ///< s, as many

    void cut(std::size_t frames) {
        steps.resize(frames);
        times.resize(frames);
    }
};

/// Copies frames [first..] of `times` from one file into another one of the same layout, as they are compressed.
std::string copyFrames(const std::string& from,
                       const std::string& to,
                       const FrameLayout& layout,
                       std::size_t first,
                       const FrameTimes& times);

/// What a file says of itself.
struct FrameFileInfo {
    bool isOurs = false; ///< else the rest holds nothing
    std::string fingerprint;
    std::string fields;
    FrameTimes times;
};

/// A file that is not there or holds nothing gives no fault, and is not ours.
std::string readFrameFile(const std::string& path, FrameFileInfo& info);

} // namespace norvane
