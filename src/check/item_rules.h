#pragma once
// What is odd about the items of a text: each is compared with what the readers of the table take from it.

#include "check/finding.h"
#include "geometry/keys.h"

#include <string_view>

namespace norvane {

/// Where a text is, and the grid that its indices are held against.
struct TextPlace {
    TablePlace place;
    KeyScope scope = inCells; ///< inDefaults or inCells
    int nDim = 0;
    int nsMax = 0;
};

/// Adds what is odd about one text of the table.
void checkText(std::string_view text, const TextPlace& where, Findings& findings);

} // namespace norvane
