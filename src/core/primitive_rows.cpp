#include "core/primitive_rows.h"

#include "core/imposed_values.h"

namespace norvane {

namespace {

/// `stage` [1..4]: a trial follows the slope of the stage before.
template <class Slots>
ConservedRows conservedRows(
    Slots& slots, CellTable<float>* remainders, int work, std::int64_t component, std::int64_t first, int stage) {
    ConservedRows rows;
    rows.work = slots.slot(work).component(component) + first;
    rows.committed = slots.slot(committedSlot).component(component) + first;
    if (remainders != nullptr) rows.remainder = remainders->component(component) + first;
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

PrimitiveRows primitiveRows(SimState& sim, const StagePlan& plan, std::int64_t row, Forming forming, int stage) {
    const std::int64_t first = firstCell(plan, row);
    PrimitiveRows p;
    p.count = plan.rowCells;
    p.forming = forming;
    p.increment = stage == 1 || stage == 4 ? double(sim.dt) : double(sim.dt) * 0.5;
    p.gasFactor = sim.gasFactor;
    p.densityFloor = sim.rhoFloor;
    const bool compensated = forming == Forming::compensated || forming == Forming::compensatedTrial;
    const auto remainders = [&](CellTable<float>& table) { return compensated ? &table : nullptr; };
    p.species = conservedRows(sim.stageSpecies, remainders(sim.speciesRemainder), sim.stageWork, 0, first, stage);
    p.energy = conservedRows(sim.stageEnergy, remainders(sim.energyRemainder), sim.stageWork, 0, first, stage);
    p.momentum = conservedRows(sim.stageMomentum, remainders(sim.momentumRemainder), sim.stageWork, 1, first, stage);
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

bool hasFault(const SimState& sim, const StagePlan& plan, std::int64_t first) {
    for (std::int64_t cell = first; cell < first + plan.rowCells; ++cell)
        if (isFaulty(sim.density[cell])) return true;
    return false;
}

} // namespace

void recoverPrimitives(
    SimState& sim, StagePlan& plan, StageWorkspace& workspace, Forming forming, int stage, std::int64_t row) {
    const std::int64_t first = firstCell(plan, row);
    PrimitiveRows p = primitiveRows(sim, plan, row, forming, stage);
    setCodes(sim, plan, workspace, row, p);
    // Most rows have no code but the one that closes their end: what it keeps is put back.
    const std::int64_t last = first + plan.rowCells - 1;
    const float momentum = sim.stageMomentum(sim.stageWork, last, 1);
    const float velocity = sim.velocity(last, 1);
    const bool dense = plan.kernels->recoverPrimitives(p);
    if (plan.rowTraits[row].closedEnd) {
        if (forming == Forming::completed || forming == Forming::compensated)
            sim.stageMomentum(committedSlot, last, 1) = momentum;
        if (forming == Forming::compensated) sim.momentumRemainder(last, 1) = 0;
        sim.stageMomentum(sim.stageWork, last, 1) = momentum;
        sim.velocity(last, 1) = velocity;
    }
    plan.thinRow[row] = dense ? 0 : 1;
    if ((!dense || sim.rhoFloor < 0) && hasFault(sim, plan, first)) workspace.hasFaults = true;
    for (std::int64_t k = plan.imposedOfRow[row]; k < plan.imposedOfRow[row + 1]; ++k)
        imposeHeldValues(sim, plan.imposedCells[k]);
}

} // namespace norvane
