#include "verify/evaluation.h"

#include "geometry/table_place.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace norvane {

namespace {

constexpr double undefined = std::numeric_limits<double>::quiet_NaN();
constexpr int deepest = 6000;                  // calls of node, each of which takes room on the stack
constexpr std::int64_t mostWork = 100'000'000; // nodes: a second or two

/// Takes value after value into one.
struct Folding {
    Fold fold;
    std::int64_t count = 0;
    double sum = 0;
    double kept = 0;

    void take(double value) {
        const bool isFirst = count == 0;
        count += 1;
        sum += fold == Fold::rms ? value * value : value;
        // A NaN is kept: a field that holds one passes no check.
        const bool replaces = isFirst || fold == Fold::last || (fold == Fold::largest && !(value <= kept))
                              || (fold == Fold::smallest && !(value >= kept));
        if (replaces && (isFirst || !std::isnan(kept))) kept = value;
    }

    double result() const {
        const auto number = static_cast<double>(count);
        switch (fold) {
        case Fold::sum: return sum;
        case Fold::mean: return sum / number;
        case Fold::rms: return std::sqrt(sum / number);
        default: return kept;
        }
    }
};

/// The cells of "C7:AB9", each layer's rows alike; empty: the text names none.
std::vector<std::int32_t> cellsOfAddresses(const SimState& sim, const std::string& addresses) {
    const std::size_t colon = std::min(addresses.find(':'), addresses.size());
    const std::int32_t from = cellOfAddress(sim, addresses.substr(0, colon));
    const std::int32_t to =
        colon == addresses.size() ? from : cellOfAddress(sim, addresses.substr(std::min(colon + 1, addresses.size())));
    std::vector<std::int32_t> cells;
    if (from == 0 || to == 0) return cells;
    const TablePlace first = placeOf(sim, from);
    const TablePlace last = placeOf(sim, to);
    for (std::int32_t cell = from; cell <= to; ++cell) {
        const TablePlace place = placeOf(sim, cell);
        if (place.column >= first.column && place.column <= last.column && place.row >= first.row
            && place.row <= last.row)
            cells.push_back(cell);
    }
    return cells;
}

} // namespace

double Evaluation::fail(const std::string& reason) {
    if (fault.empty()) fault = reason;
    return undefined;
}

void Evaluation::setState(std::int64_t steps) {
    steps_ = steps;
    for (Cached& cached : cached_) cached.isKnown = cached.isKnown && !cached.isOfState;
}

double Evaluation::value(const Expression& expression) {
    cell_ = 0;
    bound_.clear();
    frame_ = 0;
    depth_ = 0;
    work_ = 0;
    return node(expression);
}

double Evaluation::node(const Expression& expression) {
    if (!fault.empty()) return undefined;
    if (++work_ > mostWork) return fail("it takes too long to work out");
    if (depth_ >= deepest) return fail("its names are nested too deeply");
    depth_ += 1;
    double result = 0;
    switch (expression.term) {
    case Term::number: result = expression.number; break;
    case Term::cellValue:
        touched_ |= cellRead | stateRead;
        result = cell_ > 0 ? cellValues()[expression.index].value(sim_, places_, cell_)
                           : fail(std::string("\"") + cellValues()[expression.index].name
                                  + "\" is a value of a cell; use it in a sum, mean ... over cells");
        break;
    case Term::runValue: result = runValue(expression.index); break;
    case Term::name: result = namedValue(expression.index); break;
    case Term::bound: result = bound_[frame_ + static_cast<std::size_t>(expression.index)]; break;
    case Term::call: {
        const double first = node(expression.parts[0]);
        result = numberFunctions()[expression.index].value(first, node(expression.parts[1]));
        break;
    }
    case Term::choice: result = node(expression.parts[node(expression.parts[0]) != 0 ? 1 : 2]); break;
    case Term::fold: result = fold(expression); break;
    case Term::along: result = along(expression); break;
    case Term::series: result = series(expression); break;
    case Term::root: result = root(expression); break;
    case Term::profile: result = fail("a profile has no value"); break;
    }
    depth_ -= 1;
    return result;
}

double Evaluation::runValue(int which) {
    switch (static_cast<RunValue>(which)) {
    case RunValue::time: touched_ |= stateRead; return static_cast<double>(steps_) * double(sim_.dt);
    case RunValue::steps: touched_ |= stateRead; return static_cast<double>(steps_);
    case RunValue::stepSize: return double(sim_.dt);
    case RunValue::gasConstant: return double(sim_.gasFactor);
    case RunValue::pi: break;
    }
    return std::numbers::pi;
}

double Evaluation::namedValue(int place) {
    Cached& cached = cached_[place];
    if (cached.isKnown) {
        touched_ |= cached.isOfState ? stateRead : nothing;
        return cached.value;
    }
    const unsigned before = std::exchange(touched_, nothing);
    const std::size_t frame = std::exchange(frame_, bound_.size());
    const double result = node(*meanings_.names[place]);
    frame_ = frame;
    if ((touched_ & cellRead) == 0) cached = {true, (touched_ & stateRead) != 0, result};
    touched_ |= before;
    return result;
}

double Evaluation::inCell(std::int32_t cell, const Expression& expression) {
    const std::int32_t outer = std::exchange(cell_, cell);
    const unsigned before = touched_;
    const double result = node(expression);
    cell_ = outer;
    touched_ = before | (touched_ & ~unsigned{cellRead}) | stateRead;
    return result;
}

std::vector<std::int32_t> Evaluation::cellsOf(const Expression& expression) {
    std::vector<std::int32_t> cells;
    if (expression.source.kind == FoldSource::Kind::allCells) {
        for (std::int32_t cell = 1; cell <= sim_.nCells; ++cell) cells.push_back(cell);
    } else {
        const bool isNamed = expression.source.kind == FoldSource::Kind::namedRange;
        const std::string& addresses =
            isNamed ? meanings_.ranges[expression.source.index] : expression.source.addresses;
        cells = cellsOfAddresses(sim_, addresses);
        if (cells.empty()) fail("the drawing has no cells " + addresses);
    }
    const Expression& condition = expression.parts[0];
    if (condition.term != Term::number || condition.number == 0)
        std::erase_if(cells, [&](std::int32_t cell) { return inCell(cell, condition) == 0; });
    if (cells.empty()) fail("no cell meets its condition");
    return cells;
}

void Evaluation::forEach(const Expression& expression, const std::function<bool(const Evaluate& evaluate)>& visit) {
    if (expression.source.kind != FoldSource::Kind::table) {
        for (const std::int32_t cell : cellsOf(expression)) {
            const bool goesOn = visit([&](const Expression& part) { return inCell(cell, part); });
            if (!goesOn || !fault.empty()) return;
        }
        return;
    }
    touched_ |= stateRead; // a record grows
    const std::size_t outer = bound_.size();
    bool isEmpty = true;
    for (const std::vector<double>& row : *meanings_.tables[expression.source.index]) {
        bound_.insert(bound_.end(), row.begin(), row.end());
        const bool counts = node(expression.parts[0]) != 0;
        const bool goesOn = !counts || visit([&](const Expression& part) { return node(part); });
        bound_.resize(outer);
        if (!goesOn || !fault.empty()) return;
        isEmpty = isEmpty && !counts;
    }
    if (isEmpty) fail("no row of the table meets its condition");
}

double Evaluation::fold(const Expression& expression) {
    Folding folding{static_cast<Fold>(expression.index)};
    forEach(expression, [&](const Evaluate& evaluate) {
        folding.take(evaluate(expression.parts[1]));
        return true;
    });
    return folding.result();
}

/// Between two neighbours of a list the value runs straight.
double Evaluation::along(const Expression& expression) {
    const double position = node(expression.parts[3]);
    double lastAt = undefined;
    double lastValue = undefined;
    double found = undefined;
    forEach(expression, [&](const Evaluate& evaluate) {
        const double at = evaluate(expression.parts[1]);
        const double value = evaluate(expression.parts[2]);
        const bool isBetween = (lastAt < position && position < at) || (at < position && position < lastAt);
        if (at == position) found = value;
        if (isBetween) found = lastValue + (value - lastValue) * (position - lastAt) / (at - lastAt);
        lastAt = at;
        lastValue = value;
        return at != position && !isBetween;
    });
    return std::isnan(found) ? fail("the position lies beyond the cells or rows, or there is no number") : found;
}

double Evaluation::withCounter(double counter, const Expression& expression) {
    bound_.push_back(counter);
    const double result = node(expression);
    bound_.pop_back();
    return result;
}

double Evaluation::series(const Expression& expression) {
    const double first = node(expression.parts[0]);
    const double last = node(expression.parts[1]);
    constexpr double mostTerms = 1e5;
    if (!(last - first <= mostTerms)) return fail("the series has more than 100000 terms");
    double sum = 0;
    for (double counter = first; counter <= last && fault.empty(); counter += 1)
        sum += withCounter(counter, expression.parts[2]);
    return sum;
}

double Evaluation::root(const Expression& expression) {
    double low = node(expression.parts[0]);
    double high = node(expression.parts[1]);
    const double atLow = withCounter(low, expression.parts[2]);
    const double atHigh = withCounter(high, expression.parts[2]);
    if (!(atLow * atHigh <= 0)) return fail("what a root is looked for in has the same sign at both ends");
    constexpr int bisections = 200;
    for (int turn = 0; turn < bisections && fault.empty(); ++turn) {
        const double middle = 0.5 * (low + high);
        ((withCounter(middle, expression.parts[2]) > 0) == (atLow > 0) ? low : high) = middle;
    }
    return 0.5 * (low + high);
}

std::vector<ProfilePoint> Evaluation::profile(const Expression& expression) {
    std::vector<ProfilePoint> points;
    cell_ = 0;
    bound_.clear();
    frame_ = 0;
    depth_ = 0;
    work_ = 0;
    for (const std::int32_t cell : cellsOf(expression))
        points.push_back(
            {inCell(cell, expression.parts[1]), inCell(cell, expression.parts[2]), inCell(cell, expression.parts[3])});
    return points;
}

} // namespace norvane
