#pragma once
// The largest time step that a model is stable with.

#include "core/sim_state.h"

#include <cstdint>

namespace norvane {

/// What limits the time step.
enum class StepLimit : std::uint8_t { none, sound, conduction, friction, reaction };

/// The limit of one kind: the step in s and the cell that sets it; 0: nothing limits it.
struct LimitingCell {
    double step = 0;
    std::int32_t cell = 0;
};

/// Estimated for the fields as they are: a model that has just been built, or a state of a run. Of a model at rest
/// the speed that its pressures will start is not in it; `extraSpeed` (m/s) is added to the flow through every face.
struct StableStep {
    LimitingCell sound;      ///< sound and flow
    LimitingCell conduction; ///< heat conduction, radiation and flow
    LimitingCell friction;   ///< viscosity, drag and flow
    LimitingCell reaction;   ///< exchange of species 0 and 1
    /// Flow towards lower numbers that no step is small enough for: c^2 <= |u| (|u| + 2 ET/(rho dx) + RR dx/(2 rho)).
    std::int32_t againstUpwind = 0;

    LimitingCell smallest() const;
    StepLimit kind() const;
};

/// "sound and flow", "viscosity and drag" ...
const char* limitText(StepLimit kind);

/// Stability of the classical fourth-order Runge-Kutta method on the staggered grid: per cell, with the sums
/// k, v, r, b, a over its faces, DT <= 2.785/(2a + k), 2.785/(2a + v + r), 2.62/(a + b). 0.997 to 1.74 times these were
/// found by bisection on 110 random models.
StableStep stableStep(const SimState& sim, double extraSpeed);

} // namespace norvane
