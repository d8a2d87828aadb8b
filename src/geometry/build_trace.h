#pragma once
// Where each value of a model comes from, for those who ask: nothing is kept, and nobody who does not ask pays.

#include "geometry/keys.h"

#include <cstdint>
#include <functional>

namespace norvane {

enum class Source : std::uint8_t {
    defaults,    ///< a row with defaults, into the template (cell 0) or a scalar
    cellText,    ///< the text of the cell itself
    spread,      ///< key DD or HH of another cell, `origin`
    rowEnd,      ///< the closed face at the upper end of a row
    wholeCell,   ///< the code of the whole cell (WV 0;), given to each dimension
    closedTwice, ///< code 2 of the cell `origin`, itself or its upper neighbour
};

/// A value that a build stores. What no assignment names is the default of its key, or a copy of the template.
struct Assignment {
    Source source = Source::defaults;
    const Key* key = nullptr;
    std::int32_t cell = 0;   ///< that is written; 0: the template, or a scalar of the model
    int component = 0;       ///< dimension, species or parameter; 0 where the field has none
    double value = 0;        ///< as stored
    std::int32_t origin = 0; ///< the cell whose text or code it comes from; 0: none
    std::int64_t row = 0;    ///< of the table, from 1; 0: no text of its own
    std::int64_t column = 0; ///< of the table, from 1
    std::size_t at = 0;      ///< place of the key in that text
};

/// Called for each assignment, in the order in which they are made: a later one of the same place holds. May be empty.
using BuildTrace = std::function<void(const Assignment& assignment)>;

} // namespace norvane
