#pragma once

#include "core/run_operations.h"

namespace norvane {

/// Runs that may be under way at once: each but the last is suspended in a yield of the next.
constexpr int maxRunDepth = 8;

/// The whole run: builds the model as runMode tells, then steps until stopFlag is 1 at the end of a step, at least
/// once. Faults, told by a message: no geometry; too many runs on top of one another.
void runSimulation(SimState& sim, Interface& ui, const RunOperations& operations);

/// Goes on from the state as it stands. Faults as above.
void continueRun(SimState& sim, Interface& ui, const RunOperations& operations);

/// Forms the work state of a stage; in stage 1 also completes and commits the previous step.
///   stage 2, 3, 4:  q[5] = q[0] + h k[stage-1],   h = dt/2, dt/2, dt
///   stage 1:        q[5] = q[0] + ((2 k2 + k1) + 2 k3 + k4) dt / 6,   then q[0] = q[5]
/// q is each of stageSpecies (kg), stageEnergy (J), stageMomentum (kg m/s); dt in s. Reads slots 0 to 4 and the wall
/// codes; writes slot 5, in stage 1 also slot 0. A quantity that a wall code holds keeps its slot 5.
/// Source: classical fourth-order Runge-Kutta (Hairer, Norsett, Wanner, Solving ODEs I, II.1).
void formWorkState(SimState& sim, int stage);

/// Computes the slopes of a stage [1..4] from the primitive fields and the work slot, into slot `stage`.
void computeSlopes(SimState& sim, int stage);

} // namespace norvane
