#pragma once
// Values of fields as the catalogues of quantities ask for them: of a cell [1..nCells], for a component.

#include "core/sim_state.h"

#include <cstdint>

namespace norvane {

/// Of a field with one value a cell.
template <Array<float> SimState::*field>
float fieldValue(const SimState& sim, int, std::int32_t cell) {
    return (sim.*field)[cell];
}

/// `component` is one that the field has.
template <CellTable<float> SimState::*field>
float componentValue(const SimState& sim, int component, std::int32_t cell) {
    return (sim.*field)(cell, component);
}

} // namespace norvane
