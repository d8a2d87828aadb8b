#pragma once

#include "core/sim_state.h"
#include "platform/interface.h"

#include <functional>

namespace norvane {

/// What the run driver calls of the floors above it. An entry that is not filled in is skipped.
struct RunOperations {
    std::function<void(SimState& sim, Interface& ui)> buildModel;
    std::function<void(SimState& sim, Interface& ui)> saveState;
    std::function<void(SimState& sim, Interface& ui)> takeSnapshot; ///< without a message
    std::function<void(SimState& sim, Interface& ui)> plotField;
    std::function<void(SimState& sim, Interface& ui)> showExitQuestion;
};

} // namespace norvane
