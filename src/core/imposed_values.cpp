#include "core/imposed_values.h"

#include "core/exact_arithmetic.h"
#include "core/wall_codes.h"

namespace norvane {

namespace {

/// The mass flow of an imposed velocity is velocityInit at the template's density, whatever the density of the cell is.
float imposedVelocity(const SimState& sim, std::int32_t cell, int dim) {
    const double init = sim.velocityInit(cell, dim);
    const double reference = sim.density[0];
    const double density = sim.density[cell];
    if (!isRamped(sim.wallVelocity(cell, dim))) return static_cast<float>(init * reference / density);
    double ramp = double(sim.stepCount) / double(sim.rampSteps);
    if (ramp > 1) ramp = 1;
    return static_cast<float>(ramp * init * reference / density);
}

} // namespace

void imposeHeldValues(SimState& sim, std::int32_t cell) {
    const int work = sim.stageWork;
    const double mass = sim.cellMass[cell];
    for (int species = 0; isImposed(sim.wallConcentration[cell]) && species <= sim.nsMax; ++species)
        sim.stageSpecies(work, species, cell) = static_cast<float>(double(sim.concentration(cell, species)) * mass);
    if (isImposed(sim.wallTemperature[cell]))
        sim.stageEnergy(work, cell) =
            static_cast<float>(double(sim.heatCapacity[cell]) * mass * double(sim.temperature[cell]));
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (!isImposed(sim.wallVelocity(cell, dim))) continue;
        sim.velocity(cell, dim) = imposedVelocity(sim, cell, dim);
        sim.stageMomentum(work, cell, dim) = static_cast<float>(double(sim.velocity(cell, dim)) * mass);
    }
}

} // namespace norvane
