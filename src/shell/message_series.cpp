#include "shell/message_series.h"

#include <algorithm>
#include <utility>

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

/// The first few cells or rows show the place; of saves the first one says all.
std::int64_t mostShown(ReportKind kind) { return kind == ReportKind::saveFault ? 1 : 5; }

const char* nounOf(ReportKind kind, bool many) {
    switch (kind) {
    case ReportKind::negativeDensity: return many ? "cells " : "cell ";
    case ReportKind::layerMark: return many ? "rows " : "row ";
    default: return many ? "steps " : "step ";
    }
}

} // namespace

bool endsSeries(const MessageSeries& series, const Report& report) {
    return series.count > 0 && report.kind != series.kind;
}

bool countMessage(MessageSeries& series, const Report& report) {
    if (report.kind == ReportKind::note) return true;
    series.kind = report.kind;
    if (++series.count <= mostShown(report.kind)) return true;
    series.places.push_back(report.place);
    return false;
}

std::string closingMessage(MessageSeries& series) {
    const MessageSeries closed = std::exchange(series, {});
    if (closed.places.empty()) return {};
    std::vector<std::int64_t> places = closed.places;
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end()); // a cell may be faulty in several stages
    const std::size_t count = closed.places.size();
    return "... and " + std::to_string(count)
           + (count == 1 ? " more such message, about " : " more such messages, about ")
           + nounOf(closed.kind, places.size() > 1) + listed(places) + ".";
}

} // namespace norvane
