#include "core/processor_engine.h"

#include "core/primitive_rows.h"
#include "core/remainders.h"
#include "core/resting_rows.h"
#include "core/slope_rows.h"
#include "core/source_terms.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <memory>
#include <utility>

namespace norvane {

namespace {

/// The planes [begin .. end - 1] of one thread, and the interior ones, whose slopes read no plane of another thread.
struct PlaneRange {
    std::int64_t begin;
    std::int64_t end;
    std::int64_t beginInterior;
    std::int64_t endInterior;
};

PlaneRange planesOf(const StagePlan& plan, int thread) {
    const std::int64_t begin = plan.partition[static_cast<std::size_t>(thread)];
    const std::int64_t end = plan.partition[static_cast<std::size_t>(thread) + 1];
    const std::int64_t beginInterior = begin == 0 ? 0 : std::min(begin + plan.stencilWidth, end);
    const std::int64_t endInterior = end == plan.planes ? end : std::max(end - plan.stencilWidth, beginInterior);
    return {begin, end, beginInterior, endInterior};
}

/// Calls `work(row)` for all rows of the planes [begin .. end - 1].
template <class Work>
void forRows(const StagePlan& plan, std::int64_t begin, std::int64_t end, const Work& work) {
    for (std::int64_t row = begin * plan.planeRows; row < end * plan.planeRows; ++row) work(row);
}

/// Recovers a tile of rows in all planes of a range, and right after that evaluates what can be: planes stencilWidth
/// back, and one row back within a plane, since the next tile recovers the neighbours of the last row. The two
/// alternate row by row, so that the processor prefetches the next rows to recover while it works on slopes.
template <class Recover, class Evaluate>
void sweepTile(const StagePlan& plan,
               const PlaneRange& planes,
               std::int64_t from,
               std::int64_t to,
               const Recover& recover,
               const Evaluate& evaluate) {
    for (std::int64_t plane = planes.begin; plane < planes.end + plan.stencilWidth; ++plane) {
        const std::int64_t behind = plane - plan.stencilWidth;
        const bool evaluates = behind >= planes.beginInterior && behind < planes.endInterior;
        for (std::int64_t row = from; row < to; ++row) {
            if (plane < planes.end) recover(plane * plan.planeRows + row);
            if (evaluates && row > 0) evaluate(behind * plan.planeRows + row - 1);
        }
        if (evaluates && to == plan.planeRows) evaluate(behind * plan.planeRows + to - 1);
    }
}

/// Moves the bounds of the partition a little to where all threads would have taken the same time: cores differ in what
/// other programs leave of them, and planes in how many of their rows rest.
void balancePartition(StagePlan& plan) {
    constexpr double pace = 0.1; // one odd stage must not upset the partition
    const std::size_t threads = plan.workspaces.size();
    double total = 0;
    for (const StageWorkspace& workspace : plan.workspaces) total += workspace.seconds;
    std::size_t thread = 0; // whose planes the bound falls into
    double before = 0;      // seconds of the threads before it
    const std::vector<std::int64_t>& old = plan.partition;
    for (std::size_t k = 1; k < threads && total > 0; ++k) {
        const double wanted = total * static_cast<double>(k) / static_cast<double>(threads);
        while (thread + 1 < threads && before + plan.workspaces[thread].seconds < wanted)
            before += plan.workspaces[thread++].seconds;
        const double part = (wanted - before) / std::max(plan.workspaces[thread].seconds, 1e-9);
        const double bound =
            static_cast<double>(old[thread]) + part * static_cast<double>(old[thread + 1] - old[thread]);
        const double moved = static_cast<double>(old[k]) + pace * (bound - static_cast<double>(old[k]));
        plan.nextPartition[k] =
            std::clamp(static_cast<std::int64_t>(std::llround(moved)), plan.nextPartition[k - 1], plan.planes);
    }
    std::copy(plan.nextPartition.begin(), plan.nextPartition.end(), plan.partition.begin()); // allocates nothing
}

/// Recovers all rows and evaluates all rows, in one sweep as far as possible: a row is evaluated while its neighbours
/// are still in the cache. `recover` and `evaluate` take a workspace and a row. A tile is so narrow that its rows in
/// the planes of one stencil fit into the cache.
template <class Recover, class Evaluate>
void sweepRows(StagePlan& plan, const Recover& recover, const Evaluate& evaluate) {
    const auto work = [&](int thread) {
        StageWorkspace& workspace = plan.workspaces[static_cast<std::size_t>(thread)];
        const auto recoverRow = [&](std::int64_t row) { recover(workspace, row); };
        const auto evaluateRow = [&](std::int64_t row) { evaluate(workspace, row); };
        const PlaneRange planes = planesOf(plan, thread);
        const auto start = std::chrono::steady_clock::now();
        for (std::int64_t from = 0; from < plan.planeRows; from += plan.tileRows)
            sweepTile(plan, planes, from, std::min(from + plan.tileRows, plan.planeRows), recoverRow, evaluateRow);
        workspace.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        plan.team->wait();
        forRows(plan, planes.begin, planes.beginInterior, evaluateRow);
        forRows(plan, planes.endInterior, planes.end, evaluateRow);
    };
    plan.team->run(std::ref(work)); // by reference, which allocates nothing
    balancePartition(plan);
}

/// Only a stage that met a fault looks for the cells: threads note no more than that there is one.
void reportFaults(const SimState& sim, StagePlan& plan, int stage, const FaultSink& fault) {
    bool any = false;
    for (StageWorkspace& workspace : plan.workspaces) any |= std::exchange(workspace.hasFaults, false);
    for (std::int32_t cell = 1; any && cell <= sim.nCells; ++cell)
        if (isFaulty(sim.density[cell])) fault({stage, cell});
}

/// Whether the upper faces of a row may be open to all flows. Whoever computes slopes alone may have set densities.
bool isDense(const SimState& sim, const StagePlan& plan, std::int64_t row) {
    const float* const first = &sim.density[firstCell(plan, row)];
    return std::all_of(first, first + plan.rowCells, [&](float density) { return density > sim.rhoFloor; });
}

Forming formingOf(const SimState& sim, int stage) {
    if (hasRemainders(sim)) return stage == 1 ? Forming::compensated : Forming::compensatedTrial;
    return stage == 1 ? Forming::completed : Forming::trial;
}

const auto nothing = [](StageWorkspace&, std::int64_t) {};

} // namespace

void runStage(SimState& sim, StagePlan& plan, int stage, const FaultSink& fault) {
    const Forming forming = formingOf(sim, stage);
    reviewResting(sim, plan);
    sweepRows(
        plan,
        [&](StageWorkspace& workspace, std::int64_t row) {
            if (!wakesForPrimitives(plan, row)) return;
            recoverPrimitives(sim, plan, workspace, forming, stage, row);
            noteRecovered(plan, stage, row);
        },
        [&](StageWorkspace& workspace, std::int64_t row) {
            if (!wakesForSlopes(sim, plan, row)) return;
            evaluateSlopes(sim, plan, workspace, stage, row);
            noteSlopes(sim, plan, stage, row);
        });
    reportFaults(sim, plan, stage, fault);
    if (sim.radActive) radiationPairs(sim, stage);
}

void derivePrimitives(SimState& sim, StagePlan& plan, const FaultSink& fault) {
    const auto recover = [&](StageWorkspace& workspace, std::int64_t row) {
        recoverPrimitives(sim, plan, workspace, Forming::none, 1, row);
    };
    sweepRows(plan, recover, nothing);
    reportFaults(sim, plan, 0, fault);
}

void computeSlopes(SimState& sim, StagePlan& plan, int stage) {
    for (std::int64_t row = 0; row < plan.rows; ++row) plan.thinRow[row] = isDense(sim, plan, row) ? 0 : 1;
    sweepRows(plan, nothing,
              [&](StageWorkspace& workspace, std::int64_t row) { evaluateSlopes(sim, plan, workspace, stage, row); });
    if (sim.radActive) radiationPairs(sim, stage);
}

StageEngine processorEngine(SimState& sim, StagePlan plan) {
    const auto kept = std::make_shared<StagePlan>(std::move(plan)); // std::function asks for what can be copied
    return {kept->kernels->name,
            [&sim, kept](int stage, const FaultSink& fault) { runStage(sim, *kept, stage, fault); },
            {}};
}

} // namespace norvane
