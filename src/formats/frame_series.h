#pragma once
// A file of frames that grows while others read it, and that a kill at any moment leaves whole. HDF5 files are not safe
// while they are modified. So the file that has the name is never modified: a second one beside it, which lacks the
// latest frames, takes these from it and the new ones, and exchanges names with it.

#include "formats/frame_file.h"
#include "formats/frame_layout.h"

#include <cstddef>
#include <span>
#include <string>

namespace norvane {

/// Functions that give a text give what is wrong, empty: nothing. At a fault the file stays as it was.
class FrameSeries {
public:
    /// `path` ends in ".nc"; the description of the mesh lies beside it as ".xdmf".
    FrameSeries(const std::string& path, FrameLayout layout);

    const std::string& path() const { return path_; }

    const std::string& meshPath() const { return meshPath_; }

    const FrameLayout& layout() const { return layout_; }

    const FrameTimes& times() const { return times_; }

    /// Begins a file with a frame of a model that stands, in place of an earlier file.
    std::string begin(const SimState& sim, const FrameOrigin& origin, const Frame& first);

    /// Goes on after the first frames of the file that is there, whose layout is this one.
    std::string goOn(const SimState& sim, const FrameOrigin& origin, std::size_t frames);

    std::string add(std::span<const Frame> frames);

    /// Brings the description of the mesh up to date, and takes away what lies beside the file. A file that is not
    /// large is written anew: its bytes then depend on its frames alone, not on how often a run was interrupted.
    std::string end(const SimState& sim, const FrameOrigin& origin);

private:
    std::string rewrite(const SimState& sim, const FrameOrigin& origin, std::size_t frames);
    void note(std::span<const Frame> frames);
    std::string bringNext();
    std::string exchange();
    std::string takeName();
    std::string writeMesh();
    bool isMeshDue() const;

    std::string path_;
    std::string meshPath_;
    std::string nextPath_;  ///< the second file
    std::string olderPath_; ///< the file that had the name, for a moment
    FrameLayout layout_;
    FrameTimes times_;
    std::size_t nextFrames_ = 0; ///< frames in the second file
    bool hasNext_ = false;
    std::size_t meshFrames_ = 0; ///< frames that the description of the mesh names
};

} // namespace norvane
