#pragma once
// The table of what a plot shows, rewritten at every plot.

#include "core/sim_state.h"
#include "platform/files.h"
#include "platform/interface.h"
#include "platform/replacement.h"

#include <memory>
#include <string>

namespace norvane {

/// The table of one plot while it is made. It is kept in memory and written when it is closed; only a table beyond
/// plotFileBlock bytes goes to the file piece by piece.
struct PlotFile {
    std::string text;
    std::unique_ptr<Replacement> file; ///< takes the text, and the name when the table is closed
};

constexpr std::size_t plotFileBlock = std::size_t{1} << 24;

/// Begins the table of a plot.
PlotFile openPlotFile(const SimState& sim);

/// Makes room for so many values.
void reserveEntries(PlotFile& file, double entries);

/// Adds a value: on a new line, or after a tab.
void writePlotEntry(PlotFile& file, bool startsLine, float value);

/// Replaces the file beside the geometry by the table. A fault is reported once for a run or a click.
void closePlotFile(PlotFile& file, SimState& sim, const Interface& ui);

} // namespace norvane
