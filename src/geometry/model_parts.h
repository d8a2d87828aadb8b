#pragma once
// The parts of a build, in the order in which buildModel calls them.

#include "core/sim_state.h"
#include "geometry/build_trace.h"
#include "geometry/cell_keywords.h"

#include <cstdint>

namespace norvane {

/// A value above -1 with an index, as the keys DD and HH take it.
struct KeyedSize {
    std::int16_t index = 0;
    float value = -1;

    bool given() const { return value > -1; }

    int dim() const { return index < 0 ? -int{index} : int{index}; }
};

KeyedSize sizeOf(const KeyText& text);

/// Restores the defaults of all keys: scalars, template cell, gravity; of the display only where `display` is true.
void setDefaults(SimState& sim, bool display);

/// Reads the rows down to the first L row into the scalars and the template.
void readDefaults(SimState& sim, bool display, const BuildTrace& trace);

/// Makes every cell a copy of the template, at rest, with a closed face at the upper end of every row.
void copyTemplate(SimState& sim, const BuildTrace& trace);

/// Reads the texts of the cells, and spreads what their keys DD and HH spread.
void readCellTexts(SimState& sim, const BuildTrace& trace);

/// Volumes, the fractions of species 0, the start state unless a run is continued, and the coefficients.
void deriveCells(SimState& sim, bool continues);

/// Spreads codes of whole cells to their elements, and turns code 2 (both faces closed) into two closed upper faces.
void resolveWallVelocities(SimState& sim, const BuildTrace& trace);

} // namespace norvane
