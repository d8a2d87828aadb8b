#include "geometry/grid_file.h"

#include "geometry/cell_keywords.h"
#include "geometry/text_encoding.h"
#include "platform/available_memory.h"
#include "platform/files.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace norvane {

namespace {

constexpr const char* lineEnd = "\r\n";
constexpr std::int32_t maxInt16 = std::numeric_limits<std::int16_t>::max();
constexpr std::int64_t maxInt32 = std::numeric_limits<std::int32_t>::max();
constexpr int maxLayerMessages = 1000; ///< a table in which so many rows are out of place is something else

/// What lives only during a load.
struct Load {
    SimState& sim;
    Interface& ui;
    std::int64_t rowCount = 0;
    std::int64_t layerCount = -1; ///< L rows minus 1
    std::int32_t layerMark = 0;   ///< number of the L row that was read last
    int layerMessages = 0;
};

bool fail(const Load& load, const std::string& message) {
    load.ui.showMessage(message);
    return false;
}

/// A fault with its place in the file and what to mend.
bool failAt(const Load& load, std::int64_t row, const std::string& what) {
    return fail(load, load.sim.fileName + ", row " + std::to_string(row) + ": " + what);
}

std::string firstColumn(const Load& load, std::int64_t row) {
    return readable(load.sim.grid.text(1, row, load.sim.gridCols));
}

bool isLayerRow(std::string_view text) { return !text.empty() && text[0] == 'L'; }

void takeNames(SimState& sim, const Interface& ui) {
    sim.inputDir = ui.NV_in.Dir1.path;
    sim.fileName = ui.NV_in.File1.selected;
    sim.baseName = sim.fileName.substr(0, sim.fileName.find('.'));
    sim.outName = sim.baseName + "_out";
    sim.graphTitle = sim.baseName;
}

constexpr ItemForm cellTexts{"\t\r\n", std::size_t{1} << 20};

/// Reads the file and takes its table. The new table is held back until all yields are over: a command that runs in one
/// of them still finds the old grid whole.
bool readTable(Load& load) {
    SimState& sim = load.sim;
    Interface& ui = load.ui;
    if (sim.fileName.empty()) return fail(load, "Select a geometry file in the list first.");
    const std::string path = joinPath(sim.inputDir, sim.fileName);
    std::string bytes;
    bool tooLong = false;
    const FileResult read = readItems(path, cellTexts, bytes, tooLong);
    sim.reported.geometry = !read;
    if (tooLong)
        return fail(load, "The geometry file " + sim.fileName
                              + " is no table: there is no tab and no line end in more than 1 MB of it." + lineEnd
                              + "Save the table of the geometry as tab-separated text under this name.");
    if (!read) return fail(load, "The geometry file " + sim.fileName + " can't be read: " + read.reason + ".");
    CellTextTable table(toUtf8(std::move(bytes)));
    load.rowCount = table.rowCount();
    if (load.rowCount == 0)
        return fail(load, "The geometry file " + sim.fileName + " is empty: it has no row 1." + lineEnd
                              + "Save the table of the geometry as tab-separated text under this name.");
    ui.NV_in.Text1.text = std::to_string(load.rowCount);

    const std::string_view firstRow = table.row(1);
    const std::int64_t columns = std::count(firstRow.begin(), firstRow.end(), '\t') + 1;
    for (std::int64_t column = 1; column <= columns; ++column) ui.yieldToInterface();
    ui.NV_in.Text1.text = " rows: " + std::to_string(load.rowCount) + lineEnd + " columns: " + std::to_string(columns);
    if (columns > maxInt16)
        return failAt(load, 1, std::to_string(columns) + " columns. A grid has at most 32767 cells along a dimension.");
    if (load.rowCount > maxInt32) return fail(load, sim.fileName + " has more rows than can be counted.");
    sim.grid = std::move(table);
    sim.gridCols = static_cast<std::int32_t>(columns);
    return true;
}

/// Finds the L rows and the number of species. `lastText` becomes the text in column 1 of the last row.
bool scanFirstColumn(Load& load, std::string& lastText) {
    SimState& sim = load.sim;
    sim.firstLayerRow = 0;
    std::int32_t highestSpecies = 0;
    std::int64_t speciesRow = 0;
    for (std::int64_t row = 1; row <= load.rowCount; ++row) {
        lastText = firstColumn(load, row);
        if (lastText.find("NS") != std::string::npos) speciesRow = row;
        parseKeyValue(lastText, "NS", highestSpecies);
        if (!isLayerRow(lastText)) continue;
        load.layerCount += 1;
        if (sim.firstLayerRow == 0) sim.firstLayerRow = static_cast<std::int32_t>(row);
    }
    if (highestSpecies < 0 || highestSpecies > maxInt16)
        return failAt(load, speciesRow,
                      "NS " + std::to_string(highestSpecies) + ". The highest species index lies between 0 and 32767.");
    sim.nsMax = static_cast<std::int16_t>(highestSpecies);
    return true;
}

/// Takes the number of dimensions from the last row, whose text is `lastText`.
bool deduceDimensions(Load& load, std::string_view lastText) {
    SimState& sim = load.sim;
    if (load.layerCount == 0)
        return fail(load, "You must define at least one layer by specifying a letter 'L' above and below the layer "
                          "geometry");
    if (!isLayerRow(lastText))
        return fail(load, "You must terminate a set of rows with an 'L' to specify end of layer.");
    std::int32_t dimensions = 0;
    parseKeyValue(lastText, "L", dimensions);
    if (dimensions > maxInt16)
        return failAt(load, load.rowCount,
                      "the number behind the L is beyond 32767. It tells the number of dimensions.");
    if (dimensions < 3) dimensions = 3;
    if (dimensions == 3 && load.layerCount == 1) dimensions = load.rowCount - 2 == 1 ? 1 : 2;
    sim.nDim = static_cast<std::int16_t>(dimensions);
    sim.cellCount.allocate(0, dimensions);
    sim.layerRows = static_cast<std::int32_t>((load.rowCount - sim.firstLayerRow) / load.layerCount);
    if (sim.layerRows <= 1) return fail(load, "Layersize <= 1!");
    if (sim.layerRows - 1 > maxInt16)
        return failAt(load, sim.firstLayerRow,
                      "the layer has " + std::to_string(sim.layerRows - 1)
                          + " rows. A grid has at most 32767 cells along a dimension.");
    return true;
}

std::string unequalLayersText(std::int64_t row, std::int32_t mark) {
    return "row :" + std::to_string(row) + lineEnd + "The layers are not of equal size." + lineEnd
           + "The 'L' symbol of layer " + std::to_string(mark) + " was not found at the correct spot." + lineEnd
           + "-Remember the row with defaults at the top should also be selected" + lineEnd
           + "-Remember the last row with 'L' should also be selected";
}

std::string misplacedMarkText(std::int64_t row, int dim) {
    return "Row :" + std::to_string(row) + lineEnd + "A slice nr of " + std::to_string(dim) + " or"
           + std::to_string(dim + 1) + lineEnd + " was not found at the correct spot.";
}

/// Shows a message about a row that is out of place, and says whether the load may go on.
bool tellLayerFault(Load& load, std::int64_t row, const std::string& text) {
    load.ui.showMessage({text, ReportKind::layerMark, row});
    load.layerMessages += 1;
    if (load.layerMessages < maxLayerMessages) return true;
    return failAt(load, row, "too many rows are out of place; the load ends here, and no geometry is loaded.");
}

/// Counts the cells along one dimension [3..nDim] by its layer marks, which lie at multiples of `rowStep`; a mark of
/// the next dimension makes that step longer.
bool countLayers(Load& load, int dim, std::int64_t& rowStep) {
    SimState& sim = load.sim;
    for (std::int64_t k = 1;;) {
        const std::int64_t row = sim.firstLayerRow + k * rowStep;
        if (row > load.rowCount) return true;
        const bool isLast = row == load.rowCount;
        std::string text = firstColumn(load, row);
        if (!isLayerRow(text) && !tellLayerFault(load, row, unequalLayersText(row, load.layerMark))) return false;
        parseKeyValue(text, "L", load.layerMark);
        if (load.layerMark > maxInt16) return failAt(load, row, "the number behind the L is beyond 32767.");
        if (load.layerMark < 1) load.layerMark = 3;
        const bool counts = load.layerMark == dim || load.layerMark == dim + 1;
        if (counts && sim.cellCount[dim] == maxInt16)
            return failAt(load, row, "more than 32767 layers. A grid has at most 32767 cells along a dimension.");
        if (counts) sim.cellCount[dim] = static_cast<std::int16_t>(sim.cellCount[dim] + 1);
        if (counts && load.layerMark != dim) {
            rowStep *= sim.cellCount[dim];
            return true;
        }
        if (!counts && !isLast)
            return fail(load, misplacedMarkText(row, dim) + lineEnd + "Mend the mark in " + sim.fileName
                                  + " and load it again: no geometry is loaded.");
        if (!counts && !tellLayerFault(load, row, misplacedMarkText(row, dim))) return false;
        if (isLast) return true;
        k += 1;
    }
}

bool countCells(Load& load) {
    SimState& sim = load.sim;
    std::int64_t rowStep = sim.layerRows;
    for (int dim = 3; dim <= sim.nDim; ++dim)
        if (!countLayers(load, dim, rowStep)) return false;
    sim.cellCount[1] = static_cast<std::int16_t>(sim.gridCols);
    if (sim.nDim >= 2) sim.cellCount[2] = static_cast<std::int16_t>(sim.layerRows - 1);
    if (sim.nDim > 1 && sim.cellCount[sim.nDim] == 1) sim.nDim = static_cast<std::int16_t>(sim.nDim - 1);

    std::int64_t cells = 1;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        cells *= sim.cellCount[dim];
        if (cells > maxInt32 - 1)
            return failAt(load, load.rowCount, "the grid has more than 2147483646 cells. Draw a coarser one.");
    }
    sim.nCells = static_cast<std::int32_t>(cells);
    return true;
}

bool createArrays(Load& load) {
    SimState& sim = load.sim;
    const double needed = stateBytes(sim.nDim, sim.nsMax, sim.nCells)
                          + (sim.compensated ? remainderBytes(sim.nDim, sim.nsMax, sim.nCells) : 0);
    const double memory = availableMemory();
    if (memory == 0 || needed <= memory) {
        showCellStructure(sim, load.ui);
        sim.runMode = modeGeometryRead;
        if (allocateState(sim)) return true;
    }
    const auto megabytes = [](double bytes) { return std::to_string(static_cast<std::int64_t>(bytes / 1e6)) + " MB"; };
    return failAt(
        load, load.rowCount,
        "the model of this table needs " + megabytes(needed) + " of memory, and "
            + (needed > memory ? megabytes(memory) + " are free." : "the system does not give them in one piece.")
            + " Draw a coarser grid, or take fewer species.");
}

bool loadTable(Load& load) {
    std::string lastText;
    return readTable(load) && scanFirstColumn(load, lastText) && deduceDimensions(load, lastText) && countCells(load)
           && createArrays(load);
}

} // namespace

void showCellStructure(const SimState& sim, const Interface& ui) {
    std::string text = std::string("You have defined the cell structure: ") + lineEnd;
    for (int dim = 1; dim <= sim.nDim; ++dim)
        text += "D=" + std::to_string(dim) + " : " + std::to_string(sim.cellCount[dim]) + " Cells" + lineEnd;
    if (!sim.batchMode) ui.showMessage(text);
}

void loadGeometry(SimState& sim, Interface& ui) {
    if (sim.runDepth > 0 || sim.loading) {
        ui.showMessage(sim.loading ? "A geometry is being read already."
                                   : "A run is under way.\r\nStop it with \"disp\" before you import a geometry.");
        return;
    }
    sim.loading = true;
    takeNames(sim, ui);
    Load load{sim, ui};
    if (!loadTable(load)) clearGeometry(sim);
    sim.loading = false;
}

} // namespace norvane
