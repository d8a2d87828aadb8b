#pragma once
// The table of a loaded geometry as one text: as it is run, changes in memory included.

#include "core/sim_state.h"

#include <string>

namespace norvane {

/// All rows, each ended by a line feed.
std::string tableText(const SimState& sim);

/// The SHA-256 digest of that text.
std::string tableFingerprint(const SimState& sim);

} // namespace norvane
