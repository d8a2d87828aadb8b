#include "core/primitive_update.h"

#include "core/processor_engine.h"

namespace norvane {

void updatePrimitives(SimState& sim, const RunEvents& events) {
    StagePlan plan = planPrimitives(sim);
    derivePrimitives(sim, plan, [&](const StageFault& fault) { reportFault(sim, events, fault); });
}

} // namespace norvane
