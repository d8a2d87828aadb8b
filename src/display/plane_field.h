#pragma once
// The plane of cells that axisPair and sliceSel choose, as a figure shows it: where its cells lie, and what they hold.

#include "display/shown_quantity.h"
#include "display/ticks.h"

#include <cstdint>
#include <string>
#include <vector>

namespace norvane {

/// Edges of a cell, m.
struct CellEdges {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

/// Cells row by row from the top; the cell at (column, row) is number row * columns + column.
struct Plane {
    int acrossDim = 1;
    int downDim = 2;
    int columns = 0;
    int rows = 0;
    std::vector<std::int32_t> cells; ///< of the grid
    std::vector<bool> walls;
    std::vector<bool> held; ///< some quantity of the cell is held
    Range across;           ///< m, of all cells
    Range down;             ///< m, of all cells

    std::size_t at(int column, int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(column);
    }

    /// The upper edges are the lower ones of the next cells where these meet but for rounding: no gap shows.
    CellEdges edges(const SimState& sim, std::size_t k) const;
};

/// Of a model that stands, of two dimensions or more; a slice that is none counts as slice 0.
Plane planeOf(const SimState& sim);

/// "z = 0.05 m", the middle of the slice along each dimension that is not drawn; empty: there is none.
std::string sliceText(const SimState& sim, const Plane& plane);

/// Values of a quantity in the cells of a plane; a NaN where there is none, or none that means something.
std::vector<float> planeValues(const SimState& sim, const Plane& plane, const ShownQuantity& shown, bool withWalls);

/// The smallest and the largest finite value; `found`: there is one.
Range extentOf(const std::vector<float>& values, bool& found);

/// The range of a scale that the values choose: as it is, about 0, or what lies above 0 for powers of ten, at most
/// `decades` of them.
Range symmetric(Range range);
Range positive(const std::vector<float>& values, int decades, bool& found);

} // namespace norvane
