#include "core/nearest.h"

#include <algorithm>

namespace norvane {

namespace {

/// Letters to change, add, leave out or swap with the next one (optimal string alignment).
std::size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::vector<std::size_t>> steps(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            const std::size_t changed = steps[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            steps[i][j] = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1, changed});
            const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped) steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
        }
    }
    return steps[a.size()][b.size()];
}

} // namespace

std::string nearestWord(const std::string& given, const std::vector<std::string>& words) {
    constexpr std::size_t longest = 64; // no command is so long
    std::string nearest;
    std::size_t least = std::min(given.size(), longest) / 3 + 1; // one letter in three may be wrong
    for (const std::string& word : words) {
        const std::size_t steps = given.size() > longest ? longest : distance(given, word);
        if (steps > least || (steps == least && !nearest.empty())) continue;
        least = steps;
        nearest = word;
    }
    return nearest;
}

} // namespace norvane
