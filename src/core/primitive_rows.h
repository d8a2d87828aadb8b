#pragma once

#include "core/stage_plan.h"

#include <cstdint>

namespace norvane {

/// Whether a density is a fault. "Not >=" instead of "<": a NaN fails every comparison, and it has to stop a run, too.
inline bool isFaulty(float density) { return !(density >= 0.0f); }

/// The work state of a row in a stage [1..4], (S1) to (S5) of docs/equations.md, and its primitives, (P1) to (P6). The
/// stage counts for a trial alone. Faults are left to StageWorkspace::hasFaults.
void recoverPrimitives(
    SimState& sim, StagePlan& plan, StageWorkspace& workspace, Forming forming, int stage, std::int64_t row);

} // namespace norvane
