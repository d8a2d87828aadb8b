#include "core/transport.h"

#include "core/accumulate.h"
#include "core/addressing.h"

namespace norvane {

namespace {

/// One face as a visiting cell sees it. Flow and coefficients belong to the lower cell, the carried values to the
/// donor, whichever side the visitor is on: so what one cell gains the other loses.
struct Face {
    int dim;
    bool isUpper;           ///< it is the upper face of the visiting cell
    bool exists;            ///< false at the end of a row
    bool advects;           ///< neither closed nor fed by an empty donor
    std::int32_t neighbour; ///< the cell across the face
    std::int32_t lower;     ///< the cell below the face, which owns its momentum
    std::int32_t donor;     ///< the cell that the flow comes from
    double massFlow;        ///< kg/s into the visiting cell
};

Face locateFace(const SimState& sim, std::int32_t cell, int faceIndex) {
    Face face{};
    face.dim = (faceIndex - 1) / 2 + 1;
    face.isUpper = faceIndex % 2 == 0;
    const std::int64_t stride = sim.cellStride[face.dim];
    const std::int64_t neighbour = face.isUpper ? cell + stride : cell - stride;
    face.exists = inSameRow(sim, cell, neighbour, face.dim);
    if (!face.exists) return face;

    face.neighbour = static_cast<std::int32_t>(neighbour);
    face.lower = face.isUpper ? cell : face.neighbour;
    const std::int32_t upper = face.isUpper ? face.neighbour : cell;
    face.donor = sim.velocity(face.lower, face.dim) > 0 ? face.lower : upper;
    face.advects = sim.wallVelocity(face.lower, face.dim) <= 0 && sim.density[face.donor] > sim.rhoFloor;

    const double inverseLength = sim.inverseSize(face.lower, face.dim);
    const double momentum = sim.stageMomentum(workSlot, face.lower, face.dim);
    face.massFlow = (face.isUpper ? -inverseLength : inverseLength) * momentum;
    return face;
}

void addSpeciesAdvection(SimState& sim, int stage, std::int32_t cell, const Face& face) {
    for (int species = 0; species <= sim.nsMax; ++species)
        accumulate(sim.stageSpecies(stage, species, cell),
                   face.massFlow * double(sim.concentration(face.donor, species)));
}

void addHeatAdvection(SimState& sim, int stage, std::int32_t cell, const Face& face) {
    if (sim.wallTemperature[cell] > 0) return;
    accumulate(sim.stageEnergy(stage, cell),
               face.massFlow * double(sim.heatCapacity[face.donor]) * double(sim.temperature[face.donor]));
}

/// All components are carried across the faces of every dimension, with no shift to their staggered places.
void addMomentumAdvection(SimState& sim, int stage, std::int32_t cell, const Face& face) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (sim.wallVelocity(cell, dim) > 0) continue;
        accumulate(sim.stageMomentum(stage, cell, dim), face.massFlow * double(sim.velocity(face.donor, dim)));
    }
}

/// Only for the cell below the face, where the momentum of the face lives.
void addPressureForce(SimState& sim, int stage, std::int32_t cell, const Face& face) {
    if (sim.wallVelocity(cell, face.dim) > 0) return;
    const double difference = double(sim.pressure[cell]) - double(sim.pressure[face.neighbour]);
    accumulate(sim.stageMomentum(stage, cell, face.dim), difference * double(sim.faceArea(cell, face.dim)));
}

void addHeatConduction(SimState& sim, int stage, std::int32_t cell, const Face& face) {
    if (sim.wallTemperature[cell] > 0) return;
    const double difference = double(sim.temperature[face.neighbour]) - double(sim.temperature[cell]);
    accumulate(sim.stageEnergy(stage, cell), difference * double(sim.conductionCoef(face.lower, face.dim)));
}

void addViscousExchange(SimState& sim, int stage, std::int32_t cell, const Face& face) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (sim.wallVelocity(cell, dim) > 0) continue;
        const double difference = double(sim.velocity(face.neighbour, dim)) - double(sim.velocity(cell, dim));
        accumulate(sim.stageMomentum(stage, cell, dim), difference * double(sim.viscousCoef(face.lower, face.dim)));
    }
}

} // namespace

void faceTerms(SimState& sim, int stage, std::int32_t cell, int faceIndex) {
    const Face face = locateFace(sim, cell, faceIndex);
    if (!face.exists) return;
    if (face.advects) {
        addSpeciesAdvection(sim, stage, cell, face);
        addHeatAdvection(sim, stage, cell, face);
        addMomentumAdvection(sim, stage, cell, face);
    }
    if (face.isUpper) addPressureForce(sim, stage, cell, face);
    // Heat and shear pass through a closed face and out of an empty cell as well.
    addHeatConduction(sim, stage, cell, face);
    addViscousExchange(sim, stage, cell, face);
}

} // namespace norvane
