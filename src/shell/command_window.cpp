#include "shell/command_window.h"

#include "core/run_driver.h"
#include "geometry/grid_file.h"

namespace norvane {

namespace {

void clickImportGeometry(Program& program) { loadGeometry(program.sim, program.ui); }

void clickRecalc(Program& program) { runSimulation(program.sim, program.ui, program.operations); }

void clickContinue(Program& program) {
    if (program.sim.runMode == modeGeometryRead)
        runSimulation(program.sim, program.ui, program.operations);
    else
        continueRun(program.sim, program.ui, program.operations);
}

void clickDisplay(Program& program) { program.sim.stopFlag = 1; }

void clickExit(Program& program) { program.ui.endProgram(); }

void clickCancelExit(Program& program) { hideForm(program.ui, program.ui.NV_einde.form); }

constexpr Button buttonTable[] = {
    {"NV_in", "Command1", "import geometry", clickImportGeometry},
    {"NV_in", "Command2", "Recalc", clickRecalc},
    {"NV_in", "Command5", "Cont", clickContinue},
    {"NV_in", "Command4", "disp", clickDisplay},
    {"NV_einde", "Command2", "EXIT (no save)", clickExit},
    {"NV_einde", "Command3", "Cancel/Pause", clickCancelExit},
};

} // namespace

std::span<const Button> buttons() { return buttonTable; }

void click(Program& program, const Button& button) {
    if (program.sim.runDepth == 0) program.sim.told = {}; // a fault is told once for a run or a click
    button.click(program);
}

void setDirectory(Program& program, const std::string& path) {
    program.ui.NV_in.Dir1.path = path;
    program.ui.NV_in.File1.path = path;
    program.ui.NV_in.File1.selected.clear();
}

void requestClose(Program& program, const Form& form) {
    const bool asks = &form == &program.ui.NV_in.form || &form == &program.ui.NV_out.form;
    if (!asks) return;
    showExitQuestion(program.ui);
    program.sim.stopFlag = 1;
}

void raiseResize(Program& program, Form& form) {
    // The picture stays away until the next plot, which sizes the surface anew.
    if (&form == &program.ui.NV_out.form) program.ui.NV_out.Picture1.cls();
}

void raiseSelectorClick(Program&, Selector&) {}

void showExitQuestion(Interface& ui) { showForm(ui, ui.NV_einde.form); }

} // namespace norvane
