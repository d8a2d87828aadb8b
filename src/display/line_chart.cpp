#include "display/line_chart.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace norvane {

namespace {

/// Grows with the finite values that it is given.
struct Extent {
    Range range;
    bool found = false;

    void add(double value) {
        if (!std::isfinite(value)) return;
        range.low = found ? std::min(range.low, value) : value;
        range.high = found ? std::max(range.high, value) : value;
        found = true;
    }
};

/// Adds the points [first, end) of a line that stand for all of them.
void addBin(ChartLine& thin, const ChartLine& line, std::size_t first, std::size_t end) {
    std::vector<std::size_t> kept = {first, end - 1};
    std::size_t lowest = end;
    std::size_t highest = end;
    for (std::size_t k = first; k < end; ++k) {
        if (!std::isfinite(line.y[k])) {
            kept.push_back(k); // the gap stays
            break;
        }
        if (lowest == end || line.y[k] < line.y[lowest]) lowest = k;
        if (highest == end || line.y[k] > line.y[highest]) highest = k;
    }
    for (const std::size_t k : {lowest, highest})
        if (k < end) kept.push_back(k);
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    for (const std::size_t k : kept) {
        thin.x.push_back(line.x[k]);
        thin.y.push_back(line.y[k]);
    }
}

} // namespace

ChartLine thinned(ChartLine line, std::size_t bins) {
    const std::size_t count = line.x.size();
    const bool ascends = std::is_sorted(line.x.begin(), line.x.end())
                         && std::all_of(line.x.begin(), line.x.end(), [](double x) { return std::isfinite(x); });
    if (count <= 4 * bins || !ascends || !(line.x.back() > line.x.front())) return line;
    const auto binOf = [&](std::size_t k) {
        const double share = (line.x[k] - line.x.front()) / (line.x.back() - line.x.front());
        return std::min(static_cast<std::size_t>(share * static_cast<double>(bins)), bins - 1);
    };
    ChartLine thin{std::move(line.name), {}, {}, line.marked};
    for (std::size_t first = 0; first < count;) {
        std::size_t end = first + 1;
        while (end < count && binOf(end) == binOf(first)) ++end;
        addBin(thin, line, first, end);
        first = end;
    }
    return thin;
}

Range extentUpward(const ChartPanel& panel) {
    if (panel.hasRange) return drawable(panel.range);
    Extent extent;
    for (const ChartLine& line : panel.lines)
        for (const double y : line.y)
            if (!panel.isLog || y > 0) extent.add(y);
    if (panel.isLog) {
        const double room = std::pow(extent.range.high / extent.range.low, 0.05);
        return extent.found ? drawable({extent.range.low / room, extent.range.high * room}) : Range{1, 10};
    }
    const Range range = drawable(extent.range);
    const double room = 0.05 * (range.high - range.low);
    return {range.low - room, range.high + room};
}

} // namespace norvane
