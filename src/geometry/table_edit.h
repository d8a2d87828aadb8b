#pragma once
// Changes of a loaded table in memory, before a build: the file stays as it is.

#include "core/sim_state.h"

#include <string>

namespace norvane {

/// Replaces the text of a cell [1..nCells] of the grid.
void setCellText(SimState& sim, std::int32_t cell, const std::string& text);

/// What comes before an item that was added: two items with nothing between them, which no reader minds. Whoever looks
/// for defaults that are given twice stops there.
constexpr const char* addedItem = "::";

/// Adds an item to the rows with defaults, after all others, so that it counts.
void addDefault(SimState& sim, const std::string& item);

/// Takes a change such as "DT=2E-5", "GG 2=9.81" (a default) or "C7=TT 400" (the text of a cell) into the table. Gives
/// what is wrong with it, in words; empty: nothing.
std::string applyChange(SimState& sim, const std::string& change);

} // namespace norvane
