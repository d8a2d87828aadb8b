#include "shell/program.h"

#include "core/run_driver.h"
#include "display/field_plot.h"
#include "display/snapshot.h"
#include "exchange/state_file.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"
#include "platform/files.h"
#include "shell/command_window.h"

#include <filesystem>

namespace norvane {

namespace {

/// Entry k stands for quantity k + 1.
constexpr const char* quantityNames[] = {"Temperature",   "Velocity", "Std Velocity", "Pressure", "Density",
                                         "Concentration", "X",        "dx",           "dh",       "at",
                                         "VectorPlot"};

bool startsInBatchMode(const std::string& programName) {
    const std::string stem = std::filesystem::path(programName).stem().string();
    return !stem.empty() && stem.back() == '_';
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
    operations.buildModel = buildModel;
    operations.saveState = saveState;
    operations.takeSnapshot = [](SimState& sim, Interface& ui) { takeSnapshot(sim, ui, 0); };
    operations.plotField = plotField;
    operations.showExitQuestion = [](SimState&, Interface& ui) { showExitQuestion(ui); };
}

void startProgram(Program& program, const ProgramStart& start) {
    Interface& ui = program.ui;
    setDirectory(program, start.folder);
    for (const char* name : quantityNames) ui.NV_dsp.Combo1.entries.emplace_back(name);
    program.sim.batchMode = startsInBatchMode(start.name) ? 1 : 0;
    if (program.sim.batchMode == 0) return;
    const std::string geometry = batchGeometry(program, start);
    if (geometry.empty()) return;
    selectGeometry(program, geometry);
    loadGeometry(program.sim, ui);
    runSimulation(program.sim, ui, program.operations);
}

void selectGeometry(Program& program, const std::string& path) {
    setDirectory(program, folderOf(path));
    program.ui.NV_in.File1.selected = nameOf(path);
}

} // namespace norvane
