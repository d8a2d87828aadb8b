#pragma once

#include "core/sim_state.h"
#include "core/stage_engine.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace norvane {

/// Something that a run writes or shows every so many steps.
struct Output {
    const char* name = "";                      ///< for messages ("the plot"), and to find it
    std::int32_t SimState::*every = nullptr;    ///< steps between two; 0: none but that of the stop
    std::int32_t steps = 0;                     ///< the same for an output that no key asks for, where `every` is null
    bool lastOfInterval = false;                ///< comes at steps n, 2n ...; else at steps 1, n + 1, 2n + 1 ...
    bool atStop = false;                        ///< comes after the last step of a run as well
    bool needsInterval = false;                 ///< an interval of 0 or below means none at all
    std::function<void(SimState& sim)> start{}; ///< before the first run of a geometry
    std::function<void(SimState& sim)> write{};
};

/// Something that measures stages as they go by. It writes no field.
struct StageWatch {
    std::function<bool(const SimState& sim)> wants;           ///< asked when a step has begun: measures it?
    std::function<void(const SimState& sim, int stage)> look; ///< after each stage [1..4] of such a step
};

/// What became of a state that was put back.
enum class Restored : std::uint8_t {
    failed,        ///< reported; there is no run
    beforeOutputs, ///< the stages of the step that stepCount counts are complete, its outputs are to come
    afterOutputs,  ///< the next step begins
};

/// What the run driver calls of the floors above it. An entry that is not filled in is skipped.
struct RunOperations {
    std::function<void(SimState& sim)> buildModel;
    /// Puts back what an earlier run kept (core/run_memory.h), when the model is built.
    std::function<Restored(SimState& sim)> restore;
    std::function<StageEngine(SimState& sim)> makeEngine; ///< of a model that was just built; none: the processor's
    std::function<void(SimState& sim)> showExitQuestion;
    std::vector<Output> outputs;     ///< in the order in which they come after a step
    std::vector<StageWatch> watches; ///< in the order in which they look at a stage

    /// The output of a name, which there must be.
    Output& output(std::string_view name);
};

} // namespace norvane
