#pragma once
// What expressions know without a definition: values of a cell and functions of numbers.

#include "core/sim_state.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace norvane {

/// Places of the cells [0..nCells] along the first three dimensions, m: the sizes of the cells below summed up.
using CellPlaces = std::array<std::vector<double>, 3>;

CellPlaces placesOf(const SimState& sim);

struct CellValue {
    const char* name;
    double (*value)(const SimState& sim, const CellPlaces& places, std::int32_t cell);
};

std::span<const CellValue> cellValues();

struct NumberFunction {
    const char* name;
    int arguments; ///< 1 or 2
    double (*value)(double first, double second);
};

/// Operators come first; their names are the signs.
std::span<const NumberFunction> numberFunctions();

/// Place in a list of built-in things with names; -1: none.
template <class List>
int placeOfName(const List& list, std::string_view name) {
    int place = 0;
    for (const auto& entry : list) {
        if (entry.name == name) return place;
        ++place;
    }
    return -1;
}

} // namespace norvane
