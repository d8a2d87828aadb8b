#include "frontends/cli/console.h"

#include "exchange/state_file.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"
#include "platform/files.h"

#include <cstdio>

namespace norvane {

namespace {

/// A model that blows up does so in many cells at once: the first few tell the place.
constexpr std::int64_t maxDensityMessages = 5;

std::string withPlainLineEnds(const std::string& text) {
    std::string plain;
    for (const char c : text)
        if (c != '\r') plain += c;
    while (!plain.empty() && plain.back() == '\n') plain.pop_back();
    return plain;
}

void tell(Console& console, const std::string& text) {
    const bool isDensity = text.find("negative density") != std::string::npos;
    if (isDensity && ++console.densityMessages > maxDensityMessages) return;
    console.beforeMessage();
    std::fprintf(stderr, "%s\n", withPlainLineEnds(text).c_str());
}

} // namespace

void connectConsole(Console& console) {
    connectProgram(console.program);
    console.program.ui.showMessage = [&console](const std::string& text) { tell(console, text); };
}

void tellHeldBackMessages(const Console& console) {
    const std::int64_t heldBack = console.densityMessages - maxDensityMessages;
    if (heldBack > 0) std::fprintf(stderr, "... and %lld more such messages\n", static_cast<long long>(heldBack));
}

ExitStatus loadFor(Console& console, const std::string& geometry) {
    Program& program = console.program;
    if (nameOf(geometry).empty()) {
        std::fprintf(stderr, "\"%s\" names no geometry file\n", geometry.c_str());
        return exitFileFault;
    }
    const FileResult readable = tryOpenForReading(geometry);
    program.sim.batchMode = 1;
    selectGeometry(program, geometry);
    loadGeometry(program.sim, program.ui);
    if (!readable) return exitFileFault;
    if (program.sim.nDim > 0 && program.sim.nCells == 0)
        std::fprintf(stderr, "%s: a grid without cells; mend its layer marks\n", program.sim.fileName.c_str());
    return program.sim.nCells == 0 ? exitNoModel : exitDone;
}

ExitStatus standModel(Console& console, bool recalled) {
    SimState& sim = console.program.sim;
    sim.onlyLooks = true;
    sim.stageWork = workSlot;
    if (recalled) return recallState(sim, console.program.ui) ? exitDone : exitFileFault;
    buildModel(sim, console.program.ui);
    return exitDone;
}

std::string describedGrid(const SimState& sim) {
    std::string text;
    for (int dim = 1; dim <= sim.nDim; ++dim) text += (dim > 1 ? " x " : "") + std::to_string(sim.cellCount[dim]);
    text += sim.nCells == 1 ? " cell" : " cells";
    if (sim.nsMax > 0) text += ", " + std::to_string(sim.nsMax + 1) + " species";
    return text;
}

} // namespace norvane
