#include "frontends/cli/console.h"

#include "check/run_watch.h"
#include "exchange/state_file.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"
#include "platform/files.h"
#include "platform/terminal_text.h"

#include <cstdio>
#include <filesystem>

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
    std::fprintf(stderr, "%s\n", printable(withPlainLineEnds(text), true).c_str());
}

/// A line end in the name of the model's files would fake a line of the program.
std::string withNameOnOneLine(const Console& console, std::string text) {
    for (const std::string& name : {console.program.sim.fileName, console.program.sim.baseName}) {
        const std::string safe = printableName(name);
        if (safe == name) continue;
        for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + safe.size()))
            text.replace(at, name.size(), safe);
    }
    return text;
}

void show(Console& console, const Report& report) {
    if (endsSeries(console.series, report)) closeSeries(console);
    if (!countMessage(console.series, report)) return;
    print(console, withNameOnOneLine(console, report.text));
    const SimState& sim = console.program.sim;
    if (report.kind == ReportKind::negativeDensity && report.place >= 1 && report.place <= sim.nCells)
        print(console, describedPoint(sim, static_cast<std::int32_t>(report.place)));
    if (!report.detail.empty()) print(console, printableName(report.detail));
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
    SimState& sim = program.sim;
    if (nameOf(geometry).empty()) {
        std::fprintf(stderr, "\"%s\" names no geometry file\n", printableName(geometry).c_str());
        return exitFileFault;
    }
    sim.batchMode = true;
    selectGeometry(program, geometry);
    loadGeometry(sim, program.ui);
    closeSeries(console);
    const std::string withEnding = geometry + FileList::ending;
    if (sim.reported.geometry && stampOf(withEnding).exists)
        std::fprintf(stderr, "Did you mean %s?\n", printableName(withEnding).c_str());
    if (sim.reported.geometry) return exitFileFault;
    if (sim.nDim > 0 && sim.nCells == 0)
        std::fprintf(stderr, "%s: a grid without cells; mend its layer marks\n", printableName(sim.fileName).c_str());
    return sim.nCells == 0 ? exitNoModel : exitDone;
}

bool wouldOverwrite(const std::string& geometry, const std::string& output) {
    std::error_code unknown;
    if (!std::filesystem::equivalent(geometry, output, unknown)) return false;
    std::fprintf(stderr, "%s: this command writes a file of that name; rename the geometry\n",
                 printableName(geometry).c_str());
    return true;
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
