#pragma once
// What a check has to say about a table: where, how grave, and what to do.

#include "geometry/table_place.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace norvane {

enum class Severity : std::uint8_t {
    note,    ///< worth knowing
    warning, ///< probably not what was meant
    error,   ///< no run can come of it
};

struct Finding {
    Severity severity = Severity::warning;
    const char* rule = ""; ///< stable name for programs, such as "number-breaks-off"
    TablePlace place;
    std::string item;               ///< the text that it is about, as written; may be empty
    std::string text;               ///< what it does in effect, and what was probably meant
    std::int64_t count = 1;         ///< places of which the very same is to be said
    std::vector<TablePlace> also{}; ///< the next few of them
};

/// What is to be said of several places alike is one finding. Of each rule only the first few findings are kept; the
/// others are counted.
struct Findings {
    static constexpr std::int64_t keptOfRule = 20;
    static constexpr std::size_t keptPlaces = 4; ///< besides the first

    std::vector<Finding> list;
    std::map<std::string, std::int64_t> countOfRule;
    std::int64_t warnings = 0; ///< all of them, kept or not
    std::int64_t errors = 0;

    void add(Finding finding);

private:
    std::map<std::string, std::size_t> places_; ///< of the findings in the list, by rule, item and text
};

/// Sorts by row and column; what concerns the whole file comes first.
void sortByPlace(Findings& findings);

} // namespace norvane
