#pragma once
// What the rules about texts share.

#include "check/finding.h"
#include "check/item_rules.h"
#include "geometry/cell_keywords.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace norvane {

/// Without blanks and quotation marks around it.
std::string_view bareText(std::string_view text);

/// "300 K".
std::string withUnit(double value, std::string_view unit);

/// "TT (temperature)".
std::string named(const Key& key);

/// The text in hand, and what was found in its items so far.
struct TextCheck {
    const TextPlace& where;
    Findings& findings;
    std::string_view raw{};                                   ///< the item as written
    std::string item{};                                       ///< the same as the readers take it
    std::vector<std::pair<const Key*, std::int64_t>> given{}; ///< keys of the text with their indices
    bool previousLacksIndex = false;                          ///< what follows the ":" was its number

    void add(const char* rule, std::string text, Severity severity = Severity::warning) const {
        findings.add({severity, rule, where.place, std::string(bareText(raw)), std::move(text)});
    }
};

/// Adds what is odd about the number of a key that was read.
void checkValue(const TextCheck& check, const KeyText& key);

} // namespace norvane
