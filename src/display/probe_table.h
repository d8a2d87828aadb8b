#pragma once
// The table of probes over time that a run writes: lines of comma-separated values (RFC 4180) below one line of names.

#include "core/sim_state.h"
#include "display/line_chart.h"

#include <span>
#include <string>
#include <vector>

namespace norvane {

/// A column named "D3:K9:mean(T) [K]": the cells, what is made of them, the quantity, the unit.
struct ProbeColumn {
    std::string name;           ///< without the unit: "D3:K9:mean(T)"
    std::string quantity;       ///< "T"
    std::string unit;           ///< "K"
    std::vector<double> values; ///< one a line; a value that is none is a NaN
};

struct ProbeTable {
    std::vector<double> steps;
    std::vector<double> times; ///< s
    std::vector<ProbeColumn> columns;
};

/// Reads such a table. A last line without its end is left out: a run may be writing it. Gives what is wrong with the
/// text, with the line; empty: nothing.
std::string readProbes(const std::string& text, ProbeTable& table);

/// A chart over time of the columns [0..columns.size()-1] that are chosen, a panel for each unit. The quantities have
/// the labels that they have in other figures of a loaded geometry.
LineChart historyChart(const SimState& sim, const ProbeTable& table, std::span<const std::size_t> chosen);

} // namespace norvane
