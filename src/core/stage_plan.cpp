#include "core/stage_plan.h"

#include "core/addressing.h"
#include "core/wall_codes.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <thread>

namespace norvane {

bool sameBits(const float* a, const float* b, int count) {
    return std::memcmp(a, b, static_cast<std::size_t>(count) * sizeof(float)) == 0;
}

namespace {

RowTraits traitsOf(const SimState& sim, std::int64_t first, std::int64_t last) {
    RowTraits traits;
    for (std::int64_t cell = first; cell <= last; ++cell) {
        traits.heldSpecies |= isHeld(sim.wallPressure[cell]);
        traits.heldEnergy |= isHeld(sim.wallTemperature[cell]);
        traits.closedEnergy |= isClosed(sim.wallTemperature[cell]);
        traits.heldConcentration |= isImposed(sim.wallConcentration[cell]);
        traits.wholeCodes |= isHeld(sim.wallVelocity(cell, 0));
    }
    traits.closedEnd = isClosed(sim.wallVelocity(last, 1));
    return traits;
}

DimensionTraits traitsAlong(const SimState& sim, int dim, std::int64_t first, std::int64_t last) {
    DimensionTraits traits;
    for (std::int64_t cell = first; cell <= last; ++cell) {
        traits.held |= isHeld(sim.wallVelocity(cell, dim));
        traits.closed |= isClosed(sim.wallVelocity(cell, dim));
    }
    return traits;
}

bool hasImposedValue(const SimState& sim, std::int64_t cell) {
    bool imposed = isImposed(sim.wallConcentration[cell]) || isImposed(sim.wallTemperature[cell]);
    for (int dim = 1; dim <= sim.nDim; ++dim) imposed |= isImposed(sim.wallVelocity(cell, dim));
    return imposed;
}

/// The runs of the cells [first .. end - 1], which are a row.
void planTerms(const SimState& sim, StagePlan& plan, std::int32_t first, std::int32_t end) {
    for (const CellTerm& term : cellTerms()) {
        std::int32_t runEnd = first;
        for (;;) {
            const std::int32_t runFirst = term.find(sim, true, runEnd, end);
            if (runFirst == end) break;
            runEnd = term.find(sim, false, runFirst, end);
            plan.termRuns.push_back({&term, runFirst, runEnd});
        }
    }
}

void planRow(const SimState& sim, StagePlan& plan, std::int64_t row) {
    const std::int64_t first = firstCell(plan, row);
    const std::int64_t last = first + plan.rowCells - 1;
    plan.rowTraits[row] = traitsOf(sim, first, last);
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const bool withoutEnd = dim == 1 && plan.rowTraits[row].closedEnd;
        const DimensionTraits along = traitsAlong(sim, dim, first, withoutEnd ? last - 1 : last);
        plan.dimensionTraits[row * sim.nDim + dim - 1] = along;
        plan.rowTraits[row].closedVelocity |= along.closed;
    }
    for (std::int64_t cell = first; cell <= last; ++cell) {
        if (hasImposedValue(sim, cell)) plan.imposedCells.push_back(static_cast<std::int32_t>(cell));
    }
    plan.imposedOfRow[row + 1] = static_cast<std::int64_t>(plan.imposedCells.size());
    planTerms(sim, plan, static_cast<std::int32_t>(first), static_cast<std::int32_t>(last) + 1);
    plan.termsOfRow[row + 1] = static_cast<std::int64_t>(plan.termRuns.size());
}

/// `cells`: cell 0 of the coefficient.
Coefficient planCoefficient(const StagePlan& plan, const float* cells) {
    Coefficient coefficient{cells + 1, plan.rowCells, std::vector<std::int32_t>(static_cast<std::size_t>(plan.rows))};
    for (std::int64_t row = 0; row < plan.rows; ++row) {
        std::int32_t& sameAs = coefficient.sameAs[static_cast<std::size_t>(row)];
        sameAs = static_cast<std::int32_t>(row);
        const float* const here = coefficient.row(row);
        for (const std::int64_t before : {row - 1, row - plan.planeRows})
            if (before >= 0 && sameBits(here, coefficient.row(before), plan.rowCells))
                sameAs = coefficient.sameAs[static_cast<std::size_t>(before)];
    }
    return coefficient;
}

bool isConstant(const StagePlan& plan, const Coefficient& coefficient, std::int64_t row) {
    const float* const here = coefficient.row(row);
    return sameBits(here, here + 1, plan.rowCells - 1);
}

void planFaceCoefficients(const SimState& sim, StagePlan& plan) {
    plan.friction = planCoefficient(plan, &sim.friction[0]);
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        plan.inverseSize.push_back(planCoefficient(plan, sim.inverseSize.component(dim)));
        plan.area.push_back(planCoefficient(plan, sim.faceArea.component(dim)));
        plan.conduction.push_back(planCoefficient(plan, sim.conductionCoef.component(dim)));
        plan.viscous.push_back(planCoefficient(plan, sim.viscousCoef.component(dim)));
        for (std::int64_t row = 0; row < plan.rows; ++row) {
            bool constant = isConstant(plan, plan.capacity, row);
            for (const auto* coefficients : {&plan.inverseSize, &plan.area, &plan.conduction, &plan.viscous})
                constant = constant && isConstant(plan, coefficients->back(), row);
            plan.dimensionTraits[row * sim.nDim + dim - 1].constant = constant;
        }
    }
}

/// A grid of one or two dimensions has single rows for planes.
void layOutPlanes(const SimState& sim, StagePlan& plan) {
    constexpr std::int64_t cellsOfTile = 8192; // of three planes the ten fields that slopes read take 1 MB
    const bool isDeep = sim.nDim > 2 && sim.nCells > 0;
    plan.planeRows = isDeep ? sim.cellCount[2] : 1;
    plan.planes = plan.rows / plan.planeRows;
    plan.stencilWidth = sim.nDim > 1 && sim.nCells > 0 ? sim.cellStride[sim.nDim] / plan.rowCells / plan.planeRows : 0;
    plan.tileRows = std::clamp<std::int64_t>(cellsOfTile / plan.rowCells, 4, std::max<std::int64_t>(plan.planeRows, 4));
}

bool mayRest(const SimState& sim, const StagePlan& plan, std::int64_t row) {
    const RowTraits& traits = plan.rowTraits[row];
    bool free = !traits.heldSpecies && !traits.heldEnergy && !traits.heldConcentration
                && plan.imposedOfRow[row] == plan.imposedOfRow[row + 1]
                && plan.termsOfRow[row] == plan.termsOfRow[row + 1];
    for (int dim = 1; dim <= sim.nDim; ++dim) free = free && !plan.dimensionTraits[row * sim.nDim + dim - 1].held;
    return free;
}

void planResting(const SimState& sim, StagePlan& plan) {
    RestingRows& resting = plan.resting;
    for (auto* const flags :
         {&resting.mayRest, &resting.zeroSlopes, &resting.settled, &resting.unchanged, &resting.quiet})
        flags->assign(static_cast<std::size_t>(plan.rows), 0);
    for (std::int64_t row = 0; row < plan.rows; ++row) resting.mayRest[row] = mayRest(sim, plan, row) ? 1 : 0;
    resting.revision = sim.revision;
}

/// A partition into equal parts, for as many threads as the system grants.
void planThreads(const SimState& sim, StagePlan& plan, int threads) {
    const int wanted = threads > 0 ? threads : suitableThreads(sim.nCells);
    const auto size = static_cast<int>(std::clamp<std::int64_t>(wanted, 1, std::max<std::int64_t>(plan.planes, 1)));
    plan.workspaces.resize(static_cast<std::size_t>(size));
    for (StageWorkspace& workspace : plan.workspaces) {
        workspace.faceMasks.resize(static_cast<std::size_t>(2 * plan.paddedCells));
        workspace.velocityCodes.resize(static_cast<std::size_t>(sim.nDim));
    }
    try {
        plan.team = std::make_unique<ThreadTeam>(size);
    } catch (const std::system_error&) { // the system grants no further thread
        plan.workspaces.resize(1);
        plan.team = std::make_unique<ThreadTeam>(1);
    }
    for (int thread = 0; thread <= plan.team->size(); ++thread)
        plan.partition.push_back(plan.planes * thread / plan.team->size());
    plan.nextPartition = plan.partition;
}

/// All of a plan but the coefficients of slopes.
StagePlan planRows(const SimState& sim, int threads, const RowKernels& kernels) {
    StagePlan plan;
    plan.kernels = &kernels;
    plan.rowCells = sim.nCells > 0 ? sim.cellCount[1] : 1;
    plan.paddedCells = plan.rowCells + 16; // what a vector may read beyond a row
    plan.rows = sim.nCells / plan.rowCells;
    layOutPlanes(sim, plan);
    plan.rowTraits.resize(static_cast<std::size_t>(plan.rows));
    plan.dimensionTraits.resize(static_cast<std::size_t>(plan.rows * sim.nDim));
    plan.imposedOfRow.resize(static_cast<std::size_t>(plan.rows + 1));
    plan.termsOfRow.resize(static_cast<std::size_t>(plan.rows + 1));
    plan.thinRow.resize(static_cast<std::size_t>(plan.rows));
    for (std::int64_t row = 0; row < plan.rows; ++row) planRow(sim, plan, row);
    plan.volume = planCoefficient(plan, &sim.cellVolume[0]);
    plan.capacity = planCoefficient(plan, &sim.heatCapacity[0]);
    planThreads(sim, plan, threads);
    return plan;
}

} // namespace

NeighbourRows neighbourRows(const SimState& sim, const StagePlan& plan, std::int64_t row, int dim) {
    const std::int64_t stride = sim.cellStride[dim] / plan.rowCells;
    const double position = cellCoordinate(sim, static_cast<std::int32_t>(firstCell(plan, row)), dim);
    return {position > 0 ? row - stride : row, position < sim.cellCount[dim] - 1 ? row + stride : row};
}

int suitableThreads(std::int64_t cells) {
    constexpr std::int64_t cellsForAThread = 4096; // fewer cost more in barriers than they gain
    const auto cores = static_cast<std::int64_t>(std::thread::hardware_concurrency());
    return static_cast<int>(std::clamp<std::int64_t>(cells / cellsForAThread, 1, std::max<std::int64_t>(cores, 1)));
}

StagePlan planStages(const SimState& sim, int threads, const RowKernels& kernels) {
    StagePlan plan = planRows(sim, threads, kernels);
    planFaceCoefficients(sim, plan);
    planResting(sim, plan);
    return plan;
}

StagePlan planPrimitives(const SimState& sim) { return planRows(sim, 0, bestRowKernels()); }

} // namespace norvane
