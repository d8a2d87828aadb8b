#include "core/stage_plan.h"

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
        traits.heldSpecies |= sim.wallPressure[cell] != 0;
        traits.heldEnergy |= sim.wallTemperature[cell] != 0;
        traits.closedEnergy |= sim.wallTemperature[cell] > 0;
        traits.heldConcentration |= sim.wallConcentration[cell] < 0;
        traits.wholeCodes |= sim.wallVelocity(cell, 0) != 0;
    }
    traits.closedEnd = sim.wallVelocity(last, 1) > 0;
    return traits;
}

DimensionTraits traitsAlong(const SimState& sim, int dim, std::int64_t first, std::int64_t last) {
    DimensionTraits traits;
    for (std::int64_t cell = first; cell <= last; ++cell) {
        traits.held |= sim.wallVelocity(cell, dim) != 0;
        traits.closed |= sim.wallVelocity(cell, dim) > 0;
    }
    return traits;
}

bool hasImposedValue(const SimState& sim, std::int64_t cell) {
    bool imposed = sim.wallConcentration[cell] < 0 || sim.wallTemperature[cell] < 0;
    for (int dim = 1; dim <= sim.nDim; ++dim) imposed |= sim.wallVelocity(cell, dim) < 0;
    return imposed;
}

bool hasSource(const SimState& sim, std::int64_t cell) {
    return sim.wallPressure[cell] < 0 || (sim.wallConcentration[cell] == 1 && sim.nsMax >= 1);
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
        if (hasSource(sim, cell)) plan.sourceCells.push_back(static_cast<std::int32_t>(cell));
    }
    plan.imposedOfRow[row + 1] = static_cast<std::int64_t>(plan.imposedCells.size());
    plan.sourcesOfRow[row + 1] = static_cast<std::int64_t>(plan.sourceCells.size());
}

/// `cells`: cell 0 of the coefficient.
Coefficient planCoefficient(const StagePlan& plan, const float* cells) {
    Coefficient coefficient{cells + 1, plan.rowCells, std::vector<std::int32_t>(static_cast<std::size_t>(plan.rows))};
    for (std::int64_t row = 0; row < plan.rows; ++row) {
        std::int32_t& sameAs = coefficient.sameAs[static_cast<std::size_t>(row)];
        sameAs = static_cast<std::int32_t>(row);
        const float* const here = coefficient.row(row);
        for (const std::int64_t before : {row - 1, row - plan.sheetRows})
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

/// Sheets are the planes of dimensions 1 and 2 where there are more dimensions, else single rows.
void layOutSheets(const SimState& sim, StagePlan& plan) {
    constexpr std::int64_t cellsOfStrip = 8192; // of three sheets the ten fields that slopes read take 1 MB
    const bool hasPlanes = sim.nDim > 2 && sim.nCells > 0;
    plan.sheetRows = hasPlanes ? sim.cellCount[2] : 1;
    plan.sheets = plan.rows / plan.sheetRows;
    plan.reach = sim.nDim > 1 && sim.nCells > 0 ? sim.cellStride[sim.nDim] / plan.rowCells / plan.sheetRows : 0;
    plan.stripRows =
        std::clamp<std::int64_t>(cellsOfStrip / plan.rowCells, 4, std::max<std::int64_t>(plan.sheetRows, 4));
}

/// All of a plan but the coefficients of slopes.
StagePlan planRows(const SimState& sim, int threads, const RowKernels& kernels) {
    StagePlan plan;
    plan.kernels = &kernels;
    plan.rowCells = sim.nCells > 0 ? sim.cellCount[1] : 1;
    plan.paddedCells = plan.rowCells + 16; // what a vector may read beyond a row
    plan.rows = sim.nCells / plan.rowCells;
    layOutSheets(sim, plan);
    plan.rowTraits.resize(static_cast<std::size_t>(plan.rows));
    plan.dimensionTraits.resize(static_cast<std::size_t>(plan.rows * sim.nDim));
    plan.imposedOfRow.resize(static_cast<std::size_t>(plan.rows + 1));
    plan.sourcesOfRow.resize(static_cast<std::size_t>(plan.rows + 1));
    plan.thinRow.resize(static_cast<std::size_t>(plan.rows));
    for (std::int64_t row = 0; row < plan.rows; ++row) planRow(sim, plan, row);
    plan.volume = planCoefficient(plan, &sim.cellVolume[0]);
    plan.capacity = planCoefficient(plan, &sim.heatCapacity[0]);

    const int wanted = threads > 0 ? threads : suitableThreads(sim.nCells);
    const auto size = static_cast<int>(std::clamp<std::int64_t>(wanted, 1, std::max<std::int64_t>(plan.sheets, 1)));
    plan.workspaces.resize(static_cast<std::size_t>(size));
    for (StageWorkspace& workspace : plan.workspaces) {
        workspace.openFaces.resize(static_cast<std::size_t>(2 * plan.paddedCells));
        workspace.velocityCodes.resize(static_cast<std::size_t>(sim.nDim));
    }
    try {
        plan.team = std::make_unique<ThreadTeam>(size);
    } catch (const std::system_error&) { // the system grants no further thread
        plan.workspaces.resize(1);
        plan.team = std::make_unique<ThreadTeam>(1);
    }
    for (int thread = 0; thread <= plan.team->size(); ++thread)
        plan.shares.push_back(plan.sheets * thread / plan.team->size());
    plan.nextShares = plan.shares;
    return plan;
}

} // namespace

int suitableThreads(std::int64_t cells) {
    constexpr std::int64_t cellsForAThread = 4096; // fewer cost more in meetings than they gain
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
