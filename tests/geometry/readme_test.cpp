// The table of keys in the README says what the table of keys in the sources says.

#include "core/number_text.h"
#include "geometry/keys.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace norvane {
namespace {

struct ReadmeRow {
    std::vector<std::string> letters;
    std::string meaning;
    std::vector<double> starts; ///< of the keys in turn, or one for all of them
};

/// All matches of a group.
std::vector<std::string> allOf(const std::string& text, const std::regex& pattern) {
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
        found.push_back((*match)[1]);
    return found;
}

std::vector<ReadmeRow> readmeRows() {
    std::ifstream file(std::string(NORVANE_EXAMPLES) + "/../README.md");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::regex row("\n\\|( *`[A-Z]{2}[` ][^|]*)\\|([^|]*)\\|([^|]*)\\|");
    std::vector<ReadmeRow> rows;
    for (std::sregex_iterator match(text.begin(), text.end(), row), end; match != end; ++match) {
        ReadmeRow read{allOf((*match)[1], std::regex("`([A-Z]{2})")), (*match)[2], {}};
        const std::string starts = std::string((*match)[3]).substr(0, (*match)[3].str().find(';'));
        for (const std::string& number : allOf(starts, std::regex("([^ ,]+)")))
            read.starts.push_back(numericPrefix(number));
        rows.push_back(read);
    }
    return rows;
}

TEST(readme, listsTheKeysWithTheirUnitsAndDefaults) {
    std::set<std::string_view> expected;
    for (const Key& key : allKeys()) expected.insert(key.letters);
    for (const char* unlisted : {"L", "CY", "FF", "TR"}) expected.erase(unlisted); // explained in the text, or idle
    std::set<std::string> listed;
    for (const ReadmeRow& row : readmeRows())
        for (std::size_t k = 0; k < row.letters.size(); ++k) {
            EXPECT_TRUE(listed.insert(row.letters[k]).second) << row.letters[k] << " is listed twice";
            const Key& key = keyOf(row.letters[k]);
            const std::string unit =
                std::regex_replace(std::string(key.unit), std::regex("[()]"), "\\$&"); // which a pattern groups by
            EXPECT_TRUE(std::regex_search(row.meaning, std::regex("(^|[ (])" + unit + "($|[ .,;)])")))
                << key.letters << " has the unit " << key.unit;
            if (key.hasStart() && (k < row.starts.size() || row.starts.size() == 1)) {
                EXPECT_EQ(row.starts.size() == 1 ? row.starts[0] : row.starts[k], key.start) << key.letters;
            }
        }
    EXPECT_EQ(std::set<std::string_view>(listed.begin(), listed.end()), expected);
}

} // namespace
} // namespace norvane
