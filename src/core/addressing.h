#pragma once
// Cell numbers, coordinates and rows. Cells are numbered from 1 with dimension 1 running fastest.

#include "core/sim_state.h"

#include <cstdint>

namespace norvane {

/// The number of the row along `dim` that a cell number lies in. Rounds towards minus infinity, so that cell numbers
/// from 0 downward lie in rows that no cell has. In 64 bits: a neighbour's number may lie beyond 32.
inline std::int64_t rowAlong(const SimState& sim, std::int64_t cell, int dim) {
    const std::int64_t stride = sim.cellStride[dim + 1];
    const std::int64_t index = cell - 1;
    return index >= 0 ? index / stride : -((-index + stride - 1) / stride);
}

/// Whether two numbers lie in the same row along `dim`. This one test ends a dimension: it refuses the number that
/// would wrap into the next row as well as numbers below 1 and above nCells.
inline bool inSameRow(const SimState& sim, std::int64_t cell, std::int64_t other, int dim) {
    return rowAlong(sim, cell, dim) == rowAlong(sim, other, dim);
}

/// Zero-based coordinate of a cell [1..nCells] along a dimension [1..nDim], a whole number.
inline double cellCoordinate(const SimState& sim, std::int32_t cell, int dim) {
    const std::int64_t coordinate = (cell - 1) % sim.cellStride[dim + 1] / sim.cellStride[dim];
    return static_cast<double>(coordinate);
}

} // namespace norvane
