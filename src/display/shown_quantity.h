#pragma once
// Quantities as a person names them for a figure or a chart.

#include "core/quantities.h"

#include <cstdint>
#include <optional>
#include <string>

namespace norvane {

/// A quantity with the component that is shown of it.
struct ShownQuantity {
    int quantity = showTemperature;
    int component = 0;
};

/// The quantity of a name, in either case: its name in the catalogue, its number there, or a symbol: T, p, rho, u, v, w
/// (velocity along dimensions 1, 2, 3), speed, and c0, c1... (mass fractions). `component` is that of a name without
/// one of its own. None where no quantity has this name, or the grid has no such dimension or species.
std::optional<ShownQuantity> quantityNamed(const SimState& sim, const std::string& name, int component);

/// "Velocity x"; how a figure calls it.
std::string shownName(const ShownQuantity& shown);

std::string shownUnit(const ShownQuantity& shown);

/// "x", "y", "z", or "d4" and so on.
std::string axisLetter(int dim);

/// Whether a wall has a value that means something: its temperature and its size do, a pressure doesn't.
bool holdsInWalls(int quantity);

/// "step 2000, t = 0.02 s".
std::string momentText(const SimState& sim);

} // namespace norvane
