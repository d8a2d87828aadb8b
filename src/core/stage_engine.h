#pragma once
// The stages of a step, row by row. A row is all cells that differ in dimension 1 alone; its cells lie behind one
// another in every component, so that each term is one loop over them (row_kernels.h). The result is that of the
// formulas cell by cell, bit for bit, for any instruction set and number of threads.

#include "core/stage_plan.h"
#include "platform/run_events.h"

namespace norvane {

/// One stage [1..4] of a step: the work state, the primitives, the slopes.
///   stage 2, 3, 4:  q[5] = q[0] + h k[stage-1],   h = dt/2, dt/2, dt
///   stage 1:        q[5] = q[0] + ((2 k2 + k1) + 2 k3 + k4) dt / 6,   then q[0] = q[5]
/// q is each of stageSpecies (kg), stageEnergy (J), stageMomentum (kg m/s); dt in s. A quantity that a wall code holds
/// keeps its slot 5. Faults: a density that is not at least 0 shows a message for each such cell and sets stopFlag.
/// Source: classical fourth-order Runge-Kutta (Hairer, Norsett, Wanner, Solving ODEs I, II.1).
void runStage(SimState& sim, const RunEvents& events, StagePlan& plan, int stage);

/// The parts of a stage alone. Primitives are derived from the slot stageWork.
void derivePrimitives(SimState& sim, const RunEvents& events, StagePlan& plan);
void computeSlopes(SimState& sim, StagePlan& plan, int stage);

} // namespace norvane
