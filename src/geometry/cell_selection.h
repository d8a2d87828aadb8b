#pragma once
// Sets of cells as a spreadsheet names them: "C7", "D3:K9", or a label that stands for one of these.

#include "core/sim_state.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace norvane {

/// A label and the range that it stands for.
struct NamedRange {
    std::string name;
    std::string range;
};

/// Takes "NAME=B2:B18" apart. Gives what is wrong with it, empty: nothing. A name is made of letters, digits and "_"
/// and is no address itself.
std::string parseNamedRange(const std::string& text, NamedRange& named);

/// The cells of a range of a loaded geometry, in the order in which it is written: "C30:C7" runs upwards. A rectangle
/// runs row by row; rows between layers are left out. Gives what is wrong with it, empty: nothing; a range without a
/// cell is wrong. `labels` may be looked up.
std::string cellsOfRange(const SimState& sim,
                         const std::string& range,
                         std::span<const NamedRange> labels,
                         std::vector<std::int32_t>& cells);

} // namespace norvane
