#pragma once
// Values of cells as text: a line for each cell, or one field in the shape of the drawing.

#include "core/quantity_names.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace norvane {

/// Comma-separated values, a line for each of the cells [1..nCells] in their order: its number, its address in the
/// table, the coordinates of its centre in m, and the quantities. The heading of each column names its unit, and the
/// upper face where the value holds there.
std::string
cellTable(const SimState& sim, std::span<const std::int32_t> cells, std::span<const NamedQuantity> quantities);

/// What stands between the layers of a field in the shape of the drawing.
enum class LayerMarks {
    emptyLines,
    asDrawn, ///< the rows with defaults as empty ones, and the L rows: a value has the address of its cell
};

/// A text for each cell in the shape of the drawing, tab-separated.
std::string
inShapeOfDrawing(const SimState& sim, LayerMarks marks, const std::function<std::string(std::int32_t cell)>& textOf);

} // namespace norvane
