#pragma once

#include "core/stage_plan.h"

#include <cstdint>

namespace norvane {

/// The slopes of a row in a stage [1..4], (1) to (10) of docs/equations.md, once the primitives of the row and of its
/// neighbours are those of the stage.
void evaluateSlopes(SimState& sim, const StagePlan& plan, StageWorkspace& workspace, int stage, std::int64_t row);

} // namespace norvane
