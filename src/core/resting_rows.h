#pragma once
// Skips rows in which nothing happens; StagePlan::resting holds their flags.

#include "core/stage_plan.h"

#include <cstdint>

namespace norvane {

/// Before a stage: wakes all rows where something else than the stages has written fields.
void reviewResting(const SimState& sim, StagePlan& plan);

/// At a row's turn in a stage: notes whether its state stays as it is. False: nothing is to be formed.
bool wakesForPrimitives(StagePlan& plan, std::int64_t row);

/// After the primitives of a row were recovered in a stage [1..4].
void noteRecovered(StagePlan& plan, int stage, std::int64_t row);

/// When the primitives of a row and of its neighbours are those of this stage: counts the stages in which they stay as
/// they are. False: the slopes are known.
bool wakesForSlopes(const SimState& sim, StagePlan& plan, std::int64_t row);

/// After the slopes of a row were evaluated.
void noteSlopes(const SimState& sim, StagePlan& plan, int stage, std::int64_t row);

} // namespace norvane
