#include "core/stage_engine.h"

#include "core/addressing.h"
#include "core/primitive_update.h"
#include "core/source_terms.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <string>

namespace norvane {

namespace {

// --- work state and primitives ---------------------------------------------------------------------------------------

/// `stage` [1..4]; 1 completes the step before.
template <class Slots>
ConservedRows conservedRows(Slots& slots, int work, std::int64_t component, std::int64_t first, int stage) {
    ConservedRows rows;
    rows.work = slots.slot(work).component(component) + first;
    rows.committed = slots.slot(committedSlot).component(component) + first;
    for (int k = 1; k <= 4; ++k) rows.slopes[k] = slots.slot(k).component(component) + first;
    rows.stage = stage - 1;
    rows.stride = slots.slot(work).componentStride();
    return rows;
}

void setCodes(
    const SimState& sim, const StagePlan& plan, StageWorkspace& workspace, std::int64_t row, PrimitiveRows& p) {
    const std::int64_t first = firstCell(plan, row);
    const RowTraits& traits = plan.rowTraits[row];
    if (traits.heldSpecies) p.speciesCode = &sim.wallPressure[first];
    if (traits.heldEnergy) p.energyCode = &sim.wallTemperature[first];
    if (traits.heldConcentration) p.concentrationCode = &sim.wallConcentration[first];
    p.held = traits.heldSpecies || traits.heldEnergy || traits.heldConcentration;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const bool held = plan.dimensionTraits[row * sim.nDim + dim - 1].held;
        workspace.velocityCodes[dim - 1] = held ? sim.wallVelocity.component(dim) + first : nullptr;
        p.held |= held;
    }
    p.velocityCodes = workspace.velocityCodes.data();
}

PrimitiveRows preparedRows(SimState& sim, const StagePlan& plan, std::int64_t row, int stage) {
    const std::int64_t first = firstCell(plan, row);
    PrimitiveRows p;
    p.count = plan.rowCells;
    p.forming = stage == 0 ? Forming::none : stage == 1 ? Forming::completed : Forming::trial;
    p.increment = stage == 1 || stage == 4 ? double(sim.dt) : double(sim.dt) * 0.5;
    p.gasFactor = sim.gasFactor;
    p.densityFloor = sim.rhoFloor;
    p.species = conservedRows(sim.stageSpecies, sim.stageWork, 0, first, stage);
    p.energy = conservedRows(sim.stageEnergy, sim.stageWork, 0, first, stage);
    p.momentum = conservedRows(sim.stageMomentum, sim.stageWork, 1, first, stage);
    p.volume = plan.volume.row(row);
    p.capacity = plan.capacity.row(row);
    p.mass = &sim.cellMass[first];
    p.density = &sim.density[first];
    p.concentrations = {sim.concentration.component(0) + first, sim.concentration.componentStride(), sim.nsMax + 1};
    p.temperature = &sim.temperature[first];
    p.velocities = {sim.velocity.component(1) + first, sim.velocity.componentStride(), sim.nDim};
    p.pressure = &sim.pressure[first];
    return p;
}

/// Keeps the cells whose density is a fault for the messages of the stage.
void noteFaultyCells(const SimState& sim, const StagePlan& plan, StageWorkspace& workspace, std::int64_t first) {
    for (std::int64_t cell = first; cell < first + plan.rowCells; ++cell) {
        // "not >=" instead of "<": a NaN fails every comparison, and it has to stop the run as well.
        if (!(sim.density[cell] >= 0.0f)) workspace.faultyCells.push_back(static_cast<std::int32_t>(cell));
    }
}

/// The work state of a stage [1..4], or 0: as it stands, and the primitives of a row.
void prepareRow(SimState& sim, StagePlan& plan, StageWorkspace& workspace, int stage, std::int64_t row) {
    const std::int64_t first = firstCell(plan, row);
    PrimitiveRows p = preparedRows(sim, plan, row, stage);
    setCodes(sim, plan, workspace, row, p);
    // Most rows have no code but the one that closes their end: what it keeps is put back.
    const std::int64_t last = first + plan.rowCells - 1;
    const float momentum = sim.stageMomentum(sim.stageWork, last, 1);
    const float velocity = sim.velocity(last, 1);
    const bool dense = plan.kernels->recoverPrimitives(p);
    if (plan.rowTraits[row].closedEnd) {
        if (stage == 1) sim.stageMomentum(committedSlot, last, 1) = momentum;
        sim.stageMomentum(sim.stageWork, last, 1) = momentum;
        sim.velocity(last, 1) = velocity;
    }
    plan.thinRow[row] = dense ? 0 : 1;
    if (!dense || sim.rhoFloor < 0) noteFaultyCells(sim, plan, workspace, first);
    for (std::int64_t k = plan.imposedOfRow[row]; k < plan.imposedOfRow[row + 1]; ++k)
        imposeHeldValues(sim, plan.imposedCells[k]);
}

/// Messages come in the order of the cells, whichever thread and strip found them.
void tellFaultyCells(SimState& sim, const RunEvents& events, StagePlan& plan) {
    for (StageWorkspace& workspace : plan.workspaces) {
        std::sort(workspace.faultyCells.begin(), workspace.faultyCells.end());
        for (const std::int32_t cell : workspace.faultyCells) {
            events.showMessage({"Stopped because of negative density in point " + std::to_string(cell),
                                ReportKind::negativeDensity, cell});
            sim.stopFlag = 1;
            sim.outcome.negativeDensity = true;
        }
        workspace.faultyCells.clear();
    }
}

// --- slopes ----------------------------------------------------------------------------------------------------------

struct SlopeRow {
    SimState& sim;
    const StagePlan& plan;
    StageWorkspace& workspace;
    int stage;
    std::int64_t row;
    std::int64_t first;

    std::int64_t* gates(int side) const { return workspace.openFaces.data() + side * plan.paddedCells; }

    float* slope(auto& slots, std::int64_t component) const { return slots.slot(stage).component(component) + first; }
};

/// Whether some upper face of a row towards the row `rowStride` further is closed, or may have an empty donor.
bool isGated(const SlopeRow& r, int dim, std::int64_t row, std::int64_t rowStride) {
    return r.plan.dimensionTraits[row * r.sim.nDim + dim - 1].closed || r.plan.thinRow[row] != 0
           || r.plan.thinRow[row + rowStride] != 0;
}

void openFaces(const SlopeRow& r, int dim, std::int64_t cell, int count, std::int64_t* open) {
    const SimState& sim = r.sim;
    r.plan.kernels->maskFaces(count, sim.cellStride[dim], open, sim.wallVelocity.component(dim) + cell,
                              sim.velocity.component(dim) + cell, &sim.density[cell], sim.rhoFloor);
}

/// `below` and `above`: the rows of the neighbours, or the row itself. Along dimension 1 the lower face of a cell is
/// the upper one of the cell before it, and where they are the same in all cells it matters not which is read.
void setCoefficients(const SlopeRow& r, int dim, FaceRows& faces, std::int64_t below, std::int64_t above) {
    const StagePlan& plan = r.plan;
    const auto isConstantIn = [&](std::int64_t row) {
        return plan.dimensionTraits[row * r.sim.nDim + dim - 1].constant;
    };
    faces.constant = isConstantIn(r.row) && isConstantIn(below) && isConstantIn(above);
    const int shift = dim == 1 && !faces.constant ? 1 : 0;
    faces.inverseSize = plan.inverseSize[dim - 1].row(r.row);
    faces.inverseSizeLower = plan.inverseSize[dim - 1].row(below) - shift;
    faces.conduction = plan.conduction[dim - 1].row(r.row);
    faces.conductionLower = plan.conduction[dim - 1].row(below) - shift;
    faces.viscous = plan.viscous[dim - 1].row(r.row);
    faces.viscousLower = plan.viscous[dim - 1].row(below) - shift;
    faces.capacity = plan.capacity.row(r.row);
    faces.capacityBelow = plan.capacity.row(below) - shift;
    faces.capacityAbove = plan.capacity.row(above) + shift;
    faces.area = plan.area[dim - 1].row(r.row);
}

/// All components are carried across the faces of every dimension, with no shift to their staggered places.
void setCarried(const SlopeRow& r, int dim, FaceRows& faces) {
    SimState& sim = r.sim;
    const std::int64_t first = r.first;
    auto& speciesSlopes = sim.stageSpecies.slot(r.stage);
    auto& momentumSlopes = sim.stageMomentum.slot(r.stage);
    faces.normal = dim - 1;
    faces.momentum = sim.stageMomentum.slot(workSlot).component(dim) + first;
    faces.temperature = &sim.temperature[first];
    faces.pressure = &sim.pressure[first];
    faces.concentrations = {sim.concentration.component(0) + first, sim.concentration.componentStride(), sim.nsMax + 1};
    faces.velocities = {sim.velocity.component(1) + first, sim.velocity.componentStride(), sim.nDim};
    faces.speciesSlopes = {speciesSlopes.component(0) + first, speciesSlopes.componentStride(), sim.nsMax + 1};
    faces.energySlope = sim.stageEnergy.slot(r.stage).component(0) + first;
    faces.momentumSlopes = {momentumSlopes.component(1) + first, momentumSlopes.componentStride(), sim.nDim};
}

/// The faces between the cells of the row itself.
void addFacesInRow(const SlopeRow& r) {
    FaceRows faces;
    faces.count = r.plan.rowCells;
    faces.toLower = -1;
    faces.toUpper = 1;
    faces.startsSums = true;
    faces.firstWithLower = 1;
    faces.endWithUpper = faces.count - 1;
    if (isGated(r, 1, r.row, 0)) {
        std::int64_t* const open = r.gates(0) + 1;
        openFaces(r, 1, r.first, faces.count - 1, open);
        faces.lowerMask = open - 1;
        faces.upperMask = open;
    }
    setCoefficients(r, 1, faces, r.row, r.row);
    setCarried(r, 1, faces);
    r.plan.kernels->addFaceTerms(faces);
}

/// The faces towards the rows below and above along a dimension from 2 on.
void addFacesAcross(const SlopeRow& r, int dim) {
    const SimState& sim = r.sim;
    const std::int64_t stride = sim.cellStride[dim];
    const std::int64_t rowStride = stride / r.plan.rowCells;
    const double place = cellCoordinate(sim, static_cast<std::int32_t>(r.first), dim);
    const bool hasLower = place > 0;
    const bool hasUpper = place < sim.cellCount[dim] - 1;
    FaceRows faces;
    faces.count = r.plan.rowCells;
    faces.toLower = hasLower ? -stride : 0;
    faces.toUpper = hasUpper ? stride : 0;
    faces.firstWithLower = hasLower ? 0 : faces.count;
    faces.endWithUpper = hasUpper ? faces.count : 0;
    if ((hasLower && isGated(r, dim, r.row - rowStride, rowStride))
        || (hasUpper && isGated(r, dim, r.row, rowStride))) {
        if (hasLower) openFaces(r, dim, r.first - stride, faces.count, r.gates(0));
        if (hasUpper) openFaces(r, dim, r.first, faces.count, r.gates(1));
        faces.lowerMask = r.gates(0);
        faces.upperMask = r.gates(1);
    }
    setCoefficients(r, dim, faces, hasLower ? r.row - rowStride : r.row, hasUpper ? r.row + rowStride : r.row);
    setCarried(r, dim, faces);
    r.plan.kernels->addFaceTerms(faces);
}

void addDragAndGravity(const SlopeRow& r) {
    const SimState& sim = r.sim;
    const RowTraits& traits = r.plan.rowTraits[r.row];
    auto& momentumSlopes = r.sim.stageMomentum.slot(r.stage);
    CellForceRows p;
    p.count = r.plan.rowCells;
    p.slopes = {momentumSlopes.component(1) + r.first, momentumSlopes.componentStride(), sim.nDim};
    p.velocities = {sim.velocity.component(1) + r.first, sim.velocity.componentStride(), sim.nDim};
    p.friction = r.plan.friction.row(r.row);
    p.mass = &sim.cellMass[r.first];
    p.gravity = &sim.gravity[1];
    p.held = traits.wholeCodes || traits.closedVelocity;
    p.velocityCodes = {sim.wallVelocity.component(1) + r.first, sim.wallVelocity.componentStride(), sim.nDim};
    p.wholeCode = sim.wallVelocity.component(0) + r.first;
    r.plan.kernels->addDragAndGravity(p);
    const int last = p.count - 1;
    if (!p.held && traits.closedEnd) // no terms but gravity
        p.slopes.first[last] = static_cast<float>(0.0 + double(sim.gravity[1]) * double(p.mass[last]));
}

void computeSlopeRow(SimState& sim, const StagePlan& plan, StageWorkspace& workspace, int stage, std::int64_t row) {
    const SlopeRow r{sim, plan, workspace, stage, row, firstCell(plan, row)};
    addFacesInRow(r);
    for (int dim = 2; dim <= sim.nDim; ++dim) addFacesAcross(r, dim);
    if (plan.rowTraits[row].closedEnergy)
        plan.kernels->clearWherePositive(plan.rowCells, r.slope(r.sim.stageEnergy, 0), &sim.wallTemperature[r.first]);
    addDragAndGravity(r);
    for (std::int64_t k = plan.sourcesOfRow[row]; k < plan.sourcesOfRow[row + 1]; ++k) {
        addSink(sim, stage, plan.sourceCells[k]);
        addSpeciesExchange(sim, stage, plan.sourceCells[k]);
    }
}

// --- rows and threads ------------------------------------------------------------------------------------------------

/// The sheets [begin .. end - 1] of one thread, and those of them whose slopes read no sheet of another thread.
struct Share {
    std::int64_t begin;
    std::int64_t end;
    std::int64_t firstFree;
    std::int64_t endFree;
};

Share shareOf(const StagePlan& plan, int thread) {
    const std::int64_t begin = plan.shares[static_cast<std::size_t>(thread)];
    const std::int64_t end = plan.shares[static_cast<std::size_t>(thread) + 1];
    const std::int64_t firstFree = begin == 0 ? 0 : std::min(begin + plan.reach, end);
    const std::int64_t endFree = end == plan.sheets ? end : std::max(end - plan.reach, firstFree);
    return {begin, end, firstFree, endFree};
}

/// Calls `work(row)` for some rows of a sheet, counted from 0 in it.
template <class Work>
void forRows(const StagePlan& plan, std::int64_t sheet, std::int64_t from, std::int64_t to, const Work& work) {
    for (std::int64_t row = from; row < to; ++row) work(sheet * plan.sheetRows + row);
}

/// Prepares a strip of rows in all sheets of a share, and finishes behind it what can be: sheets `reach` back, and one
/// row back within a sheet, since the next strip prepares the neighbours of the last row. Rows are prepared and
/// finished in turn, so that the processor fetches the next ones to prepare while it works on slopes.
template <class Prepare, class Finish>
void sweepStrip(const StagePlan& plan,
                const Share& share,
                std::int64_t from,
                std::int64_t to,
                const Prepare& prepare,
                const Finish& finish) {
    for (std::int64_t sheet = share.begin; sheet < share.end + plan.reach; ++sheet) {
        const std::int64_t behind = sheet - plan.reach;
        const bool finishes = behind >= share.firstFree && behind < share.endFree;
        for (std::int64_t row = from; row < to; ++row) {
            if (sheet < share.end) prepare(sheet * plan.sheetRows + row);
            if (finishes && row > 0) finish(behind * plan.sheetRows + row - 1);
        }
        if (finishes && to == plan.sheetRows) finish(behind * plan.sheetRows + to - 1);
    }
}

/// Moves the bounds of the shares a little to where all threads would have taken the same time: cores differ in what
/// other programs leave of them, and sheets in how many of their rows rest.
void balanceShares(StagePlan& plan) {
    constexpr double pace = 0.1; // one odd stage must not upset the shares
    const std::size_t threads = plan.workspaces.size();
    double total = 0;
    for (const StageWorkspace& workspace : plan.workspaces) total += workspace.seconds;
    std::size_t thread = 0; // whose share the bound falls into
    double before = 0;      // seconds of the shares before it
    const std::vector<std::int64_t>& old = plan.shares;
    for (std::size_t k = 1; k < threads && total > 0; ++k) {
        const double wanted = total * static_cast<double>(k) / static_cast<double>(threads);
        while (thread + 1 < threads && before + plan.workspaces[thread].seconds < wanted)
            before += plan.workspaces[thread++].seconds;
        const double part = (wanted - before) / std::max(plan.workspaces[thread].seconds, 1e-9);
        const double bound =
            static_cast<double>(old[thread]) + part * static_cast<double>(old[thread + 1] - old[thread]);
        const double moved = static_cast<double>(old[k]) + pace * (bound - static_cast<double>(old[k]));
        plan.nextShares[k] =
            std::clamp(static_cast<std::int64_t>(std::llround(moved)), plan.nextShares[k - 1], plan.sheets);
    }
    std::copy(plan.nextShares.begin(), plan.nextShares.end(), plan.shares.begin()); // a step allocates nothing
}

/// Prepares all rows (their work state and primitives) and finishes all rows (their slopes), in one sweep as far as
/// possible: a row is finished while its neighbours are still in the cache. `prepare` and `finish` take a row. Strips
/// are so narrow that what a strip holds in the sheets within reach fits into the cache.
template <class Prepare, class Finish>
void sweepRows(StagePlan& plan, const Prepare& prepare, const Finish& finish) {
    const auto work = [&](int thread) {
        StageWorkspace& workspace = plan.workspaces[static_cast<std::size_t>(thread)];
        const auto prepareRow = [&](std::int64_t row) { prepare(workspace, row); };
        const auto finishRow = [&](std::int64_t row) { finish(workspace, row); };
        const Share share = shareOf(plan, thread);
        const auto start = std::chrono::steady_clock::now();
        for (std::int64_t from = 0; from < plan.sheetRows; from += plan.stripRows)
            sweepStrip(plan, share, from, std::min(from + plan.stripRows, plan.sheetRows), prepareRow, finishRow);
        workspace.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        plan.team->wait();
        for (std::int64_t sheet = share.begin; sheet < share.firstFree; ++sheet)
            forRows(plan, sheet, 0, plan.sheetRows, finishRow);
        for (std::int64_t sheet = share.endFree; sheet < share.end; ++sheet)
            forRows(plan, sheet, 0, plan.sheetRows, finishRow);
    };
    plan.team->run(std::ref(work)); // by reference, which allocates nothing
    balanceShares(plan);
}

} // namespace

void runStage(SimState& sim, const RunEvents& events, StagePlan& plan, int stage) {
    reviewResting(sim, plan);
    sweepRows(
        plan,
        [&](StageWorkspace& workspace, std::int64_t row) {
            if (!hasToBePrepared(plan, row)) return;
            prepareRow(sim, plan, workspace, stage, row);
            notePrepared(plan, stage, row);
        },
        [&](StageWorkspace& workspace, std::int64_t row) {
            if (!hasToBeFinished(sim, plan, row)) return;
            computeSlopeRow(sim, plan, workspace, stage, row);
            noteFinished(sim, plan, stage, row);
        });
    tellFaultyCells(sim, events, plan);
    if (sim.radActive == 1) radiationPairs(sim, stage);
}

void derivePrimitives(SimState& sim, const RunEvents& events, StagePlan& plan) {
    const auto nothing = [](StageWorkspace&, std::int64_t) {};
    sweepRows(
        plan, [&](StageWorkspace& workspace, std::int64_t row) { prepareRow(sim, plan, workspace, 0, row); }, nothing);
    tellFaultyCells(sim, events, plan);
}

static bool isDense(const SimState& sim, const StagePlan& plan, std::int64_t row) {
    const float* const first = &sim.density[firstCell(plan, row)];
    return std::all_of(first, first + plan.rowCells, [&](float density) { return density > sim.rhoFloor; });
}

void computeSlopes(SimState& sim, StagePlan& plan, int stage) {
    // Whoever computes slopes alone may have set densities by hand.
    for (std::int64_t row = 0; row < plan.rows; ++row)
        plan.thinRow[static_cast<std::size_t>(row)] = isDense(sim, plan, row) ? 0 : 1;
    const auto nothing = [](StageWorkspace&, std::int64_t) {};
    sweepRows(plan, nothing,
              [&](StageWorkspace& workspace, std::int64_t row) { computeSlopeRow(sim, plan, workspace, stage, row); });
    if (sim.radActive == 1) radiationPairs(sim, stage);
}

} // namespace norvane
