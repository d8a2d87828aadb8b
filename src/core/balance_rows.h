#pragma once
// The sums of a balance that go over all cells. A row is summed in four lanes, and rows are added in their order: the
// sums have the same bits for any number of threads.

#include "core/balance.h"

namespace norvane {

/// Adds (4) pressure force, (7) drag and (8) gravity of a stage to `plan.stageSums`.
void addForces(const SimState& sim, BalancePlan& plan);

/// After the fourth stage: forms what the next commit (S3) will, and sums it.
void sumQuantities(const SimState& sim, BalancePlan& plan, StepBalance& balance);

} // namespace norvane
