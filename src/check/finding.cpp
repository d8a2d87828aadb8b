#include "check/finding.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace norvane {

void Findings::add(Finding finding) {
    constexpr std::size_t longestItem = 60;
    if (finding.item.size() > longestItem) finding.item = finding.item.substr(0, longestItem) + "...";
    if (finding.severity == Severity::warning) ++warnings;
    if (finding.severity == Severity::error) ++errors;
    const auto [same, isNew] =
        places_.insert({std::string(finding.rule) + '\0' + finding.item + '\0' + finding.text, list.size()});
    if (!isNew) {
        if (same->second >= list.size()) return; // one that was not kept
        Finding& first = list[same->second];
        const TablePlace& latest = first.also.empty() ? first.place : first.also.back();
        if (latest.row == finding.place.row && latest.column == finding.place.column) return; // said already
        first.count += 1;
        if (first.also.size() < keptPlaces) first.also.push_back(finding.place);
        return;
    }
    if (++countOfRule[finding.rule] <= keptOfRule)
        list.push_back(std::move(finding));
    else
        places_.erase(same); // or a table of nothing but faults would fill the memory
}

void sortByPlace(Findings& findings) {
    std::stable_sort(findings.list.begin(), findings.list.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.place.row, a.place.column) < std::tie(b.place.row, b.place.column);
    });
}

} // namespace norvane
