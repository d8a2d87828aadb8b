#include "shell/message_series.h"

#include <algorithm>

namespace norvane {

namespace {

/// "6 to 17, 20, 31 to 400"; no more than so many parts.
std::string listed(const std::vector<std::int64_t>& places) {
    constexpr int mostParts = 12;
    std::string text;
    int parts = 0;
    for (std::size_t from = 0, to = 0; from < places.size(); from = to) {
        for (to = from + 1; to < places.size() && places[to] == places[to - 1] + 1;) ++to;
        if (parts++ == mostParts) return text + " ... " + std::to_string(places.back());
        if (from > 0) text += ", ";
        text += std::to_string(places[from]);
        if (to - from > 1) text += (to - from > 2 ? " to " : ", ") + std::to_string(places[to - 1]);
    }
    return text;
}

} // namespace

bool endsSeries(const MessageSeries& series, const Report& report) {
    return series.count > 0 && report.kind != series.kind;
}

bool countMessage(MessageSeries& series, const Report& report) {
    if (report.kind == ReportKind::note) return true;
    series.kind = report.kind;
    if (++series.count <= MessageSeries::shown) return true;
    series.places.push_back(report.place);
    return false;
}

std::string closingMessage(MessageSeries& series) {
    const MessageSeries closed = std::exchange(series, {});
    if (closed.places.empty()) return {};
    std::vector<std::int64_t> places = closed.places;
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end()); // a cell may be faulty in several stages
    const bool ofCells = closed.kind == ReportKind::negativeDensity;
    const char* const noun =
        ofCells ? (places.size() == 1 ? "cell " : "cells ") : (places.size() == 1 ? "row " : "rows ");
    const std::size_t count = closed.places.size();
    return "... and " + std::to_string(count)
           + (count == 1 ? " more such message, about " : " more such messages, about ") + noun + listed(places) + ".";
}

} // namespace norvane
