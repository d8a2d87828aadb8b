#include "core/run_driver.h"

#include "core/checkstop.h"
#include "core/number_text.h"
#include "core/source_terms.h"
#include "core/stage_engine.h"
#include "platform/files.h"

#include <algorithm>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <utility>

namespace norvane {

namespace {

/// Whether an output that comes every `interval` steps is due; `remainder` tells at which step of the interval.
/// In 64 bits, and with the sign of C++'s remainder: a negative interval acts as the schedule's formulas tell.
bool isDue(const SimState& sim, std::int32_t interval, std::int64_t remainder) {
    if (interval == 0) return false; // switched off
    return (std::int64_t{sim.stepCount} - 1) % interval == remainder;
}

/// The cell of the log: zero-based coordinates 4, 16, 16 where the grid reaches so far, else limited to the last cell
/// of each dimension. Gives 0 when the grid has no cells.
std::int32_t logCell(const SimState& sim) {
    if (sim.nCells < 1) return 0;
    constexpr std::int64_t place[] = {4, 16, 16};
    std::int64_t literal = 1;
    std::int64_t limited = 1;
    for (int dim = 1; dim <= std::min<int>(sim.nDim, 3); ++dim) {
        const std::int64_t stride = sim.cellStride[dim];
        literal += place[dim - 1] * stride;
        limited += std::min<std::int64_t>(place[dim - 1], sim.cellCount[dim] - 1) * stride;
    }
    const bool literalExists = sim.nDim >= 3 && literal <= sim.nCells;
    return static_cast<std::int32_t>(literalExists ? literal : limited);
}

void writeLogLine(SimState& sim, const Interface& ui) {
    const std::int32_t cell = logCell(sim);
    if (cell == 0) return;
    std::string line;
    appendFramed(line, sim.velocity(cell, 1));
    line += '\t';
    appendFramed(line, sim.pressure[cell]);
    line += "\r\n";
    const FileResult written = appendFile(joinPath(sim.inputDir, sim.baseName + "_log"), line);
    if (written || sim.told.log) return;
    sim.told.log = true;
    ui.showMessage("The log file " + sim.baseName + "_log can't be written: " + written.reason
                   + ".\r\nThe run goes on without it.");
}

void call(const std::function<void(SimState&, Interface&)>& operation, SimState& sim, Interface& ui) {
    if (operation) operation(sim, ui);
}

/// What a run keeps from step to step beside the model.
struct Run {
    StagePlan plan;
    StopFileWatch stopFile;
};

/// What follows the stages of a step. A stop that arrives behind the log line ends the run without a further plot or
/// line.
void runSchedule(SimState& sim, Interface& ui, const RunOperations& operations, Run& run) {
    if (sim.stepCount >= sim.stopStep && sim.stopStep >= 0) {
        sim.stopFlag = 1;
        sim.outcome.reachedStopStep = true;
    }
    if (isDue(sim, sim.saveEvery, std::int64_t{sim.saveEvery} - 1)) call(operations.saveState, sim, ui);
    if (isDue(sim, sim.frameEvery, std::int64_t{sim.frameEvery} - 1)) call(operations.takeSnapshot, sim, ui);
    if (isDue(sim, sim.updateEvery, 0) || sim.stopFlag == 1) {
        ui.NV_in.Text1.text = std::to_string(sim.stepCount);
        call(operations.plotField, sim, ui);
        ui.yieldToInterface();
    }
    if (sim.logEvery > 0 && (isDue(sim, sim.logEvery, 0) || sim.stopFlag == 1)) writeLogLine(sim, ui);
    ui.yieldToInterface();
    pollCheckstop(sim, ui, operations, run.stopFile);
}

void runStep(SimState& sim, Interface& ui, const RunOperations& operations, Run& run) {
    ui.stepBegan();
    if (sim.stepCount < std::numeric_limits<std::int32_t>::max()) sim.stepCount += 1;
    for (int stage = 1; stage <= 4; ++stage) {
        ui.yieldToInterface();
        runStage(sim, ui, run.plan, stage);
    }
    runSchedule(sim, ui, operations, run);
}

bool nestsTooDeep(const SimState& sim, const Interface& ui) {
    if (sim.runDepth < maxRunDepth) return false;
    ui.showMessage(std::to_string(maxRunDepth)
                   + " runs are under way on top of one another.\r\nStop them with \"disp\" before you start another.");
    return true;
}

/// Pairs outlive a new geometry: those that it puts out of range are told once, at the start of a run.
void tellSkippedPairs(const SimState& sim, const Interface& ui) {
    if (sim.radActive != 1) return;
    std::int64_t skipped = 0;
    for (std::int32_t pair = 1; pair <= sim.radPairCount; ++pair) skipped += pairInGrid(sim, pair) ? 0 : 1;
    if (skipped == 0) return;
    ui.showMessage(std::to_string(skipped) + " of " + std::to_string(sim.radPairCount)
                   + " radiation pairs name a cell that this geometry does not have.\r\n"
                     "They are skipped. Import the view factors of this geometry with \"import rad\".");
}

/// Gives no plan, after a message, where memory is short.
std::optional<StagePlan> planRun(const SimState& sim, const Interface& ui) {
    try {
        return planStages(sim, sim.threads);
    } catch (const std::bad_alloc&) {
        ui.showMessage("There is not enough memory to run this model. Draw a coarser grid.");
        return std::nullopt;
    }
}

} // namespace

void runSimulation(SimState& sim, Interface& ui, const RunOperations& operations) {
    if (nestsTooDeep(sim, ui)) return;
    sim.told = {};
    sim.outcome = {};
    call(operations.buildModel, sim, ui);
    if (sim.nDim == 0) {
        ui.showMessage("No geometry");
        return;
    }
    tellSkippedPairs(sim, ui);
    std::optional<StagePlan> plan = planRun(sim, ui);
    if (!plan) return;
    Run run{std::move(*plan), {}};
    sim.stageWork = workSlot;
    sim.stopFlag = 0;
    sim.runDepth += 1;
    ui.runBegan();
    do {
        runStep(sim, ui, operations, run);
    } while (sim.stopFlag != 1);
    ui.runEnded();
    sim.revision += 1; // for a run that was suspended in a yield meanwhile
    sim.runDepth -= 1;
}

void continueRun(SimState& sim, Interface& ui, const RunOperations& operations) {
    if (sim.nDim == 0) {
        ui.showMessage("load an input geometry first");
        return;
    }
    if (nestsTooDeep(sim, ui)) return;
    sim.runMode = modeContinuation;
    runSimulation(sim, ui, operations);
}

} // namespace norvane
