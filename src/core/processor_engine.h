#pragma once
// The stages of a step on the processor, row by row. A row is all cells that differ in dimension 1 alone; its cells are
// contiguous in every component, so that each term is one loop over them (row_kernels.h). The result is that of the
// formulas cell by cell, bit for bit, for any instruction set and number of threads.

#include "core/stage_engine.h"
#include "core/stage_plan.h"

namespace norvane {

/// The engine that works in the fields of `sim` themselves. `plan` is that of the same model.
StageEngine processorEngine(SimState& sim, StagePlan plan);

/// One stage [1..4] of a step, (S1) to (11) of docs/equations.md: reads the slopes of the stage before (stage 1: of all
/// four), writes slots 5 and `stage`, in stage 1 also slot 0 and remainders, where there are any, and the primitives.
/// Source: classical fourth-order Runge-Kutta (Hairer, Norsett, Wanner, Solving ODEs I, II.1).
void runStage(SimState& sim, StagePlan& plan, int stage, const FaultSink& fault);

/// Primitives of the slot stageWork, as it stands.
void derivePrimitives(SimState& sim, StagePlan& plan, const FaultSink& fault);

/// The slopes of a stage [1..4], of the primitives as they stand.
void computeSlopes(SimState& sim, StagePlan& plan, int stage);

} // namespace norvane
