#pragma once
// The catalogue of what can be shown of a cell: names, units, components and values. Plots, exports and front ends
// read it, so that a quantity has one formula and one name.

#include "core/sim_state.h"

#include <cstdint>
#include <span>

namespace norvane {

/// Values of SimState::showWhat: places in the catalogue, counted from 1.
enum ShowWhat : int {
    showTemperature = 1,
    showVelocity = 2,
    showStdVelocity = 3, ///< velocity times density over the density of the default cell
    showPressure = 4,
    showDensity = 5,
    showConcentration = 6,
    showConduction = 7, ///< temperature step to the upper neighbour times the conductivity, in thousands
    showCellSize = 8,
    showCellHeight = 9,
    showPlace = 10,   ///< zero-based coordinate of the cell
    showVectors = 11, ///< velocity arrows; no value
};

/// Where on a cell a value holds.
enum class Location : std::uint8_t { centre, upperFace };

/// The components of a quantity.
enum class QuantityComponents : std::uint8_t {
    one,
    dimensions,         ///< 1 to nDim
    totalAndDimensions, ///< 0, the total of all dimensions, to nDim
    species,            ///< 0 to nsMax
};

struct Quantity {
    const char* name; ///< as the panel lists it
    const char* unit; ///< UTF-8; empty: a number without one
    Location location;
    QuantityComponents components;
    /// Of a cell [1..nCells], for a component that the quantity has; null: it has no value.
    float (*value)(const SimState& sim, int component, std::int32_t cell);
};

/// All quantities: quantity k at k - 1.
std::span<const Quantity> quantities();

/// The quantity that a plot draws for a value of showWhat: one below the list draws as the first of it. One above the
/// list stays, and has no name and no value.
int drawnQuantity(int showWhat);

/// Whether cellValue knows the quantity.
bool hasValue(int quantity);

/// Whether a quantity is shown by dimension, or as a total of all of them.
bool hasDirections(int quantity);

/// The component nearest to `component` that the quantity can show on this grid; 0 is the total of all dimensions.
int correctedComponent(const SimState& sim, int quantity, int component);

/// The value of a quantity that has one in a cell [1..nCells]. `component` is a corrected one.
float cellValue(const SimState& sim, int quantity, int component, std::int32_t cell);

} // namespace norvane
