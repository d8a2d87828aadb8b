#include "shell/program.h"

#include "core/quantities.h"
#include "core/run_driver.h"
#include "display/field_plot.h"
#include "display/snapshot.h"
#include "exchange/log_file.h"
#include "exchange/state_file.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"
#include "platform/files.h"
#include "shell/command_window.h"

#include <filesystem>

namespace norvane {

namespace {

bool startsInBatchMode(const std::string& programName) {
    const std::string stem = std::filesystem::path(programName).stem().string();
    return !stem.empty() && stem.back() == '_';
}

/// The plot of the schedule, after which commands are taken.
void updatePlot(SimState& sim, Interface& ui) {
    ui.NV_in.Text1.text = std::to_string(sim.stepCount);
    plotField(sim, ui);
    ui.yieldToInterface();
}

/// Gives the geometry of a batch start, or an empty path after a message.
std::string batchGeometry(Program& program, const ProgramStart& start) {
    if (!start.geometry.empty()) return start.geometry;
    const std::vector<std::string> names = listFiles(start.folder, FileList::ending);
    if (names.size() == 1) return joinPath(start.folder, names.front());
    program.ui.showMessage(
        (names.empty() ? "There is no geometry (*.gmt) beside the program.\r\n"
                       : "There are " + std::to_string(names.size()) + " geometries (*.gmt) beside the program.\r\n")
        + "Name the one to run as the argument of the program, or put it alone beside the program.");
    return {};
}

} // namespace

void connectProgram(Program& program) {
    RunOperations& operations = program.operations;
    Interface& ui = program.ui;
    operations.buildModel = [&ui](SimState& sim) { buildModel(sim, ui); };
    operations.showExitQuestion = [&ui](SimState&) { showExitQuestion(ui); };
    operations.outputs = {
        {.name = "state",
         .every = &SimState::saveEvery,
         .lastOfInterval = true,
         .write = [&ui](SimState& sim) { saveState(sim, ui); }},
        {.name = "snapshot",
         .every = &SimState::frameEvery,
         .lastOfInterval = true,
         .write = [&ui](SimState& sim) { takeSnapshot(sim, ui, false); }},
        {.name = "plot",
         .every = &SimState::updateEvery,
         .atStop = true,
         .write = [&ui](SimState& sim) { updatePlot(sim, ui); }},
        {.name = "log",
         .every = &SimState::logEvery,
         .atStop = true,
         .needsInterval = true,
         .start = [&ui](SimState& sim) { startLog(sim, ui); },
         .write = [&ui](SimState& sim) { writeLogLine(sim, ui); }},
    };
}

void startProgram(Program& program, const ProgramStart& start) {
    Interface& ui = program.ui;
    setDirectory(program, start.folder);
    for (const Quantity& quantity : quantities()) ui.NV_dsp.Combo1.entries.emplace_back(quantity.name);
    program.sim.batchMode = startsInBatchMode(start.name);
    if (!program.sim.batchMode) return;
    const std::string geometry = batchGeometry(program, start);
    if (geometry.empty()) return;
    selectGeometry(program, geometry);
    loadGeometry(program.sim, ui);
    if (!start.mayRun()) return;
    runSimulation(program.sim, ui, program.operations);
}

void selectGeometry(Program& program, const std::string& path) {
    setDirectory(program, folderOf(path));
    program.ui.NV_in.File1.selected = nameOf(path);
}

} // namespace norvane
