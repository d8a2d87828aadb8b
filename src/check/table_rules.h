#pragma once
// What is odd about the frame of a table: its first bytes, separators, width and L rows. Needs no grid, so that it can
// say why a table is none.

#include "check/finding.h"
#include "core/cell_text_table.h"
#include "core/sim_state.h"

#include <string_view>

namespace norvane {

/// Adds what is odd about the beginning of a file that may be no text at all. Gives false where it is none: nothing
/// else is worth a look.
bool checkBytes(std::string_view beginning, Findings& findings);

/// Adds what is odd about the frame of a table.
void checkFrame(const CellTextTable& table, Findings& findings);

/// Adds what is odd about the texts of a loaded geometry: rows with defaults, cells, and closing L rows.
void checkTexts(const SimState& sim, Findings& findings);

} // namespace norvane
