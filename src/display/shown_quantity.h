#pragma once
// Quantities as a figure or a chart shows them.

#include "core/quantity_names.h"

#include <cstdint>
#include <string>

namespace norvane {

struct ShownQuantity {
    NamedQuantity quantity;
    std::string label;     ///< "Velocity x"
    std::string unit;      ///< as it is printed: "kg/m\u00b3"
    bool inWalls = false;  ///< means something in a wall: a temperature and a size do, a pressure doesn't
    bool isArrows = false; ///< `quantity` is the speed, and arrows show the direction

    float of(const SimState& sim, std::int32_t cell) const { return quantity.of(sim, cell); }
};

/// A quantity of the catalogue with the component nearest to the one given.
ShownQuantity shownOf(const SimState& sim, int quantity, int component);

/// The quantity of a name or a number of the catalogue, with the component nearest to the one given, or of a short name
/// such as T (in K), p, u, v, speed, c0. Gives what is wrong; empty: nothing.
std::string chooseShown(const SimState& sim, const std::string& name, int component, ShownQuantity& shown);

/// Whether a choice of components applies to a quantity of the catalogue.
bool hasComponents(int quantity);

/// The number of a quantity in the catalogue that is named so; 0: none.
int catalogueNumber(const std::string& name);

/// "x", "y", "z", or "d4" and so on.
std::string axisLetter(int dim);

/// A number in at most six digits, as a title shows it.
std::string shortText(double value);

/// "step 2000, t = 0.02 s".
std::string momentText(const SimState& sim);

} // namespace norvane
