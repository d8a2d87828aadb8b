#pragma once
// Places of the table as a spreadsheet names them: "D17".

#include "core/sim_state.h"

#include <cstdint>
#include <string>

namespace norvane {

/// Rows and columns from 1; 0: the whole row, column or file.
struct TablePlace {
    std::int64_t row = 0;
    std::int64_t column = 0;
};

/// "D17"; of a whole row "row 17", of a column "column D"; empty for the file.
std::string spreadsheetAddress(const TablePlace& place);

/// "A" to "Z", "AA"... for columns from 1.
std::string columnLetters(std::int64_t column);

/// The place of a cell [1..nCells] of a loaded geometry.
TablePlace placeOf(const SimState& sim, std::int32_t cell);

/// The cell of an address such as "C7", in either case; 0: the drawing has no cell there.
std::int32_t cellOfAddress(const SimState& sim, const std::string& address);

} // namespace norvane
