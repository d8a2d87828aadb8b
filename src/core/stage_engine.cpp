#include "core/stage_engine.h"

namespace norvane {

void reportFault(SimState& sim, const RunEvents& events, const StageFault& fault) {
    events.showMessage({"Stopped because of negative density in point " + std::to_string(fault.cell),
                        ReportKind::negativeDensity, fault.cell});
    sim.stopFlag = true;
    sim.outcome.negativeDensity = true;
}

} // namespace norvane
