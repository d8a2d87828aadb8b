#pragma once
// The keyword language of the cell texts. A key is found by a plain search for its letters, and a number is read from
// the character behind it; a fault in a text is never reported, the number is 0 or the item has no effect.

#include "core/sim_state.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace norvane {

/// A text as the readers below take it: letters a to z in capitals, since keys are compared exactly, and points for
/// commas, since either may stand in a number.
std::string readable(std::string_view text);

/// Calls `take(item)` for every item of a cell text (its parts between ":", empty ones left out), made readable.
template <class Take>
void forEachItem(std::string_view text, const Take& take) {
    if (text.empty()) return; // as most are
    const std::string whole = readable(text);
    for (std::string_view rest = whole; !rest.empty();) {
        const std::size_t colon = rest.find(':');
        const std::string_view item = rest.substr(0, colon);
        rest = colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
        if (!item.empty()) take(item);
    }
}

/// Stores a number: a single takes it rounded to single, a whole number rounded to the nearest (halves to even) and
/// limited to the range of its type.
void storeNumber(double number, float& target);
void storeNumber(double number, std::int16_t& target);
void storeNumber(double number, std::int32_t& target);

/// Plain form, "TT 300": stores the number behind the first `key`, 0 where none stands there. Without the key the
/// target stays. For whole numbers and singles.
template <class Target>
void parseKeyValue(std::string_view text, std::string_view key, Target& target);

/// Indexed form, "GG 2;-9.81": stores the numbers between the first `key` and the ";" behind it, and behind that ";".
/// Without the key or the ";" both targets stay.
void parseKeyIndexValue(std::string_view text, std::string_view key, std::int16_t& index, float& value);

/// List form, "CC 1;0.2 CC 2;0.1": stores up to nDim + 1 entries in array(cell, index), index made whole as above. An
/// entry whose index, as read, lies outside the array's range is dropped. For whole numbers and singles.
template <class Element>
void parseKeyList(std::string_view text, std::string_view key, CellTable<Element>& array, std::int32_t cell, int nDim);

/// Tries the keys of one cell on one item, all of them. Cell 0 is the template.
void parseCellKeys(SimState& sim, std::string_view text, std::int32_t cell);

} // namespace norvane
