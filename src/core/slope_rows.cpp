#include "core/slope_rows.h"

#include "core/exact_arithmetic.h"
#include "core/remainders.h"

namespace norvane {

namespace {

struct SlopeRow {
    SimState& sim;
    const StagePlan& plan;
    StageWorkspace& workspace;
    int stage;
    std::int64_t row;
    std::int64_t first;

    /// Of the lower (0) or the upper (1) faces.
    std::int64_t* faceMask(int side) const { return workspace.faceMasks.data() + side * plan.paddedCells; }
};

/// Whether some upper face of a row, towards the row `above`, is closed or may have an empty donor.
bool needsMask(const SlopeRow& r, int dim, std::int64_t row, std::int64_t above) {
    return r.plan.dimensionTraits[row * r.sim.nDim + dim - 1].closed || r.plan.thinRow[row] != 0
           || r.plan.thinRow[above] != 0;
}

void maskFaces(const SlopeRow& r, int dim, std::int64_t cell, int count, std::int64_t* mask) {
    const SimState& sim = r.sim;
    r.plan.kernels->maskFaces(count, sim.cellStride[dim], mask, sim.wallVelocity.component(dim) + cell,
                              sim.velocity.component(dim) + cell, &sim.density[cell], sim.rhoFloor);
}

/// `below` and `above`: the rows of the neighbours, or the row itself. Along dimension 1 the lower face of a cell is
/// the upper one of the cell before it; where they are the same in all cells either may be read.
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

/// Momentum is advected as if it were cell-centred (first order): every component through the faces of every dimension,
/// with no interpolation to its staggered place.
void setTransported(const SlopeRow& r, int dim, FaceRows& faces) {
    SimState& sim = r.sim;
    const std::int64_t first = r.first;
    auto& speciesSlopes = sim.stageSpecies.slot(r.stage);
    auto& momentumSlopes = sim.stageMomentum.slot(r.stage);
    faces.normal = dim - 1;
    faces.sumsInDouble = hasRemainders(sim);
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
    if (needsMask(r, 1, r.row, r.row)) {
        std::int64_t* const mask = r.faceMask(0) + 1;
        maskFaces(r, 1, r.first, faces.count - 1, mask);
        faces.lowerMask = mask - 1;
        faces.upperMask = mask;
    }
    setCoefficients(r, 1, faces, r.row, r.row);
    setTransported(r, 1, faces);
    r.plan.kernels->addFaceTerms(faces);
}

/// The faces towards the rows below and above along a dimension from 2 on.
void addFacesBetweenRows(const SlopeRow& r, int dim) {
    const std::int64_t stride = r.sim.cellStride[dim];
    const auto [below, above] = neighbourRows(r.sim, r.plan, r.row, dim);
    const bool hasLower = below != r.row;
    const bool hasUpper = above != r.row;
    FaceRows faces;
    faces.count = r.plan.rowCells;
    faces.toLower = hasLower ? -stride : 0;
    faces.toUpper = hasUpper ? stride : 0;
    faces.firstWithLower = hasLower ? 0 : faces.count;
    faces.endWithUpper = hasUpper ? faces.count : 0;
    if ((hasLower && needsMask(r, dim, below, r.row)) || (hasUpper && needsMask(r, dim, r.row, above))) {
        if (hasLower) maskFaces(r, dim, r.first - stride, faces.count, r.faceMask(0));
        if (hasUpper) maskFaces(r, dim, r.first, faces.count, r.faceMask(1));
        faces.lowerMask = r.faceMask(0);
        faces.upperMask = r.faceMask(1);
    }
    setCoefficients(r, dim, faces, below, above);
    setTransported(r, dim, faces);
    r.plan.kernels->addFaceTerms(faces);
}

void addDragAndGravity(const SlopeRow& r) {
    const SimState& sim = r.sim;
    const RowTraits& traits = r.plan.rowTraits[r.row];
    auto& momentumSlopes = r.sim.stageMomentum.slot(r.stage);
    CellForceRows forces;
    forces.count = r.plan.rowCells;
    forces.slopes = {momentumSlopes.component(1) + r.first, momentumSlopes.componentStride(), sim.nDim};
    forces.velocities = {sim.velocity.component(1) + r.first, sim.velocity.componentStride(), sim.nDim};
    forces.friction = r.plan.friction.row(r.row);
    forces.mass = &sim.cellMass[r.first];
    forces.gravity = &sim.gravity[1];
    forces.held = traits.wholeCodes || traits.closedVelocity;
    forces.velocityCodes = {sim.wallVelocity.component(1) + r.first, sim.wallVelocity.componentStride(), sim.nDim};
    forces.wholeCode = sim.wallVelocity.component(0) + r.first;
    r.plan.kernels->addDragAndGravity(forces);
    const int last = forces.count - 1;
    if (!forces.held && traits.closedEnd) // no terms but gravity
        forces.slopes.first[last] = static_cast<float>(0.0 + double(sim.gravity[1]) * double(forces.mass[last]));
}

void addCellTerms(const SlopeRow& r) {
    for (std::int64_t k = r.plan.termsOfRow[r.row]; k < r.plan.termsOfRow[r.row + 1]; ++k) {
        const TermRun& run = r.plan.termRuns[k];
        run.term->add(r.sim, r.stage, run.first, run.end);
    }
}

} // namespace

void evaluateSlopes(SimState& sim, const StagePlan& plan, StageWorkspace& workspace, int stage, std::int64_t row) {
    const SlopeRow r{sim, plan, workspace, stage, row, firstCell(plan, row)};
    addFacesInRow(r);
    for (int dim = 2; dim <= sim.nDim; ++dim) addFacesBetweenRows(r, dim);
    if (plan.rowTraits[row].closedEnergy)
        plan.kernels->clearWherePositive(plan.rowCells, sim.stageEnergy.slot(stage).component(0) + r.first,
                                         &sim.wallTemperature[r.first]);
    addDragAndGravity(r);
    addCellTerms(r);
}

} // namespace norvane
