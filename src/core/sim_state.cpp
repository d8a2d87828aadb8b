#include "core/sim_state.h"

#include <new>
#include <stdexcept>

namespace norvane {

namespace {

/// Allocates arrays, each with a cache colour of its own.
struct Allocator {
    const SimState& sim;
    std::size_t colour = 0;

    template <class T>
    void cells(Array<T>& array) {
        array.allocate(0, sim.nCells, colour++);
    }

    /// A CellTable or a StageTable with the components [first .. last].
    void components(auto& table, std::int64_t first, std::int64_t last) {
        table.allocate(sim.nCells, first, last, colour);
        colour += static_cast<std::size_t>(last - first + 1) * table.slots;
    }
};

void allocateArrays(SimState& sim) {
    const std::int64_t dims = sim.nDim;
    sim.cellStride.allocate(1, dims + 1);
    sim.gravity.allocate(0, dims);
    sim.sliceSel.allocate(1, dims);
    sim.zoom.allocate(1, dims);
    sim.offset.allocate(1, dims);

    Allocator allocate{sim};
    for (CellTable<float>* const table : {&sim.cellSize, &sim.cellPos, &sim.inverseSize, &sim.faceArea,
                                          &sim.conductionCoef, &sim.viscousCoef, &sim.velocity, &sim.velocityInit})
        allocate.components(*table, 1, dims);
    for (Array<float>* const array :
         {&sim.cellHeight, &sim.cellVolume, &sim.heatCapacity, &sim.conductivity, &sim.viscosity, &sim.friction,
          &sim.cellMass, &sim.density, &sim.temperature, &sim.pressure})
        allocate.cells(*array);
    allocate.components(sim.concentration, 0, sim.nsMax);
    allocate.components(sim.stageSpecies, 0, sim.nsMax);
    allocate.components(sim.stageEnergy, 0, 0);
    allocate.components(sim.stageMomentum, 1, dims);
    allocate.components(sim.wallVelocity, 0, dims);
    for (Array<std::int16_t>* const array : {&sim.wallPressure, &sim.wallTemperature, &sim.wallConcentration})
        allocate.cells(*array);
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
    const auto cells = static_cast<std::size_t>(nCells) + 1; // an array takes more than its values, for its colour
    return singles * static_cast<double>(CacheColour::distance(cells * sizeof(float)))
           + codes * static_cast<double>(CacheColour::distance(cells * sizeof(std::int16_t)));
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
