#pragma once
// The keyword language of the cell texts. A key is found by a plain search for its letters, and a number is read from
// the character after it; a fault in a text is never reported by a build, the number is 0 or the item has no effect.

#include "core/sim_state.h"
#include "geometry/keys.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace norvane {

/// A text as the readers below take it: letters a to z in capitals, since keys are compared exactly, and points for
/// commas, since either may be part of a number. As long as the text.
std::string readable(std::string_view text);

/// Calls `take(item, at)` for every item of a cell text (its parts between ":", empty ones left out), made readable;
/// `at` is its place in the text.
template <class Take>
void forEachItem(std::string_view text, const Take& take) {
    if (text.empty()) return; // as most are
    const std::string whole = readable(text);
    for (std::size_t at = 0; at <= whole.size();) {
        const std::size_t end = std::min(whole.find(':', at), whole.size());
        if (end > at) take(std::string_view(whole).substr(at, end - at), at);
        at = end + 1;
    }
}

/// Stores a number: a single takes it rounded to single, a whole number rounded to the nearest (halves to even) and
/// limited to the range of its type.
void storeNumber(double number, float& target);
void storeNumber(double number, std::int16_t& target);
void storeNumber(double number, std::int32_t& target);

/// Plain form, "TT 300": stores the number after the first `key`, 0 where there is none. Without the key the target
/// stays. For whole numbers and singles.
template <class Target>
void parseKeyValue(std::string_view text, std::string_view key, Target& target);

/// What is odd about a key in an item.
enum class KeyFault : std::uint8_t {
    none,
    noNumber,    ///< no number where the value should be: it counts as 0
    noIndex,     ///< no number where the index should be: it counts as 0
    noSemicolon, ///< no ";" after a key that takes an index: no effect
};

/// A key that an item holds, and what is read with it.
struct KeyText {
    const Key* key = nullptr;
    std::size_t at = 0;        ///< of its letters in the item
    std::size_t valueEnds = 0; ///< place after the number of the value
    double index = 0;
    double value = 0;
    KeyFault fault = KeyFault::none;

    bool hasEffect() const { return fault != KeyFault::noSemicolon; }
};

/// Reads one occurrence of a key, at `at`.
KeyText readKey(std::string_view item, const Key& key, std::size_t at);

/// Calls `take(keyText)` for each key of a scope that an item holds, in the order of the table of keys, as often as its
/// form counts.
template <class Take>
void forEachKey(std::string_view item, KeyScope scope, int nDim, const Take& take) {
    for (const Key& key : allKeys()) {
        if ((key.scope & scope) == 0) continue;
        std::size_t at = item.find(key.letters);
        if (at == std::string_view::npos) continue;
        const int most = key.form == KeyForm::list ? nDim + 1 : 1;
        for (int turn = 0; turn < most && at != std::string_view::npos; ++turn) {
            take(readKey(item, key, at));
            at = item.find(key.letters, at + key.letters.size());
        }
    }
}

/// Stores what was read with a key in its field; of a field of cells in that of `cell`, 0 is the template. Gives the
/// component that was written, -1 where nothing was: a key without effect or field, or an index that the field does not
/// have.
int storeKey(SimState& sim, const KeyText& text, std::int32_t cell);

} // namespace norvane
