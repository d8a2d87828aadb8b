#include "core/addressing.h"
#include "geometry/model_parts.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace norvane {

namespace {

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

void takeHeight(SimState& sim, const LineValue& height, std::int32_t cell, const BuildTrace& trace) {
    sim.cellHeight[cell] = height.value;
    if (trace) trace({Source::spread, &keyOf("HH"), cell, 0, double(height.value), height.cell});
}

/// Before the cell's own text.
void takeSpreads(SimState& sim, const Spreads& spreads, std::int32_t cell, const BuildTrace& trace) {
    for (int dim = 1; spreads.sizes.any() && dim <= sim.nDim; ++dim) {
        const LineValue size = spreadTo(sim, spreads.sizes, cell, dim);
        if (size.turn == 0) continue;
        sim.cellSize(cell, dim) = size.value;
        if (trace) trace({Source::spread, &keyOf("DD"), cell, dim, double(size.value), size.cell});
    }
    if (!spreads.heights.any()) return;
    const LineValue height = latestSpreadTo(sim, spreads.heights, cell);
    if (height.turn > 0) takeHeight(sim, height, cell, trace);
}

/// Heights reach back, too: to the cells whose own text comes before that of the cell that spread last.
void takeLaterHeights(SimState& sim, const SpreadValues& heights, const BuildTrace& trace) {
    if (!heights.any()) return;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const LineValue height = latestSpreadTo(sim, heights, cell);
        if (height.cell > cell) takeHeight(sim, height, cell, trace);
    }
}

/// A negative index spreads the size forward to the cells after this one; positive and 0 stay with the cell.
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

/// One key of the text of a cell.
void takeKey(SimState& sim, const KeyText& text, Spreads& spreads, const BuildTrace& trace, Assignment assignment) {
    if (!text.hasEffect()) return;
    const std::int32_t cell = assignment.cell;
    assignment.key = text.key;
    assignment.value = text.value;
    if (text.key->index != KeyIndex::signedDimension) {
        assignment.component = storeKey(sim, text, cell);
        if (trace && assignment.component >= 0) trace(assignment);
        return;
    }
    const KeyedSize size = sizeOf(text);
    const bool isHeight = text.key->letters == "HH";
    if (isHeight)
        applyCellHeight(sim, spreads.heights, cell, size);
    else
        applyCellSize(sim, spreads.sizes, cell, size);
    if (!trace || !size.given() || size.dim() > sim.nDim) return;
    const bool isAll = size.index == 0 && !isHeight;
    for (int dim = isAll ? 1 : size.dim(); dim <= (isAll ? sim.nDim : size.dim()); ++dim) {
        assignment.component = isHeight ? 0 : dim;
        trace(assignment);
    }
}

} // namespace

/// Cells follow the table column by column, row by row, layer by layer; the closing L rows are passed over.
void readCellTexts(SimState& sim, const BuildTrace& trace) {
    if (sim.nCells == 0) return;
    const std::int64_t dataRows = sim.nCells / sim.gridCols;
    const std::int64_t rowsOfLayer = sim.layerRows - 1;
    Spreads spreads;
    Assignment assignment;
    assignment.source = Source::cellText;
    for (std::int64_t dataRow = 0; dataRow < dataRows; ++dataRow) {
        const std::int64_t layer = dataRow / rowsOfLayer;
        assignment.row = sim.firstLayerRow + layer * sim.layerRows + dataRow % rowsOfLayer + 1;
        RowWalker walker(sim.grid.row(assignment.row), sim.gridCols);
        for (std::int32_t column = 1; column <= sim.gridCols; ++column) {
            assignment.cell += 1;
            assignment.origin = assignment.cell;
            assignment.column = column;
            takeSpreads(sim, spreads, assignment.cell, trace);
            forEachItem(walker.next(), [&](std::string_view item, std::size_t at) {
                forEachKey(item, inCells, sim.nDim, [&](const KeyText& text) {
                    assignment.at = at + text.at;
                    takeKey(sim, text, spreads, trace, assignment);
                });
            });
        }
    }
    takeLaterHeights(sim, spreads.heights, trace);
}

} // namespace norvane
