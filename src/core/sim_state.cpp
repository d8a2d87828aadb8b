#include "core/sim_state.h"

#include "core/cell_fields.h"
#include "core/remainders.h"

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
    dropRemainders(sim);
}

double bytesOf(std::span<const CellField> fields, int nDim, int nsMax, std::int64_t nCells) {
    const auto cells = static_cast<std::size_t>(nCells) + 1; // an array takes more than its values, for its colour
    double bytes = 0;
    for (const CellField& field : fields) {
        const FieldSize size = sizeOf(field, nDim, nsMax);
        bytes += static_cast<double>(size.arrays) * static_cast<double>(CacheColour::distance(cells * size.valueBytes));
    }
    return bytes;
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

double stateBytes(int nDim, int nsMax, std::int64_t nCells) { return bytesOf(cellFields(), nDim, nsMax, nCells); }

double remainderBytes(int nDim, int nsMax, std::int64_t nCells) {
    return bytesOf(remainderFields(), nDim, nsMax, nCells);
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
