#include "core/addressing.h"
#include "core/remainders.h"
#include "core/wall_codes.h"
#include "geometry/model_parts.h"

#include <algorithm>

namespace norvane {

namespace {

/// Cells [first..end-1]. What follows from the texts is derived quantity by quantity, so that each is a plain loop, and
/// for so few cells at a time that they stay in the cache from one loop to the next.
struct CellRange {
    std::int64_t first;
    std::int64_t end;

    std::int64_t count() const { return end - first; }
};

template <class Work>
void forRanges(const SimState& sim, const Work& work) {
    constexpr std::int64_t rangeCells = 2048;
    const std::int64_t end = std::int64_t{sim.nCells} + 1;
    for (std::int64_t first = 1; first < end; first += rangeCells) work({first, std::min(first + rangeCells, end)});
}

void deriveVolumes(SimState& sim, const CellRange& cells) {
    for (std::int64_t cell = cells.first; cell < cells.end; ++cell) sim.cellVolume[cell] = sim.cellHeight[cell];
    for (int dim = 1; dim <= sim.nDim; ++dim)
        for (std::int64_t cell = cells.first; cell < cells.end; ++cell)
            sim.cellVolume[cell] = static_cast<float>(double(sim.cellVolume[cell]) * double(sim.cellSize(cell, dim)));
}

/// Species 0 fills up the fractions of the others to 1, whatever its own key says.
void deriveFirstConcentrations(SimState& sim, const CellRange& cells) {
    for (std::int64_t cell = cells.first; cell < cells.end; ++cell) {
        double others = 0;
        for (int species = 1; species <= sim.nsMax; ++species) others += double(sim.concentration(cell, species));
        sim.concentration(cell, 0) = static_cast<float>(1 - others);
    }
}

/// Tested by the codes before they are resolved: a code of the whole cell acts only from the first stage on.
float startVelocity(const SimState& sim, std::int64_t cell, int dim) {
    const double init = sim.velocityInit(cell, dim);
    const double reference = sim.density[0];
    const double density = sim.density[cell];
    switch (sim.wallVelocity(cell, dim)) {
    case -1: return static_cast<float>(init * reference / density);
    case -2: return static_cast<float>(init * (1 / double(sim.rampSteps)) * reference / density);
    default: return sim.velocityInit(cell, dim);
    }
}

/// Slopes 0, and the work state that of the committed slot. `slots` holds one component of a quantity in all slots.
template <class Slots>
void startSlots(Slots& slots, std::int64_t component, const CellRange& cells) {
    for (int slot = 1; slot < workSlot; ++slot)
        std::fill_n(slots.slot(slot).component(component) + cells.first, cells.count(), 0.0f);
    std::copy_n(slots.slot(committedSlot).component(component) + cells.first, cells.count(),
                slots.slot(workSlot).component(component) + cells.first);
}

void setStartMasses(SimState& sim, const CellRange& cells) {
    const double gasFactor = sim.gasFactor;
    for (std::int64_t cell = cells.first; cell < cells.end; ++cell)
        sim.density[cell] =
            static_cast<float>(double(sim.pressure[cell]) / (gasFactor * double(sim.temperature[cell])));
    for (std::int64_t cell = cells.first; cell < cells.end; ++cell)
        sim.cellMass[cell] = static_cast<float>(double(sim.cellVolume[cell]) * double(sim.density[cell]));
    for (int species = 0; species <= sim.nsMax; ++species) {
        CellTable<float>& masses = sim.stageSpecies.slot(committedSlot);
        for (std::int64_t cell = cells.first; cell < cells.end; ++cell)
            masses(cell, species) =
                static_cast<float>(double(sim.concentration(cell, species)) * double(sim.cellMass[cell]));
        startSlots(sim.stageSpecies, species, cells);
    }
}

void setStartEnergies(SimState& sim, const CellRange& cells) {
    CellTable<float>& energies = sim.stageEnergy.slot(committedSlot);
    for (std::int64_t cell = cells.first; cell < cells.end; ++cell)
        energies(cell, 0) = static_cast<float>(double(sim.temperature[cell]) * double(sim.cellMass[cell])
                                               * double(sim.heatCapacity[cell]));
    startSlots(sim.stageEnergy, 0, cells);
}

void setStartMomenta(SimState& sim, const CellRange& cells) {
    CellTable<float>& momenta = sim.stageMomentum.slot(committedSlot);
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        for (std::int64_t cell = cells.first; cell < cells.end; ++cell)
            sim.velocity(cell, dim) = startVelocity(sim, cell, dim);
        for (std::int64_t cell = cells.first; cell < cells.end; ++cell)
            momenta(cell, dim) = static_cast<float>(double(sim.velocity(cell, dim)) * double(sim.cellMass[cell]));
        startSlots(sim.stageMomentum, dim, cells);
    }
}

void setStartState(SimState& sim, const CellRange& cells) {
    setStartMasses(sim, cells);
    setStartEnergies(sim, cells);
    setStartMomenta(sim, cells);
}

/// Each from the cell below it, so in ascending order.
void derivePositions(SimState& sim, int dim, const CellRange& cells) {
    const std::int64_t stride = sim.cellStride[dim];
    const std::int64_t period = sim.cellStride[dim + 1];
    for (std::int64_t cell = cells.first; cell < cells.end;) {
        const std::int64_t place = (cell - 1) % period;
        const bool isFirst = place < stride;
        const std::int64_t end = std::min(cells.end, cell - place + (isFirst ? stride : period));
        for (; cell < end; ++cell)
            sim.cellPos(cell, dim) = isFirst ? 0
                                             : static_cast<float>(double(sim.cellSize(cell - stride, dim))
                                                                  + double(sim.cellPos(cell - stride, dim)));
    }
}

void deriveCoefficients(SimState& sim, const CellRange& cells) {
    for (std::int64_t cell = cells.first; cell < cells.end; ++cell)
        sim.friction[cell] = static_cast<float>(double(sim.cellVolume[cell]) * double(sim.friction[cell]));
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        derivePositions(sim, dim, cells);
        for (std::int64_t cell = cells.first; cell < cells.end; ++cell) {
            const double size = sim.cellSize(cell, dim);
            sim.inverseSize(cell, dim) = static_cast<float>(1 / size);
            sim.faceArea(cell, dim) = static_cast<float>(double(sim.cellVolume[cell]) / size);
        }
        for (std::int64_t cell = cells.first; cell < cells.end; ++cell) {
            const double volume = sim.cellVolume[cell];
            const double square = double(sim.cellSize(cell, dim)) * double(sim.cellSize(cell, dim));
            sim.conductionCoef(cell, dim) = static_cast<float>(double(sim.conductivity[cell]) * volume / square);
            sim.viscousCoef(cell, dim) = static_cast<float>(double(sim.viscosity[cell]) * volume / square);
        }
    }
}

} // namespace

void deriveCells(SimState& sim, bool continues) {
    if (!continues) clearRemainders(sim);
    forRanges(sim, [&](const CellRange& cells) {
        deriveVolumes(sim, cells);
        deriveFirstConcentrations(sim, cells);
        if (!continues) setStartState(sim, cells);
        deriveCoefficients(sim, cells);
    });
}

void resolveWallVelocities(SimState& sim, const BuildTrace& trace) {
    const auto set = [&](Source source, std::int64_t cell, int dim, std::int16_t code, std::int32_t origin) {
        sim.wallVelocity(cell, dim) = code;
        if (trace) trace({source, &keyOf("WV"), static_cast<std::int32_t>(cell), dim, double(code), origin});
    };
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const std::int16_t cellCode = sim.wallVelocity(cell, 0);
        for (int dim = 1; cellCode != wallFree && dim <= sim.nDim; ++dim)
            set(Source::wholeCell, cell, dim, cellCode, cell);
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            if (sim.wallVelocity(cell, dim) != wallBothClosed) continue;
            const std::int64_t lower = std::int64_t{cell} - sim.cellStride[dim];
            if (inSameRow(sim, lower, cell, dim)) set(Source::closedTwice, lower, dim, wallClosed, cell);
            set(Source::closedTwice, cell, dim, wallClosed, cell);
        }
    }
}

} // namespace norvane
