#pragma once
// The quantities that a plot can show, and their values in a cell.

#include "core/sim_state.h"

#include <cstdint>
#include <span>
#include <string>

namespace norvane {

/// Values of SimState::showWhat: places in the list of quantities, counted from 1.
enum ShowWhat : int {
    showTemperature = 1,   ///< degrees Celsius
    showVelocity = 2,      ///< m/s, a component or the speed
    showStdVelocity = 3,   ///< m/s, the velocity times density over the density of the default cell
    showPressure = 4,      ///< Pa
    showDensity = 5,       ///< kg/m3
    showConcentration = 6, ///< mass fraction of a species
    showConduction = 7,    ///< temperature step to the upper neighbour times the conductivity, in thousands
    showCellSize = 8,      ///< m
    showCellHeight = 9,    ///< m
    showPlace = 10,        ///< zero-based coordinate of the cell
    showVectors = 11,      ///< velocity arrows; no value
};

/// The names of all quantities, as the panel lists them: that of quantity k at k - 1.
std::span<const char* const> quantityNames();

/// The quantity that a plot draws for a value of showWhat: one below the list draws as the first of it. One above the
/// list stays, and has no name and no value.
int drawnQuantity(int showWhat);

/// Whether cellValue knows the quantity.
bool hasValue(int quantity);

/// Whether a quantity is shown by dimension, or as a total of all of them.
bool hasDirections(int quantity);

/// The two characters that stand for a dimension [1..4] on the screen, empty for any other.
std::string dimensionMark(int dim);

/// The component nearest to `component` that the quantity can show on this grid; 0 is the total of all dimensions.
int correctedComponent(const SimState& sim, int quantity, int component);

/// The value of a quantity that has one in a cell [1..nCells]. `component` is a corrected one.
float cellValue(const SimState& sim, int quantity, int component, std::int32_t cell);

} // namespace norvane
