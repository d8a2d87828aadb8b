#include "geometry/model_build.h"

#include "core/addressing.h"
#include "core/checkstop.h"
#include "geometry/cell_keywords.h"
#include "platform/files.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

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
void parseElement(std::string& item, std::string_view key, Array<float>& array) {
    std::int16_t index = -1;
    float value = 0;
    parseKeyIndexValue(item, key, index, value);
    if (index > 0 && array.contains(index)) array[index] = value;
}

/// An index and a value of the keys DD and HH; they count only if the value is above -1.
struct Spread {
    std::int16_t index = 0;
    float value = -1;

    bool given() const { return value > -1; }

    int dim() const { return std::abs(int{index}); }
};

Spread parseSpread(std::string& item, std::string_view key) {
    Spread spread;
    parseKeyIndexValue(item, key, spread.index, spread.value);
    return spread;
}

/// The sign of the index has no meaning here: all cells follow the template anyway.
void applyTemplateSize(SimState& sim, const Spread& size) {
    if (!size.given() || size.dim() > sim.nDim) return;
    const int first = size.index == 0 ? 1 : size.dim();
    const int last = size.index == 0 ? sim.nDim : size.dim();
    for (int dim = first; dim <= last; ++dim) sim.cellSize(0, dim) = size.value;
}

void parseDefaultsItem(SimState& sim, std::string& item, bool keepDisplay, std::int32_t& stepLimit) {
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
    applyTemplateSize(sim, parseSpread(item, "DD"));
}

/// Reads the rows down to the first L row. Gives the value of key NT, 0 without it.
std::int32_t readDefaults(SimState& sim, bool keepDisplay) {
    std::int32_t stepLimit = 0;
    for (std::int64_t row = 1; row <= sim.firstLayerRow; ++row) {
        RowWalker walker(sim.grid.row(row), sim.gridCols);
        for (std::int64_t column = 1; column <= sim.gridCols; ++column)
            forEachItem(walker.next(),
                        [&](std::string& item) { parseDefaultsItem(sim, item, keepDisplay, stepLimit); });
    }
    return stepLimit;
}

/// Makes every cell a copy of the template, at rest, with a closed face at the upper end of every row. What the
/// template does not pass on (velocityInit, the other wall codes) holds what the cell's keys write again in step with
/// each build.
void copyTemplate(SimState& sim) {
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        sim.density[cell] = sim.density[0];
        for (int species = 0; species <= sim.nsMax; ++species)
            sim.concentration(cell, species) = sim.concentration(0, species);
        sim.heatCapacity[cell] = sim.heatCapacity[0];
        sim.conductivity[cell] = sim.conductivity[0];
        sim.viscosity[cell] = sim.viscosity[0];
        sim.temperature[cell] = sim.temperature[0];
        sim.pressure[cell] = sim.pressure[0];
        sim.friction[cell] = sim.friction[0];
        sim.cellHeight[cell] = sim.cellHeight[0];
        sim.wallTemperature[cell] = sim.wallTemperature[0];
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            const bool lastOfRow = cellCoordinate(sim, cell, dim) == sim.cellCount[dim] - 1;
            sim.wallVelocity(cell, dim) = lastOfRow ? std::int16_t{1} : sim.wallVelocity(0, dim);
            sim.cellSize(cell, dim) = sim.cellSize(0, dim);
            sim.velocity(cell, dim) = 0;
        }
    }
}

// --- cell texts ----------------------------------------------------------------------------------------------------

/// Calls `write(k)` for all cells k >= from that share the coordinate of `cell` along `dim`, walking only those.
template <class Write>
void forSameCoordinate(const SimState& sim, std::int32_t cell, int dim, std::int64_t from, const Write& write) {
    const std::int64_t stride = sim.cellStride[dim];
    const std::int64_t period = sim.cellStride[dim + 1];
    const std::int64_t place = (cell - 1) % period / stride * stride; // where the coordinate begins in each period
    for (std::int64_t start = (from - 1) / period * period + place; start < sim.nCells; start += period)
        for (std::int64_t k = std::max(start + 1, from); k <= start + stride; ++k) write(k);
}

/// A negative index spreads the size forward to the cells behind this one; positive and 0 stay with the cell.
void applyCellSize(SimState& sim, std::int32_t cell, const Spread& size) {
    if (!size.given() || size.dim() > sim.nDim) return;
    if (size.index == 0) {
        for (int dim = 1; dim <= sim.nDim; ++dim) sim.cellSize(cell, dim) = size.value;
    } else if (size.index > 0) {
        sim.cellSize(cell, size.dim()) = size.value;
    } else {
        forSameCoordinate(sim, cell, size.dim(), cell,
                          [&](std::int64_t k) { sim.cellSize(k, size.dim()) = size.value; });
    }
}

/// The other way round: a positive index spreads the height over the whole line or plane.
void applyCellHeight(SimState& sim, std::int32_t cell, const Spread& height) {
    if (!height.given() || height.dim() > sim.nDim) return;
    if (height.index > 0)
        forSameCoordinate(sim, cell, height.dim(), 1, [&](std::int64_t k) { sim.cellHeight[k] = height.value; });
    else
        sim.cellHeight[cell] = height.value;
}

/// Cells follow the table column by column, row by row, layer by layer; the closing L rows are passed over.
void readCellTexts(SimState& sim) {
    if (sim.nCells == 0) return;
    const std::int64_t dataRows = sim.nCells / sim.gridCols;
    const std::int64_t rowsOfLayer = sim.layerRows - 1;
    std::int32_t cell = 0;
    for (std::int64_t dataRow = 0; dataRow < dataRows; ++dataRow) {
        const std::int64_t layer = dataRow / rowsOfLayer;
        const std::int64_t row = sim.firstLayerRow + layer * sim.layerRows + dataRow % rowsOfLayer + 1;
        RowWalker walker(sim.grid.row(row), sim.gridCols);
        for (std::int32_t column = 1; column <= sim.gridCols; ++column) {
            cell += 1;
            forEachItem(walker.next(), [&](std::string& item) {
                parseCellKeys(sim, item, cell);
                applyCellSize(sim, cell, parseSpread(item, "DD"));
                applyCellHeight(sim, cell, parseSpread(item, "HH"));
            });
        }
    }
}

// --- what follows from them ----------------------------------------------------------------------------------------

void deriveVolume(SimState& sim, std::int32_t cell) {
    float volume = sim.cellHeight[cell];
    for (int dim = 1; dim <= sim.nDim; ++dim)
        volume = static_cast<float>(double(volume) * double(sim.cellSize(cell, dim)));
    sim.cellVolume[cell] = volume;
}

/// Species 0 fills up the fractions of the others to 1, whatever its own key says.
void deriveFirstConcentration(SimState& sim, std::int32_t cell) {
    double others = 0;
    for (int species = 1; species <= sim.nsMax; ++species) others += double(sim.concentration(cell, species));
    sim.concentration(cell, 0) = static_cast<float>(1 - others);
}

/// Tested by the codes before they are resolved: a code of the whole cell acts only from the first stage on.
float startVelocity(const SimState& sim, std::int32_t cell, int dim) {
    const double init = sim.velocityInit(cell, dim);
    const double reference = sim.density[0];
    const double density = sim.density[cell];
    switch (sim.wallVelocity(cell, dim)) {
    case -1: return static_cast<float>(init * reference / density);
    case -2: return static_cast<float>(init * (1 / double(sim.rampSteps)) * reference / density);
    default: return sim.velocityInit(cell, dim);
    }
}

void copyCommittedToWork(SimState& sim, std::int32_t cell) {
    for (int slot = 1; slot <= workSlot; ++slot) {
        const bool isWork = slot == workSlot;
        for (int species = 0; species <= sim.nsMax; ++species)
            sim.stageSpecies(slot, species, cell) = isWork ? sim.stageSpecies(committedSlot, species, cell) : 0;
        sim.stageEnergy(slot, cell) = isWork ? sim.stageEnergy(committedSlot, cell) : 0;
        for (int dim = 1; dim <= sim.nDim; ++dim)
            sim.stageMomentum(slot, cell, dim) = isWork ? sim.stageMomentum(committedSlot, cell, dim) : 0;
    }
}

void setStartState(SimState& sim, std::int32_t cell) {
    sim.density[cell] =
        static_cast<float>(double(sim.pressure[cell]) / (double(sim.gasFactor) * double(sim.temperature[cell])));
    sim.cellMass[cell] = static_cast<float>(double(sim.cellVolume[cell]) * double(sim.density[cell]));
    const double mass = sim.cellMass[cell];
    for (int species = 0; species <= sim.nsMax; ++species)
        sim.stageSpecies(committedSlot, species, cell) =
            static_cast<float>(double(sim.concentration(cell, species)) * mass);
    sim.stageEnergy(committedSlot, cell) =
        static_cast<float>(double(sim.temperature[cell]) * mass * double(sim.heatCapacity[cell]));
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        sim.velocity(cell, dim) = startVelocity(sim, cell, dim);
        sim.stageMomentum(committedSlot, cell, dim) = static_cast<float>(double(sim.velocity(cell, dim)) * mass);
    }
    copyCommittedToWork(sim, cell);
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

void deriveCoefficients(SimState& sim, std::int32_t cell) {
    const double volume = sim.cellVolume[cell];
    sim.friction[cell] = static_cast<float>(volume * double(sim.friction[cell]));
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const double size = sim.cellSize(cell, dim);
        const std::int32_t lower = cell - sim.cellStride[dim];
        const bool isFirst = cellCoordinate(sim, cell, dim) < 1;
        sim.cellPos(cell, dim) =
            isFirst ? 0 : static_cast<float>(double(sim.cellSize(lower, dim)) + double(sim.cellPos(lower, dim)));
        sim.inverseSize(cell, dim) = static_cast<float>(1 / size);
        sim.faceArea(cell, dim) = static_cast<float>(volume / size);
        const double square = size * size;
        sim.conductionCoef(cell, dim) = static_cast<float>(double(sim.conductivity[cell]) * volume / square);
        sim.viscousCoef(cell, dim) = static_cast<float>(double(sim.viscosity[cell]) * volume / square);
    }
}

std::int32_t limitedSum(std::int32_t a, std::int32_t b) {
    const std::int64_t sum = std::int64_t{a} + b;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(sum, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

void emptyLog(SimState& sim, const Interface& ui) {
    const FileResult written = writeFile(joinPath(sim.inputDir, sim.baseName + "_log"), {});
    if (written) return;
    sim.told.log = true;
    ui.showMessage("The log file " + sim.baseName + "_log can't be written: " + written.reason
                   + ".\r\nThe run goes on without it.");
}

} // namespace

void buildModel(SimState& sim, Interface& ui) {
    if (sim.nDim == 0) {
        ui.showMessage("select an input geometry first");
        return;
    }
    const bool continues = sim.runMode == modeContinuation;
    if (sim.showWhat < 1) sim.showWhat = 1;
    clearCheckstop(sim, ui);
    layStrides(sim);
    setTemplateDefaults(sim);
    setScalarDefaults(sim);
    if (!continues) setDisplayDefaults(sim);
    const std::int32_t stepLimit = readDefaults(sim, continues);
    sim.gasFactor = static_cast<float>(double(sim.pressure[0]) / (double(sim.temperature[0]) * double(sim.density[0])));
    copyTemplate(sim);

    readCellTexts(sim);
    if (!continues && sim.nCells > 0) sim.stepCount = 0;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        deriveVolume(sim, cell);
        deriveFirstConcentration(sim, cell);
        if (!continues) setStartState(sim, cell);
    }
    resolveWallVelocities(sim);
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) deriveCoefficients(sim, cell);

    sim.stopStep = limitedSum(sim.stepCount, stepLimit);
    if (sim.runMode == modeGeometryRead && sim.logEvery > 0 && !sim.onlyLooks) emptyLog(sim, ui);
    sim.runMode = modeModelStands;
}

} // namespace norvane
