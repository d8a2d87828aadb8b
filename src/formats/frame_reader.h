#pragma once
// Fields of a frame, read back into a model.

#include "core/sim_state.h"

#include <cstddef>
#include <string>
#include <vector>

namespace norvane {

/// The fields of a file of frames that a model takes back by their short names, such as T, p, rho, u, c0.
std::vector<std::string> fieldsInFrames(const std::string& path, const SimState& sim);

/// Puts the fields of frame `place`, counted from 0, into a model that stands, and its step. What the file lacks stays.
/// A frame of another step than `step`, or fields of another shape, are a fault; then the model may hold some fields
/// of the frame. Gives what is wrong; empty: nothing. Throws std::bad_alloc.
std::string readFrame(const std::string& path, std::size_t place, std::int32_t step, SimState& sim);

} // namespace norvane
