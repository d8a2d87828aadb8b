#pragma once
// Values of some cells over the time of a run: what is asked for as text, and the lines of a table.

#include "core/quantity_names.h"
#include "geometry/cell_selection.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace norvane {

/// What is made of the values of several cells.
enum class ProbeFunction : std::uint8_t {
    value,      ///< of one cell
    mean,       ///< each cell counts alike
    volumeMean, ///< weighted with the volume of the cell
    massMean,   ///< weighted with the mass in the cell
    minimum,
    maximum,
    sum,
};

/// A column of the table.
struct Probe {
    std::string name; ///< "C7:T", "D3:K9:mean(T)"
    NamedQuantity quantity;
    ProbeFunction function = ProbeFunction::value;
    std::vector<std::int32_t> cells;
};

inline constexpr std::size_t mostProbeColumns = 1000;

/// Adds the columns of a probe "C7:T,p,u", "D3:K9:mean(T),max(T,p)" or "label:T"; a range without a function has a
/// column for each cell. Columns that are there already are left out. Gives what is wrong; empty: nothing.
std::string parseProbe(const SimState& sim,
                       const std::string& text,
                       std::span<const NamedRange> labels,
                       std::vector<Probe>& columns);

/// "C7:T [K]".
std::string headingOf(const Probe& column);

double valueOf(const SimState& sim, const Probe& column);

/// The first line: step, time and the columns.
std::string probeHeader(std::span<const Probe> columns);

/// The line of the step and the fields that stand; `values` holds those of the columns afterwards.
std::string probeRow(const SimState& sim, std::span<const Probe> columns, std::vector<double>& values);

} // namespace norvane
