#include "check/steady.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace norvane {

namespace {

constexpr double floorOfScale = 0.01;

/// The text in the last bracket of a name.
std::string unitIn(const std::string& name) {
    const std::size_t open = name.rfind('[');
    return open == std::string::npos ? "" : name.substr(open);
}

void appendWord(std::string& text, double value) {
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::hex);
    text.append(digits, end.ptr) += ' ';
}

/// The words of a text, each a number.
struct Words {
    std::string_view rest;
    bool areGood = true;

    double next() {
        double value = 0;
        const char* const end = rest.data() + rest.size();
        const auto read = std::from_chars(rest.data(), end, value, std::chars_format::hex);
        areGood = areGood && read.ec == std::errc() && read.ptr != end && *read.ptr == ' ';
        if (areGood) rest.remove_prefix(static_cast<std::size_t>(read.ptr - rest.data()) + 1);
        return areGood ? value : 0;
    }

    /// A whole number of at least 1.
    std::int64_t count() {
        constexpr double most = 1e15;
        const double value = next();
        areGood = areGood && value >= 1 && value <= most && value == std::floor(value);
        return areGood ? static_cast<std::int64_t>(value) : 1;
    }
};

} // namespace

SteadyRows::SteadyRows(const std::vector<std::string>& names, double keptTime) : names_(names), keptTime_(keptTime) {
    std::vector<std::string> units;
    for (const std::string& name : names) {
        const auto found = std::find(units.begin(), units.end(), unitIn(name));
        unitOf_.push_back(static_cast<std::size_t>(found - units.begin()));
        if (found == units.end()) units.push_back(unitIn(name));
    }
    largest_.resize(units.size());
}

void SteadyRows::add(double time, std::span<const double> values) {
    const std::size_t columns = names_.size();
    if (values.size() != columns) return;
    if (blocks_.empty()) start_ = time;
    latest_ = time;
    const bool isNew = blocks_.empty() || blocks_.back().rows == rowsOfBlock_;
    if (isNew && blocks_.size() == mostBlocks) makeRoom();
    if (isNew) {
        blocks_.push_back({time, 0});
        for (std::size_t k = 0; k < columns; ++k) extents_.push_back({values[k], values[k], 0});
    }
    blocks_.back().rows += 1;
    Extent* const block = extents_.data() + (blocks_.size() - 1) * columns;
    for (std::size_t k = 0; k < columns; ++k) {
        block[k].low = std::min(block[k].low, values[k]);
        block[k].high = std::max(block[k].high, values[k]);
        block[k].sum += std::abs(values[k]); // what is not finite shows here
        double& largest = largest_[unitOf_[k]];
        if (std::abs(values[k]) > largest) largest = std::abs(values[k]);
    }
}

void SteadyRows::makeRoom() {
    const std::optional<std::size_t> first = keptTime_ > 0 ? firstBlock(keptTime_) : std::nullopt;
    if (!first || *first < mostBlocks / 4) return mergePairs();
    blocks_.erase(blocks_.begin(), blocks_.begin() + static_cast<std::ptrdiff_t>(*first));
    extents_.erase(extents_.begin(), extents_.begin() + static_cast<std::ptrdiff_t>(*first * names_.size()));
}

/// Halves the number of blocks.
void SteadyRows::mergePairs() {
    const std::size_t columns = names_.size();
    for (std::size_t k = 0; k < mostBlocks / 2; ++k) {
        blocks_[k] = {blocks_[2 * k].begin, blocks_[2 * k].rows + blocks_[2 * k + 1].rows};
        for (std::size_t column = 0; column < columns; ++column) {
            const Extent& a = extents_[2 * k * columns + column];
            const Extent& b = extents_[(2 * k + 1) * columns + column];
            extents_[k * columns + column] = {std::min(a.low, b.low), std::max(a.high, b.high), a.sum + b.sum};
        }
    }
    blocks_.resize(mostBlocks / 2);
    extents_.resize(blocks_.size() * columns);
    rowsOfBlock_ *= 2;
}

double SteadyRows::span() const { return latest_ - start_; }

std::string SteadyRows::text() const {
    std::string text;
    for (const std::size_t count : {names_.size(), largest_.size(), blocks_.size()})
        appendWord(text, static_cast<double>(count));
    appendWord(text, static_cast<double>(rowsOfBlock_));
    for (const double time : {start_, latest_}) appendWord(text, time);
    for (const double largest : largest_) appendWord(text, largest);
    for (const Block& block : blocks_) {
        appendWord(text, block.begin);
        appendWord(text, static_cast<double>(block.rows));
    }
    for (const Extent& extent : extents_)
        for (const double value : {extent.low, extent.high, extent.sum}) appendWord(text, value);
    return text;
}

bool SteadyRows::take(const std::string& text) {
    Words words{text};
    const bool hasColumns = words.count() == static_cast<std::int64_t>(names_.size());
    const bool hasUnits = words.count() == static_cast<std::int64_t>(largest_.size());
    const std::int64_t blocks = words.count();
    if (!hasColumns || !hasUnits || blocks > static_cast<std::int64_t>(mostBlocks)) return false;
    SteadyRows taken(names_, keptTime_);
    taken.rowsOfBlock_ = words.count();
    taken.start_ = words.next();
    taken.latest_ = words.next();
    for (double& largest : taken.largest_) largest = words.next();
    taken.blocks_.resize(static_cast<std::size_t>(blocks));
    for (Block& block : taken.blocks_) {
        block.begin = words.next();
        block.rows = words.count();
    }
    taken.extents_.resize(taken.blocks_.size() * names_.size());
    for (Extent& extent : taken.extents_)
        for (double* const value : {&extent.low, &extent.high, &extent.sum}) *value = words.next();
    if (!words.areGood || !words.rest.empty()) return false;
    *this = std::move(taken);
    return true;
}

std::optional<std::size_t> SteadyRows::firstBlock(double window) const {
    std::int64_t rows = 0;
    for (std::size_t block = blocks_.size(); block-- > 0;) {
        rows += blocks_[block].rows;
        if (rows >= fewestRows && latest_ - blocks_[block].begin >= window) return block;
    }
    return std::nullopt;
}

SteadyTrend SteadyRows::trendOf(std::size_t column, std::size_t first) const {
    Extent whole = extents_[first * names_.size() + column];
    double rows = static_cast<double>(blocks_[first].rows);
    bool isFinite = std::isfinite(whole.sum);
    for (std::size_t block = first + 1; block < blocks_.size(); ++block) {
        const Extent& each = extents_[block * names_.size() + column];
        whole = {std::min(whole.low, each.low), std::max(whole.high, each.high), whole.sum + each.sum};
        rows += static_cast<double>(blocks_[block].rows);
        isFinite = isFinite && std::isfinite(each.sum);
    }
    SteadyTrend trend{names_[column], whole.high - whole.low, 0, 0};
    trend.scale = std::max(whole.sum / rows, floorOfScale * largest_[unitOf_[column]]);
    trend.change = !isFinite          ? std::numeric_limits<double>::infinity()
                   : trend.range == 0 ? 0
                                      : trend.range / trend.scale;
    return trend;
}

std::optional<std::vector<SteadyTrend>> SteadyRows::trends(double window) const {
    const std::optional<std::size_t> first = firstBlock(window);
    if (!first) return std::nullopt;
    std::vector<SteadyTrend> all;
    for (std::size_t column = 0; column < names_.size(); ++column) all.push_back(trendOf(column, *first));
    return all;
}

bool SteadyRows::isSteady(double window, double tolerance) const {
    const std::optional<std::size_t> first = firstBlock(window);
    if (!first) return false;
    for (std::size_t k = 0; k < names_.size(); ++k) {
        const std::size_t column = (restless_ + k) % names_.size();
        if (trendOf(column, *first).isSteady(tolerance)) continue;
        restless_ = column;
        return false;
    }
    return !names_.empty();
}

} // namespace norvane
