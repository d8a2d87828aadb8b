#include "exchange/cell_table.h"

#include "exchange/csv_text.h"
#include "geometry/table_place.h"

#include <cctype>

namespace norvane {

namespace {

/// "x", "y", "z", and "x4", "x5".
std::string axisName(int dim) {
    static constexpr const char* names[] = {"x", "y", "z"};
    return dim <= 3 ? names[dim - 1] : "x" + std::to_string(dim);
}

std::string columnHeading(const NamedQuantity& quantity) {
    std::string heading = quantity.name;
    if (quantity.location == Location::upperFace)
        heading += quantity.dimension > 0 ? " (upper face)" : " (upper faces)";
    return quantity.unit.empty() ? heading : heading + " [" + quantity.unit + "]";
}

double centreOf(const SimState& sim, std::int32_t cell, int dim) {
    return double(sim.cellPos(cell, dim)) + double(sim.cellSize(cell, dim)) / 2;
}

/// The mark of a layer as the drawing has it; of one with other text behind the L the L alone.
std::string layerMark(const SimState& sim, std::int64_t row) {
    const std::string text(sim.grid.text(1, row, sim.gridCols));
    bool isMark = !text.empty() && text.size() <= 8;
    for (std::size_t k = 1; k < text.size(); ++k)
        isMark = isMark && (text[k] == ' ' || std::isdigit(static_cast<unsigned char>(text[k])) != 0);
    return isMark ? text : "L";
}

} // namespace

std::string
cellTable(const SimState& sim, std::span<const std::int32_t> cells, std::span<const NamedQuantity> quantities) {
    std::string text = "cell,address";
    for (int dim = 1; dim <= sim.nDim; ++dim) text += "," + axisName(dim) + " [m]";
    for (const NamedQuantity& quantity : quantities) text += "," + csvField(columnHeading(quantity));
    text += csvLineEnd;
    for (const std::int32_t cell : cells) {
        text += std::to_string(cell) + "," + spreadsheetAddress(placeOf(sim, cell));
        for (int dim = 1; dim <= sim.nDim; ++dim) appendNineDigits(text += ',', centreOf(sim, cell, dim));
        for (const NamedQuantity& quantity : quantities) appendNineDigits(text += ',', double(quantity.of(sim, cell)));
        text += csvLineEnd;
    }
    return text;
}

std::string
inShapeOfDrawing(const SimState& sim, LayerMarks marks, const std::function<std::string(std::int32_t cell)>& textOf) {
    const bool isDrawn = marks == LayerMarks::asDrawn;
    const std::string emptyRow = std::string(static_cast<std::size_t>(sim.gridCols) - 1, '\t') + '\n';
    std::int64_t row = sim.firstLayerRow;
    const auto markRow = [&] {
        const std::string mark = layerMark(sim, row);
        row += sim.layerRows;
        return mark + emptyRow;
    };
    std::string table;
    for (std::int64_t k = 1; isDrawn && k < sim.firstLayerRow; ++k) table += emptyRow;
    if (isDrawn) table += markRow();
    const std::int64_t layer = std::int64_t{sim.gridCols} * (sim.layerRows - 1);
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        table += textOf(cell);
        table += cell % sim.gridCols == 0 ? '\n' : '\t';
        if (cell % layer != 0) continue;
        if (isDrawn)
            table += markRow();
        else if (cell < sim.nCells)
            table += '\n';
    }
    return table;
}

} // namespace norvane
