#include "display/plot_file.h"

#include "core/number_text.h"

#include <algorithm>

namespace norvane {

namespace {

/// Moves what has been gathered to the file.
void flush(PlotFile& file) {
    file.file->add(file.text);
    file.text.clear();
}

} // namespace

PlotFile openPlotFile(const SimState& sim) {
    return {{}, std::make_unique<Replacement>(joinPath(sim.inputDir, sim.outName))};
}

void reserveEntries(PlotFile& file, double entries) {
    constexpr double usualLength = 12; // of an entry
    constexpr std::size_t longestEntry = 32;
    file.text.reserve(longestEntry + static_cast<std::size_t>(std::min(usualLength * entries, double{plotFileBlock})));
}

void writePlotEntry(PlotFile& file, bool startsLine, float value) {
    file.text += startsLine ? "\r\n" : "\t";
    appendFramed(file.text, value);
    if (file.text.size() >= plotFileBlock) flush(file);
}

void closePlotFile(PlotFile& file, SimState& sim, const Interface& ui) {
    flush(file);
    const FileResult result = file.file->finish();
    if (result || sim.reported.plotFile) return;
    sim.reported.plotFile = true;
    ui.showMessage("The plot file " + sim.outName + " can't be written: " + result.reason
                   + (sim.runDepth > 0 ? ".\r\nThe run goes on without it." : ".\r\nThe plot is shown without it."));
}

} // namespace norvane
