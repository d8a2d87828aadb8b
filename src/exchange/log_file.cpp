#include "exchange/log_file.h"

#include "core/number_text.h"
#include "platform/files.h"

#include <algorithm>
#include <string>

namespace norvane {

namespace {

std::string logName(const SimState& sim) { return sim.baseName + "_log"; }

void reportFault(SimState& sim, const RunEvents& events, const FileResult& written) {
    if (written || sim.reported.log) return;
    sim.reported.log = true;
    events.showMessage("The log file " + logName(sim) + " can't be written: " + written.reason
                       + ".\r\nThe run goes on without it.");
}

} // namespace

std::int32_t logCell(const SimState& sim) {
    if (sim.nCells < 1) return 0;
    constexpr std::int64_t place[] = {4, 16, 16};
    std::int64_t literal = 1;
    std::int64_t limited = 1;
    for (int dim = 1; dim <= std::min<int>(sim.nDim, 3); ++dim) {
        const std::int64_t stride = sim.cellStride[dim];
        literal += place[dim - 1] * stride;
        limited += std::min<std::int64_t>(place[dim - 1], sim.cellCount[dim] - 1) * stride;
    }
    const bool literalExists = sim.nDim >= 3 && literal <= sim.nCells;
    return static_cast<std::int32_t>(literalExists ? literal : limited);
}

void startLog(SimState& sim, const RunEvents& events) {
    if (sim.logEvery <= 0) return;
    reportFault(sim, events, writeFile(joinPath(sim.inputDir, logName(sim)), {}));
}

void writeLogLine(SimState& sim, const RunEvents& events) {
    const std::int32_t cell = logCell(sim);
    // After a fault the log has ended: a line left out would shift those after it, and behind a log that could not be
    // emptied they would go on another run's.
    if (cell == 0 || sim.reported.log) return;
    std::string line;
    appendFramed(line, sim.velocity(cell, 1));
    line += '\t';
    appendFramed(line, sim.pressure[cell]);
    line += "\r\n";
    reportFault(sim, events, appendFile(joinPath(sim.inputDir, logName(sim)), line));
}

} // namespace norvane
