#pragma once
// Quantities of cells as the command line and the header of a table name them: "T", "p", "u2", "c0", or a name of the
// catalogue. A name stands for one number of each cell, in one unit.

#include "core/quantities.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

/// A quantity with its component.
struct NamedQuantity {
    std::string name;      ///< as it is listed: "T", "Velocity 1"
    std::string unit;      ///< ASCII; empty: a number without one
    std::string meaning;   ///< "temperature"
    Location location;     ///< of the value
    int dimension = 0;     ///< whose upper face `location` means; 0: none, or a total over the faces of all dimensions
    bool isOfGrid = false; ///< stays as it is during a run
    bool isShort = false;  ///< not of the catalogue
    int component = 0;
    float (*value)(const SimState& sim, int component, std::int32_t cell) = nullptr;

    /// In a cell [1..nCells].
    float of(const SimState& sim, std::int32_t cell) const { return value(sim, component, cell); }
};

/// "T [K]"; without the bracket where there is no unit.
std::string headingOf(const NamedQuantity& quantity);

/// All names of a loaded geometry: the short ones in SI units (temperature in K), then those of the catalogue, whose
/// temperature is in degrees Celsius.
std::vector<NamedQuantity> namedQuantities(const SimState& sim);

/// Adds the quantity of a name, whatever its case. "u", "v", "w" are "u1", "u2", "u3"; of a name of the catalogue
/// blanks may be left out. Gives what is wrong, with the nearest name; empty: nothing.
std::string findQuantity(const SimState& sim, std::string_view name, std::vector<NamedQuantity>& found);

/// The same for a list "T,p,u".
std::string findQuantities(const SimState& sim, std::string_view list, std::vector<NamedQuantity>& found);

/// What a table holds where nobody has chosen: temperature, pressure, density, the velocities, and the mass fractions
/// where there is more than one species.
std::vector<NamedQuantity> usualQuantities(const SimState& sim);

} // namespace norvane
