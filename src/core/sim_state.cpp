#include "core/sim_state.h"

#include "core/cell_fields.h"

#include <new>
#include <stdexcept>

namespace norvane {

namespace {

/// Allocates the fields of cells, each with a cache colour of its own.
struct FieldAllocator {
    SimState& sim;
    ComponentRange range{0, 0};
    std::size_t colour = 0;

    template <class T>
    void operator()(Array<T> SimState::*field) {
        (sim.*field).allocate(0, sim.nCells, colour++);
    }

    template <class Table>
    void operator()(Table SimState::*field) {
        (sim.*field).allocate(sim.nCells, range.first, range.last, colour);
        colour += static_cast<std::size_t>(range.count()) * Table::slots;
    }
};

/// Arrays of so many values that a field is made of, and the bytes of a value.
struct FieldSize {
    double arrays = 1; ///< in: components
    std::size_t valueBytes = 0;

    template <class T>
    void operator()(Array<T> SimState::*) {
        valueBytes = sizeof(T);
    }

    template <class T>
    void operator()(CellTable<T> SimState::*) {
        valueBytes = sizeof(T);
    }

    template <class Slots>
    void operator()(Slots SimState::*) {
        valueBytes = sizeof(float);
        arrays *= Slots::slots;
    }
};

void allocateArrays(SimState& sim) {
    const std::int64_t dims = sim.nDim;
    sim.cellStride.allocate(1, dims + 1);
    sim.gravity.allocate(0, dims);
    sim.sliceSel.allocate(1, dims);
    sim.zoom.allocate(1, dims);
    sim.offset.allocate(1, dims);

    FieldAllocator allocate{sim};
    for (const CellField& field : cellFields()) {
        allocate.range = componentRange(field.components, sim.nDim, sim.nsMax);
        std::visit(allocate, field.member);
    }
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
    const auto cells = static_cast<std::size_t>(nCells) + 1; // an array takes more than its values, for its colour
    double bytes = 0;
    for (const CellField& field : cellFields()) {
        FieldSize size{static_cast<double>(componentRange(field.components, nDim, nsMax).count())};
        std::visit([&](auto member) { size(member); }, field.member);
        bytes += size.arrays * static_cast<double>(CacheColour::distance(cells * size.valueBytes));
    }
    return bytes;
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
