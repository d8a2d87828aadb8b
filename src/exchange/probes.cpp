#include "exchange/probes.h"

#include "core/nearest.h"
#include "exchange/csv_text.h"
#include "geometry/table_place.h"
#include "platform/letter_case.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

struct FunctionName {
    const char* name;
    ProbeFunction function;
};

constexpr FunctionName functionNames[] = {
    {"mean", ProbeFunction::mean},   {"volmean", ProbeFunction::volumeMean}, {"massmean", ProbeFunction::massMean},
    {"min", ProbeFunction::minimum}, {"max", ProbeFunction::maximum},        {"sum", ProbeFunction::sum},
};

/// A probe while it is being read.
struct ProbeText {
    std::string range;
    std::string shownRange; ///< as it stands in a heading
    std::vector<std::int32_t> cells;
};

std::string unknownFunction(const std::string& name) {
    std::vector<std::string> names;
    std::string list;
    for (const FunctionName& each : functionNames) {
        names.emplace_back(each.name);
        list += (list.empty() ? "" : ", ") + names.back();
    }
    const std::string nearest = nearestWord(lowerCase(name), names);
    return "\"" + name + "\" is no function of cells, which are " + list
           + (nearest.empty() ? "." : ". Did you mean \"" + nearest + "\"?");
}

std::string addColumn(std::vector<Probe>& columns, Probe column) {
    for (const Probe& each : columns)
        if (each.name == column.name) return {};
    if (columns.size() == mostProbeColumns)
        return "the probes have more than " + std::to_string(mostProbeColumns)
               + " columns; take a mean of a range, such as D3:K9:mean(T), or fewer cells";
    columns.push_back(std::move(column));
    return {};
}

std::string
addValues(const SimState& sim, const ProbeText& probe, const NamedQuantity& quantity, std::vector<Probe>& columns) {
    for (const std::int32_t cell : probe.cells) {
        const std::string name = spreadsheetAddress(placeOf(sim, cell)) + ":" + quantity.name;
        std::string fault = addColumn(columns, {name, quantity, ProbeFunction::value, {cell}});
        if (!fault.empty()) return fault;
    }
    return {};
}

/// An item of the list behind the range: "T", or "mean(T,p)".
std::string addItem(const SimState& sim, const ProbeText& probe, const std::string& item, std::vector<Probe>& columns) {
    std::vector<NamedQuantity> quantities;
    const std::size_t open = item.find('(');
    if (open == std::string::npos) {
        std::string fault = findQuantity(sim, item, quantities);
        return fault.empty() ? addValues(sim, probe, quantities.front(), columns) : fault;
    }
    if (item.back() != ')') return "\"" + item + "\" lacks its closing bracket";
    const std::string name = lowerCase(item.substr(0, open));
    const auto* const function = std::find_if(std::begin(functionNames), std::end(functionNames),
                                              [&](const FunctionName& each) { return each.name == name; });
    if (function == std::end(functionNames)) return unknownFunction(item.substr(0, open));
    std::string fault = findQuantities(sim, item.substr(open + 1, item.size() - open - 2), quantities);
    for (std::size_t k = 0; k < quantities.size() && fault.empty(); ++k)
        fault = addColumn(columns, {probe.shownRange + ":" + name + "(" + quantities[k].name + ")", quantities[k],
                                    function->function, probe.cells});
    return fault;
}

/// The items between the commas that stand outside brackets.
std::vector<std::string> itemsOf(const std::string& list) {
    std::vector<std::string> items{""};
    int depth = 0;
    for (const char c : list) {
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (c == ',' && depth == 0)
            items.emplace_back();
        else
            items.back() += c;
    }
    return items;
}

double extremeOf(const SimState& sim, const Probe& column, bool isMaximum) {
    double extreme = double(column.quantity.of(sim, column.cells.front()));
    for (const std::int32_t cell : column.cells) {
        const double value = double(column.quantity.of(sim, cell));
        if (std::isnan(value)) return value; // it would be lost in comparisons
        extreme = isMaximum ? std::max(extreme, value) : std::min(extreme, value);
    }
    return extreme;
}

double weightedMean(const SimState& sim, const Probe& column, const Array<float>& weights) {
    double sum = 0;
    double weight = 0;
    for (const std::int32_t cell : column.cells) {
        sum += double(column.quantity.of(sim, cell)) * double(weights[cell]);
        weight += double(weights[cell]);
    }
    return sum / weight;
}

double sumOf(const SimState& sim, const Probe& column) {
    double sum = 0;
    for (const std::int32_t cell : column.cells) sum += double(column.quantity.of(sim, cell));
    return sum;
}

} // namespace

std::string parseProbe(const SimState& sim,
                       const std::string& text,
                       std::span<const NamedRange> labels,
                       std::vector<Probe>& columns) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == text.size())
        return "it is not ADDRESS:QUANTITIES, such as C7:T,p or D3:K9:mean(T)";
    ProbeText probe{text.substr(0, colon), text.substr(0, colon), {}};
    const auto isRange = [&](const NamedRange& named) { return named.name == probe.range; };
    const bool isLabel = std::any_of(labels.begin(), labels.end(), isRange);
    std::string fault = cellsOfRange(sim, probe.range, labels, probe.cells);
    if (!fault.empty()) return fault;
    for (char& c : probe.shownRange)
        if (!isLabel && c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    for (const std::string& item : itemsOf(text.substr(colon + 1))) {
        fault = addItem(sim, probe, item, columns);
        if (!fault.empty()) return fault;
    }
    return {};
}

std::string headingOf(const Probe& column) {
    return column.quantity.unit.empty() ? column.name : column.name + " [" + column.quantity.unit + "]";
}

double valueOf(const SimState& sim, const Probe& column) {
    switch (column.function) {
    case ProbeFunction::mean: return sumOf(sim, column) / static_cast<double>(column.cells.size());
    case ProbeFunction::volumeMean: return weightedMean(sim, column, sim.cellVolume);
    case ProbeFunction::massMean: return weightedMean(sim, column, sim.cellMass);
    case ProbeFunction::minimum: return extremeOf(sim, column, false);
    case ProbeFunction::maximum: return extremeOf(sim, column, true);
    case ProbeFunction::sum: return sumOf(sim, column);
    default: return double(column.quantity.of(sim, column.cells.front()));
    }
}

std::string probeHeader(std::span<const Probe> columns) {
    std::string header = "step,time [s]";
    for (const Probe& column : columns) header += "," + csvField(headingOf(column));
    return header.append(csvLineEnd);
}

std::string probeRow(const SimState& sim, std::span<const Probe> columns, std::vector<double>& values) {
    std::string row = std::to_string(sim.stepCount);
    appendNineDigits(row += ',', double(sim.dt) * sim.stepCount);
    values.clear();
    for (const Probe& column : columns) {
        values.push_back(valueOf(sim, column));
        appendNineDigits(row += ',', values.back());
    }
    return row.append(csvLineEnd);
}

} // namespace norvane
