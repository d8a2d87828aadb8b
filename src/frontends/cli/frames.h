#pragma once
// Pictures of a run at regular steps, and a film of them.

#include "core/sim_state.h"
#include "platform/files.h"
#include "platform/interface.h"

#include <string>
#include <vector>

namespace norvane {

/// Pictures taken in a run: PNG files, numbered by their steps.
struct Frames {
    std::string prefix; ///< path of a frame up to its number
    std::vector<std::string> paths;
    std::string film; ///< that took the place of the frames; empty: they stay
    int missing = 0;  ///< frames that could not be written; the first one is reported
};

/// Draws the plot of this moment and writes it as the next frame.
void takeFrame(Frames& frames, SimState& sim, Interface& ui);

/// Takes the frames that an earlier part of the run has left, of the steps after `first` and before `step`.
void findFrames(Frames& frames, std::int32_t every, std::int32_t first, std::int32_t step);

/// Whether makeMovie finds the program that it needs.
bool canMakeMovies();

/// Makes a film of the frames with ffmpeg and removes them. Where that can't be done the frames stay; gives the reason,
/// empty when the film is made.
std::string makeMovie(const Frames& frames, const std::string& path);

} // namespace norvane
