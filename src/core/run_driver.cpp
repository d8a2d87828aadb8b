#include "core/run_driver.h"

#include "core/checkstop.h"
#include "core/processor_engine.h"
#include "core/remainders.h"
#include "core/source_terms.h"

#include <algorithm>
#include <limits>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace norvane {

namespace {

/// Whether an output that comes every `interval` steps is due; `remainder` says at which step of the interval.
/// In 64 bits, and with the sign of C++'s remainder: a negative interval acts as the formula of the schedule has it.
bool isDue(const SimState& sim, std::int32_t interval, std::int64_t remainder) {
    if (interval == 0) return false; // switched off
    return (std::int64_t{sim.stepCount} - 1) % interval == remainder;
}

/// Calls one of the operations of the floors above. Where it runs out of memory the run goes on without it.
void guarded(SimState& sim, const RunEvents& events, std::size_t number, const Output& output) {
    try {
        output.write(sim);
        return;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) { // a size beyond what the library's containers can count
    }
    const std::uint32_t bit = std::uint32_t{1} << std::min<std::size_t>(number, 31);
    if ((sim.reported.memory & bit) != 0) return;
    sim.reported.memory |= bit;
    events.showMessage(std::string("There is not enough memory for the ") + output.name
                       + ".\r\nThe run goes on without it.");
}

bool isWanted(const SimState& sim, const Output& output) {
    const std::int32_t every = output.every != nullptr ? sim.*output.every : output.steps;
    if (output.needsInterval && every <= 0) return false;
    const bool stops = output.atStop && sim.stopFlag;
    return stops || isDue(sim, every, output.lastOfInterval ? std::int64_t{every} - 1 : 0);
}

/// What a run keeps from step to step beside the model.
struct Run {
    StageEngine engine;
    bool hasStages; ///< those of the step that is counted are complete: a state was put back there
    StopFileWatch stopFile;
};

/// Before anybody else reads or writes fields.
void bringFields(const Run& run) {
    if (run.engine.download) run.engine.download();
}

/// What follows the stages of a step. A stop that arrives after the last output ends the run without a further one.
void runSchedule(SimState& sim, const RunEvents& events, const RunOperations& operations, Run& run) {
    if (sim.stepCount >= sim.stopStep && sim.stopStep >= 0) {
        sim.stopFlag = true;
        sim.outcome.reachedStopStep = true;
    }
    bringFields(run);
    for (std::size_t k = 0; k < operations.outputs.size(); ++k) {
        const Output& output = operations.outputs[k];
        if (output.write && isWanted(sim, output)) guarded(sim, events, k, output);
    }
    events.yieldToInterface();
    pollCheckstop(sim, events, operations, run.stopFile);
}

/// Those that measure the step in hand.
std::vector<const StageWatch*> watchesOf(const SimState& sim, const RunOperations& operations) {
    std::vector<const StageWatch*> watches;
    for (const StageWatch& watch : operations.watches)
        if (watch.wants(sim)) watches.push_back(&watch);
    return watches;
}

/// Begins a step and carries out its stages.
void runStages(SimState& sim, const RunEvents& events, const RunOperations& operations, Run& run) {
    events.stepBegan();
    if (sim.stepCount < std::numeric_limits<std::int32_t>::max()) sim.stepCount += 1;
    const auto report = [&](const StageFault& fault) { reportFault(sim, events, fault); };
    const std::vector<const StageWatch*> watches = watchesOf(sim, operations);
    for (int stage = 1; stage <= 4; ++stage) {
        bringFields(run);
        events.yieldToInterface();
        run.engine.runStage(stage, report);
        if (!watches.empty()) bringFields(run);
        for (const StageWatch* const watch : watches) watch->look(sim, stage);
    }
}

bool nestsTooDeep(const SimState& sim, const RunEvents& events) {
    if (sim.runDepth < maxRunDepth) return false;
    events.showMessage(
        std::to_string(maxRunDepth)
        + " runs are under way on top of one another.\r\nStop them with \"disp\" before you start another.");
    return true;
}

/// Pairs outlive a new geometry: those that it puts out of range are reported once, at the start of a run.
void reportSkippedPairs(const SimState& sim, const RunEvents& events) {
    if (!sim.radActive) return;
    std::int64_t skipped = 0;
    for (std::int32_t pair = 1; pair <= sim.radPairCount; ++pair) skipped += pairInGrid(sim, pair) ? 0 : 1;
    if (skipped == 0) return;
    events.showMessage(std::to_string(skipped) + " of " + std::to_string(sim.radPairCount)
                       + " radiation pairs name a cell that this geometry does not have.\r\n"
                         "They are skipped. Import the view factors of this geometry with \"import rad\".");
}

/// Builds the model as runMode says, or puts a state back, and makes its engine. Gives none, after a message, where
/// that can't be done.
std::optional<Run> prepareRun(SimState& sim, const RunEvents& events, const RunOperations& operations) {
    const bool isFirst = sim.runMode == modeGeometryRead;
    try {
        if (operations.buildModel) operations.buildModel(sim);
        if (sim.nDim == 0) {
            events.showMessage("No geometry");
            return std::nullopt;
        }
        fitRemainders(sim);
        for (const Output& output : operations.outputs)
            if (isFirst && output.start) output.start(sim);
        reportSkippedPairs(sim, events);
        const Restored restored = operations.restore ? operations.restore(sim) : Restored::afterOutputs;
        if (restored == Restored::failed) return std::nullopt;
        return Run{operations.makeEngine ? operations.makeEngine(sim)
                                         : processorEngine(sim, planStages(sim, sim.threads)),
                   restored == Restored::beforeOutputs,
                   {}};
    } catch (const std::bad_alloc&) {
        events.showMessage("There is not enough memory to run this model. Draw a coarser grid.");
        return std::nullopt;
    }
}

} // namespace

Output& RunOperations::output(std::string_view name) {
    const auto found =
        std::find_if(outputs.begin(), outputs.end(), [&](const Output& output) { return output.name == name; });
    if (found == outputs.end()) throw std::invalid_argument("there is no output of this name");
    return *found;
}

void runSimulation(SimState& sim, const RunEvents& events, const RunOperations& operations) {
    if (nestsTooDeep(sim, events)) return;
    sim.reported = {};
    sim.outcome = {};
    std::optional<Run> run = prepareRun(sim, events, operations);
    if (!run) return;
    sim.stageWork = workSlot;
    sim.stopFlag = false;
    sim.runDepth += 1;
    events.runBegan();
    do {
        if (!std::exchange(run->hasStages, false)) runStages(sim, events, operations, *run);
        runSchedule(sim, events, operations, *run);
    } while (!sim.stopFlag);
    events.runEnded();
    sim.revision += 1; // for a run that was suspended in a yield meanwhile
    sim.runDepth -= 1;
}

void continueRun(SimState& sim, const RunEvents& events, const RunOperations& operations) {
    if (sim.nDim == 0) {
        events.showMessage("load an input geometry first");
        return;
    }
    if (nestsTooDeep(sim, events)) return;
    sim.runMode = modeContinuation;
    runSimulation(sim, events, operations);
}

} // namespace norvane
