#include "geometry/model_build.h"

#include "core/addressing.h"
#include "core/checkstop.h"
#include "geometry/cell_keywords.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <vector>

namespace norvane {

namespace {

constexpr int columnMark = -2; ///< value of sliceSel of the dimension that is drawn across
constexpr int rowMark = -1;    ///< value of sliceSel of the dimension that is drawn downward

// --- rows with defaults --------------------------------------------------------------------------------------------

void layStrides(SimState& sim) {
    sim.cellStride[1] = 1;
    for (int dim = 1; dim <= sim.nDim; ++dim)
        sim.cellStride[dim + 1] = sim.cellCount[dim] * sim.cellStride[dim]; // at most nCells, which the load limits
}

void setTemplateDefaults(SimState& sim) {
    sim.density[0] = 1;
    sim.heatCapacity[0] = 1000;
    sim.temperature[0] = 298.15f;
    sim.pressure[0] = 101300;
    for (int species = 0; species <= sim.nsMax; ++species) sim.concentration(0, species) = species == 0 ? 1.0f : 0.0f;
    sim.conductivity[0] = 0.02f;
    sim.viscosity[0] = 0.00001f;
    sim.friction[0] = 0;
    sim.cellHeight[0] = 1;
    sim.wallTemperature[0] = 0;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        sim.wallVelocity(0, dim) = 0;
        sim.cellSize(0, dim) = 0.01f;
        sim.gravity[dim] = 0;
    }
}

void setScalarDefaults(SimState& sim) {
    sim.dt = 0.01f;
    sim.updateEvery = 25;
    sim.saveEvery = 10000;
    sim.frameEvery = 10000000;
    sim.logEvery = 0;
    sim.cyFlag = 0;
    sim.rampSteps = 1;
    sim.rhoFloor = 0.01f;
}

void setDisplayDefaults(SimState& sim) {
    sim.scaleMax = 1000;
    sim.scaleMin = 600;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        sim.zoom[dim] = 1;
        sim.offset[dim] = 0;
        sim.sliceSel[dim] = 0;
    }
    sim.sliceSel[1] = columnMark;
    if (sim.nDim >= 2) sim.sliceSel[2] = rowMark;
    sim.axisPair[0] = 1;
    sim.axisPair[1] = 2;
}

/// Stores the value of an indexed key where the item has one and the array has that index.
void parseElement(std::string_view item, std::string_view key, Array<float>& array) {
    std::int16_t index = -1;
    float value = 0;
    parseKeyIndexValue(item, key, index, value);
    if (index > 0 && array.contains(index)) array[index] = value;
}

/// An index and a value of the keys DD and HH; they count only if the value is above -1.
struct KeyedSize {
    std::int16_t index = 0;
    float value = -1;

    bool given() const { return value > -1; }

    int dim() const { return std::abs(int{index}); }
};

KeyedSize parseSize(std::string_view item, std::string_view key) {
    KeyedSize size;
    parseKeyIndexValue(item, key, size.index, size.value);
    return size;
}

/// The sign of the index has no meaning here: all cells follow the template anyway.
void applyTemplateSize(SimState& sim, const KeyedSize& size) {
    if (!size.given() || size.dim() > sim.nDim) return;
    const int first = size.index == 0 ? 1 : size.dim();
    const int last = size.index == 0 ? sim.nDim : size.dim();
    for (int dim = first; dim <= last; ++dim) sim.cellSize(0, dim) = size.value;
}

void parseDefaultsItem(SimState& sim, std::string_view item, bool keepDisplay, std::int32_t& stepLimit) {
    parseKeyValue(item, "DT", sim.dt);
    parseKeyValue(item, "UT", sim.updateEvery);
    parseKeyValue(item, "ST", sim.saveEvery);
    parseKeyValue(item, "FT", sim.frameEvery);
    parseKeyValue(item, "LT", sim.logEvery);
    parseKeyValue(item, "CY", sim.cyFlag);
    parseKeyValue(item, "TR", sim.rampSteps);
    parseKeyValue(item, "NT", stepLimit);
    if (!keepDisplay) {
        parseKeyValue(item, "SA", sim.scaleMax);
        parseKeyValue(item, "SI", sim.scaleMin);
        parseKeyValue(item, "SW", sim.showWhat);
        parseKeyValue(item, "SD", sim.showDims);
    }
    parseCellKeys(sim, item, 0);
    parseElement(item, "GG", sim.gravity);
    parseElement(item, "GP", sim.paramGP);
    applyTemplateSize(sim, parseSize(item, "DD"));
}

/// Reads the rows down to the first L row. Gives the value of key NT, 0 without it.
std::int32_t readDefaults(SimState& sim, bool keepDisplay) {
    std::int32_t stepLimit = 0;
    for (std::int64_t row = 1; row <= sim.firstLayerRow; ++row) {
        RowWalker walker(sim.grid.row(row), sim.gridCols);
        for (std::int64_t column = 1; column <= sim.gridCols; ++column)
            forEachItem(walker.next(),
                        [&](std::string_view item) { parseDefaultsItem(sim, item, keepDisplay, stepLimit); });
    }
    return stepLimit;
}

template <class T>
void copyTemplateOf(Array<T>& field, std::int32_t cells) {
    std::fill_n(&field[0] + 1, cells, field[0]);
}

template <class T>
void copyTemplateOf(CellTable<T>& field, int component, std::int32_t cells) {
    std::fill_n(field.component(component) + 1, cells, field(0, component));
}

/// Closes the upper face of the last cell of every row along a dimension.
void closeRowEnds(SimState& sim, int dim) {
    if (sim.nCells == 0) return;
    const std::int64_t stride = sim.cellStride[dim];
    const std::int64_t period = sim.cellStride[dim + 1];
    std::int16_t* const codes = sim.wallVelocity.component(dim) + 1;
    for (std::int64_t end = period; end <= sim.nCells; end += period)
        std::fill_n(codes + end - stride, stride, std::int16_t{1});
}

/// Makes every cell a copy of the template, at rest, with a closed face at the upper end of every row. What the
/// template does not pass on (velocityInit, the other wall codes) holds what the cell's keys write again in step with
/// each build.
void copyTemplate(SimState& sim) {
    const std::int32_t cells = sim.nCells;
    for (Array<float>* field : {&sim.density, &sim.heatCapacity, &sim.conductivity, &sim.viscosity, &sim.temperature,
                                &sim.pressure, &sim.friction, &sim.cellHeight})
        copyTemplateOf(*field, cells);
    for (int species = 0; species <= sim.nsMax; ++species) copyTemplateOf(sim.concentration, species, cells);
    copyTemplateOf(sim.wallTemperature, cells);
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        copyTemplateOf(sim.wallVelocity, dim, cells);
        closeRowEnds(sim, dim);
        copyTemplateOf(sim.cellSize, dim, cells);
        std::fill_n(sim.velocity.component(dim) + 1, cells, 0.0f);
    }
}

// --- cell texts ----------------------------------------------------------------------------------------------------

/// What a key has spread last over the cells with one coordinate along a dimension.
struct LineValue {
    std::int64_t turn = 0; ///< counts what was spread, whatever the dimension; 0: nothing
    std::int32_t cell = 0; ///< whose text spread it
    float value = 0;
};

/// Values that a key spreads. Every cell takes them when the walk over the texts comes to it, instead of being written
/// by each cell that spreads: so the work grows as the number of cells even where all of them spread something.
struct SpreadValues {
    std::vector<std::vector<LineValue>> lines; ///< [nDim][cellCount], each empty until something is spread along it
    std::int64_t turn = 0;

    bool any() const { return turn > 0; }
};

std::size_t placeAlong(const SimState& sim, std::int32_t cell, int dim) {
    return static_cast<std::size_t>(cellCoordinate(sim, cell, dim));
}

void spreadFrom(const SimState& sim, SpreadValues& spread, std::int32_t cell, int dim, float value) {
    spread.lines.resize(static_cast<std::size_t>(sim.nDim));
    std::vector<LineValue>& line = spread.lines[static_cast<std::size_t>(dim) - 1];
    if (line.empty()) line.resize(static_cast<std::size_t>(sim.cellCount[dim]));
    spread.turn += 1;
    line[placeAlong(sim, cell, dim)] = {spread.turn, cell, value};
}

/// What was spread along a dimension, last so far, over the line or plane of a cell.
LineValue spreadTo(const SimState& sim, const SpreadValues& spread, std::int32_t cell, int dim) {
    const std::vector<LineValue>& line = spread.lines[static_cast<std::size_t>(dim) - 1];
    return line.empty() ? LineValue() : line[placeAlong(sim, cell, dim)];
}

/// The same along any dimension.
LineValue latestSpreadTo(const SimState& sim, const SpreadValues& spread, std::int32_t cell) {
    LineValue latest;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const LineValue found = spreadTo(sim, spread, cell, dim);
        if (found.turn > latest.turn) latest = found;
    }
    return latest;
}

/// What the keys DD and HH have spread while the texts are walked.
struct Spreads {
    SpreadValues sizes;
    SpreadValues heights;
};

/// Before the cell's own text.
void takeSpreads(SimState& sim, const Spreads& spreads, std::int32_t cell) {
    for (int dim = 1; spreads.sizes.any() && dim <= sim.nDim; ++dim) {
        const LineValue size = spreadTo(sim, spreads.sizes, cell, dim);
        if (size.turn > 0) sim.cellSize(cell, dim) = size.value;
    }
    if (!spreads.heights.any()) return;
    const LineValue height = latestSpreadTo(sim, spreads.heights, cell);
    if (height.turn > 0) sim.cellHeight[cell] = height.value;
}

/// Heights reach back, too: to the cells whose own text stands before that of the cell that spread last.
void takeLaterHeights(SimState& sim, const SpreadValues& heights) {
    if (!heights.any()) return;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const LineValue height = latestSpreadTo(sim, heights, cell);
        if (height.cell > cell) sim.cellHeight[cell] = height.value;
    }
}

/// A negative index spreads the size forward to the cells behind this one; positive and 0 stay with the cell.
void applyCellSize(SimState& sim, SpreadValues& sizes, std::int32_t cell, const KeyedSize& size) {
    if (!size.given() || size.dim() > sim.nDim) return;
    if (size.index == 0) {
        for (int dim = 1; dim <= sim.nDim; ++dim) sim.cellSize(cell, dim) = size.value;
        return;
    }
    sim.cellSize(cell, size.dim()) = size.value;
    if (size.index < 0) spreadFrom(sim, sizes, cell, size.dim(), size.value);
}

/// The other way round: a positive index spreads the height over the whole line or plane.
void applyCellHeight(SimState& sim, SpreadValues& heights, std::int32_t cell, const KeyedSize& height) {
    if (!height.given() || height.dim() > sim.nDim) return;
    sim.cellHeight[cell] = height.value;
    if (height.index > 0) spreadFrom(sim, heights, cell, height.dim(), height.value);
}

/// Cells follow the table column by column, row by row, layer by layer; the closing L rows are passed over.
void readCellTexts(SimState& sim) {
    if (sim.nCells == 0) return;
    const std::int64_t dataRows = sim.nCells / sim.gridCols;
    const std::int64_t rowsOfLayer = sim.layerRows - 1;
    Spreads spreads;
    std::int32_t cell = 0;
    for (std::int64_t dataRow = 0; dataRow < dataRows; ++dataRow) {
        const std::int64_t layer = dataRow / rowsOfLayer;
        const std::int64_t row = sim.firstLayerRow + layer * sim.layerRows + dataRow % rowsOfLayer + 1;
        RowWalker walker(sim.grid.row(row), sim.gridCols);
        for (std::int32_t column = 1; column <= sim.gridCols; ++column) {
            cell += 1;
            takeSpreads(sim, spreads, cell);
            forEachItem(walker.next(), [&](std::string_view item) {
                parseCellKeys(sim, item, cell);
                applyCellSize(sim, spreads.sizes, cell, parseSize(item, "DD"));
                applyCellHeight(sim, spreads.heights, cell, parseSize(item, "HH"));
            });
        }
    }
    takeLaterHeights(sim, spreads.heights);
}

// --- what follows from them ----------------------------------------------------------------------------------------

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

/// Spreads codes of whole cells to their elements, and turns code 2 (both faces closed) into two closed upper faces.
void resolveWallVelocities(SimState& sim) {
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const std::int16_t cellCode = sim.wallVelocity(cell, 0);
        for (int dim = 1; cellCode != 0 && dim <= sim.nDim; ++dim) sim.wallVelocity(cell, dim) = cellCode;
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            if (sim.wallVelocity(cell, dim) != 2) continue;
            const std::int64_t lower = std::int64_t{cell} - sim.cellStride[dim];
            if (inSameRow(sim, lower, cell, dim)) sim.wallVelocity(lower, dim) = 1;
            sim.wallVelocity(cell, dim) = 1;
        }
    }
}

std::int32_t limitedSum(std::int32_t a, std::int32_t b) {
    const std::int64_t sum = std::int64_t{a} + b;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(sum, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

} // namespace

void buildModel(SimState& sim, const RunEvents& events) {
    sim.revision += 1;
    if (sim.nDim == 0) {
        events.showMessage("select an input geometry first");
        return;
    }
    const bool continues = sim.runMode == modeContinuation;
    if (sim.showWhat < 1) sim.showWhat = 1;
    clearCheckstop(sim, events);
    layStrides(sim);
    setTemplateDefaults(sim);
    setScalarDefaults(sim);
    if (!continues) setDisplayDefaults(sim);
    const std::int32_t stepLimit = readDefaults(sim, continues);
    sim.gasFactor = static_cast<float>(double(sim.pressure[0]) / (double(sim.temperature[0]) * double(sim.density[0])));
    copyTemplate(sim);

    readCellTexts(sim);
    if (!continues && sim.nCells > 0) sim.stepCount = 0;
    forRanges(sim, [&](const CellRange& cells) {
        deriveVolumes(sim, cells);
        deriveFirstConcentrations(sim, cells);
        if (!continues) setStartState(sim, cells);
        deriveCoefficients(sim, cells);
    });
    resolveWallVelocities(sim);

    sim.stopStep = limitedSum(sim.stepCount, stepLimit);
    sim.runMode = modeModelStands;
}

} // namespace norvane
