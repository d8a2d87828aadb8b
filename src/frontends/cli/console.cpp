#include "frontends/cli/console.h"

#include "exchange/state_file.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"
#include "platform/files.h"

#include <cstdio>

namespace norvane {

namespace {

std::string withPlainLineEnds(const std::string& text) {
    std::string plain;
    for (const char c : text)
        if (c != '\r') plain += c;
    while (!plain.empty() && plain.back() == '\n') plain.pop_back();
    return plain;
}

void print(Console& console, const std::string& text) {
    console.beforeMessage();
    std::fprintf(stderr, "%s\n", withPlainLineEnds(text).c_str());
}

void show(Console& console, const Report& report) {
    if (endsSeries(console.series, report)) closeSeries(console);
    if (countMessage(console.series, report)) print(console, report.text);
}

} // namespace

void connectConsole(Console& console) {
    connectProgram(console.program);
    console.program.ui.showMessage = [&console](const Report& report) { show(console, report); };
}

void closeSeries(Console& console) {
    const std::string closing = closingMessage(console.series);
    if (!closing.empty()) print(console, closing);
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
    closeSeries(console);
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

std::string printable(const std::string& text) {
    std::string safe;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto c = static_cast<unsigned char>(text[at]);
        const bool isC1 = c == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
        const bool isControl = (c < 0x20 && c != '\n' && c != '\t') || c == 0x7F || isC1;
        safe += isControl ? '?' : text[at];
        if (isC1) ++at;
    }
    return safe;
}

std::string describedGrid(const SimState& sim) {
    std::string text;
    for (int dim = 1; dim <= sim.nDim; ++dim) text += (dim > 1 ? " x " : "") + std::to_string(sim.cellCount[dim]);
    text += sim.nCells == 1 ? " cell" : " cells";
    if (sim.nsMax > 0) text += ", " + std::to_string(sim.nsMax + 1) + " species";
    return text;
}

} // namespace norvane
