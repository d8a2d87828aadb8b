#pragma once
// Which cell a plot shows at a pixel, and what is known about it.

#include "core/sim_state.h"
#include "platform/controls.h"

#include <cstdint>
#include <string>

namespace norvane {

/// One of the two dimensions of the picture, as the plot saw it.
struct ProbeAxis {
    int dim = 0;
    bool exists = false; ///< false: the grid has no such dimension, and the plot is a band of one cell
    std::int64_t count = 0;
    std::int64_t stride = 0;
    float zoom = 1;
    float offset = 0;
};

/// Keeps how the latest plot was laid out. The formulas are those of the plot, so that a pixel finds the cell that was
/// painted there; cells that were left out are not found.
class CellProbe {
public:
    /// A plot is complete. `window` is the one it was drawn on.
    void remember(const SimState& sim, const PlotWindow& window);

    /// The picture is gone.
    void forget() { isPlotted_ = false; }

    /// The cell painted at a pixel, the last one where cells share it; 0: none.
    std::int32_t cellAt(const SimState& sim, double x, double y) const;

    /// The number of a cell, its coordinates, position and present value of the quantity that is drawn.
    std::string describe(const SimState& sim, const Selector& quantities, std::int32_t cell) const;

private:
    std::string valueText(const SimState& sim, const Selector& quantities, std::int32_t cell) const;

    bool isPlotted_ = false;
    ProbeAxis across_;
    ProbeAxis down_;
    std::int64_t first_ = 1; ///< cell number at the coordinates 0, 0 of the plane
    float width_ = 0;
    float height_ = 0;
    float scale_ = 0; ///< pixels for a stretched length unit
    int quantity_ = 0;
    int component_ = 0;
    std::int32_t cells_ = 0; ///< of the grid that was plotted
};

} // namespace norvane
