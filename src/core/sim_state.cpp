#include "core/sim_state.h"

#include <new>
#include <stdexcept>

namespace norvane {

namespace {

void allocateArrays(SimState& sim) {
    const std::int64_t cells = sim.nCells;
    const std::int64_t dims = sim.nDim;

    std::size_t shift = 0; // a place of its own in the caches for each array
    sim.cellStride.allocate(1, dims + 1);
    sim.cellSize.allocate(cells, 1, dims, shift += 7);
    sim.cellHeight.allocate(0, cells, shift += 7);
    sim.cellPos.allocate(cells, 1, dims, shift += 7);
    sim.cellVolume.allocate(0, cells, shift += 7);
    sim.inverseSize.allocate(cells, 1, dims, shift += 7);
    sim.faceArea.allocate(cells, 1, dims, shift += 7);

    sim.heatCapacity.allocate(0, cells, shift += 7);
    sim.conductivity.allocate(0, cells, shift += 7);
    sim.viscosity.allocate(0, cells, shift += 7);
    sim.conductionCoef.allocate(cells, 1, dims, shift += 7);
    sim.viscousCoef.allocate(cells, 1, dims, shift += 7);
    sim.friction.allocate(0, cells, shift += 7);
    sim.gravity.allocate(0, dims);

    sim.stageSpecies.allocate(cells, 0, sim.nsMax, shift += 7);
    sim.stageEnergy.allocate(cells, 0, 0, shift += 7);
    sim.stageMomentum.allocate(cells, 1, dims, shift += 7);

    sim.cellMass.allocate(0, cells, shift += 7);
    sim.density.allocate(0, cells, shift += 7);
    sim.concentration.allocate(cells, 0, sim.nsMax, shift += 7);
    sim.temperature.allocate(0, cells, shift += 7);
    sim.pressure.allocate(0, cells, shift += 7);
    sim.velocity.allocate(cells, 1, dims, shift += 7);
    sim.velocityInit.allocate(cells, 1, dims, shift += 7);

    sim.wallVelocity.allocate(cells, 0, dims, shift += 7);
    sim.wallPressure.allocate(0, cells, shift += 7);
    sim.wallTemperature.allocate(0, cells, shift += 7);
    sim.wallConcentration.allocate(0, cells, shift += 7);

    sim.sliceSel.allocate(1, dims);
    sim.zoom.allocate(1, dims);
    sim.offset.allocate(1, dims);
}

} // namespace

bool allocateState(SimState& sim) {
    try {
        allocateArrays(sim);
        return true;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) { // a size beyond what the library's arrays can count
    }
    clearGeometry(sim);
    return false;
}

double stateBytes(int nDim, int nsMax, std::int64_t nCells) {
    const double species = static_cast<double>(nsMax) + 1;
    const double singles = 6 * (species + 1 + nDim) // conserved state
                           + species + 2.0 * nDim   // concentration, velocity, velocityInit
                           + 6.0 * nDim             // sizes, positions, areas, coefficients
                           + 10;                    // fields with one value a cell
    const double codes = nDim + 1 + 3;
    return (static_cast<double>(nCells) + 1) * (4 * singles + 2 * codes);
}

void clearGeometry(SimState& sim) {
    sim.runMode = modeStart;
    sim.nDim = 0;
    sim.nCells = 0;
    sim.nsMax = 0;
    sim.gridCols = 0;
    sim.firstLayerRow = 0;
    sim.layerRows = 0;
    sim.grid = CellTextTable();
    sim.cellCount.allocate(0, 0);
    allocateArrays(sim);
}

} // namespace norvane
