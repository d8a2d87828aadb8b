#include "core/primitive_update.h"

#include <string>

namespace norvane {

namespace {

void updateMassAndDensity(SimState& sim, std::int32_t cell) {
    float mass = 0;
    for (int species = 0; species <= sim.nsMax; ++species)
        mass = static_cast<float>(double(mass) + double(sim.stageSpecies(sim.stageWork, species, cell)));
    sim.cellMass[cell] = mass;
    sim.density[cell] = static_cast<float>(double(mass) / double(sim.cellVolume[cell]));
}

void updateConcentrations(SimState& sim, std::int32_t cell) {
    const double mass = sim.cellMass[cell];
    for (int species = 0; species <= sim.nsMax; ++species) {
        float& speciesMass = sim.stageSpecies(sim.stageWork, species, cell);
        float& concentration = sim.concentration(cell, species);
        if (sim.wallConcentration[cell] < 0)
            speciesMass = static_cast<float>(double(concentration) * mass);
        else
            concentration = static_cast<float>(double(speciesMass) / mass);
    }
}

void checkDensity(SimState& sim, const Interface& ui, std::int32_t cell) {
    // "not >=" instead of "<": a NaN fails every comparison, and it has to stop the run as well.
    if (!(sim.density[cell] >= 0.0f)) {
        ui.showMessage("Stopped because of negative density in point " + std::to_string(cell));
        sim.stopFlag = 1;
        sim.outcome.negativeDensity = true;
    }
}

void updateTemperature(SimState& sim, std::int32_t cell) {
    float& energy = sim.stageEnergy(sim.stageWork, cell);
    const double capacity = double(sim.heatCapacity[cell]) * double(sim.cellMass[cell]);
    if (sim.wallTemperature[cell] < 0)
        energy = static_cast<float>(capacity * double(sim.temperature[cell]));
    else
        sim.temperature[cell] = static_cast<float>(double(energy) / capacity);
}

/// The mass flow of an imposed velocity is velocityInit at the template's density, whatever the density of the cell is.
float imposedVelocity(const SimState& sim, std::int32_t cell, int dim) {
    const double init = sim.velocityInit(cell, dim);
    const double reference = sim.density[0];
    const double density = sim.density[cell];
    if (sim.wallVelocity(cell, dim) != -2) return static_cast<float>(init * reference / density);
    double ramp = double(sim.stepCount) / double(sim.rampSteps);
    if (ramp > 1) ramp = 1;
    return static_cast<float>(ramp * init * reference / density);
}

void updateVelocities(SimState& sim, std::int32_t cell) {
    const double mass = sim.cellMass[cell];
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const int code = sim.wallVelocity(cell, dim);
        float& momentum = sim.stageMomentum(sim.stageWork, cell, dim);
        float& velocity = sim.velocity(cell, dim);
        if (code == 0) {
            velocity = static_cast<float>(double(momentum) / mass);
        } else if (code < 0) {
            velocity = imposedVelocity(sim, cell, dim);
            momentum = static_cast<float>(double(velocity) * mass);
        }
    }
}

void updatePressure(SimState& sim, std::int32_t cell) {
    if (sim.wallPressure[cell] < 0) return;
    sim.pressure[cell] = static_cast<float>(double(sim.gasFactor) * double(sim.cellMass[cell])
                                            * double(sim.temperature[cell]) / double(sim.cellVolume[cell]));
}

} // namespace

void updatePrimitives(SimState& sim, const Interface& ui) {
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        updateMassAndDensity(sim, cell);
        updateConcentrations(sim, cell);
        checkDensity(sim, ui, cell);
        updateTemperature(sim, cell);
        updateVelocities(sim, cell);
        updatePressure(sim, cell);
    }
}

} // namespace norvane
