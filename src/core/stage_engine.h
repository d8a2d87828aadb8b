#pragma once
// What carries out the stages of a run, whatever machine it works on.

#include "core/sim_state.h"
#include "platform/run_events.h"

#include <cstdint>
#include <functional>
#include <string>

namespace norvane {

/// A density that is not at least 0.
struct StageFault {
    int stage;         ///< [1..4] in which it came up, 0: outside of a step
    std::int32_t cell; ///< [1..nCells]
};

using FaultSink = std::function<void(const StageFault& fault)>;

/// Carries out the stages of a run on one SimState, which stays where it is and outlives the engine. All engines give
/// the same bits (docs/equations.md). The fields of the record may be left behind while stages go on elsewhere: whoever
/// reads or writes them calls `download` first, and raises SimState::revision after writing.
struct StageEngine {
    std::string name; ///< of the machine or its instruction set

    /// One stage [1..4] of a step: the work state, the primitives, the slopes. Before that the engine takes over all
    /// fields, if SimState::revision has moved since its last stage or download; stepCount is read in each stage.
    /// Faults are reported in ascending order of cells, after the stage; nothing stops at them.
    std::function<void(int stage, const FaultSink& fault)> runStage;

    /// Puts fields into the record that the stages have changed since the last time. Null: they are always there.
    std::function<void()> download;
};

/// Shows the message of a fault and sets stopFlag.
void reportFault(SimState& sim, const RunEvents& events, const StageFault& fault);

} // namespace norvane
