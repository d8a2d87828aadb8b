#include "shell/command_window.h"

#include "core/run_driver.h"
#include "display/display_panel.h"
#include "display/field_plot.h"
#include "exchange/spectrum.h"
#include "exchange/state_file.h"
#include "exchange/view_factors.h"
#include "geometry/grid_file.h"

#include <new>
#include <stdexcept>

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

void clickDisplay(Program& program) {
    program.sim.stopFlag = true;
    showDisplayPanel(program.sim, program.ui);
}

void clickImportRadiation(Program& program) { importViewFactors(program.sim, program.ui); }

void clickSave(Program& program) { saveState(program.sim, program.ui); }

void clickRecall(Program& program) { recallState(program.sim, program.ui); }

void clickPanelOk(Program& program) { clickOk(program.sim, program.ui); }

void clickPanelToFile(Program& program) { clickToFile(program.sim, program.ui); }

void clickPanelTitle(Program& program) { clickTitle(program.sim, program.ui); }

void clickPanelSpectrum(Program& program) { exportSpectrum(program.sim, program.ui); }

/// Ends the program whatever became of the saving: its message has been dismissed by then.
void clickSaveAndExit(Program& program) {
    saveState(program.sim, program.ui);
    program.ui.endProgram();
}

void clickExit(Program& program) { program.ui.endProgram(); }

void clickCancelExit(Program& program) { hideForm(program.ui, program.ui.NV_einde.form); }

constexpr Button buttonTable[] = {
    {"NV_in", "Command1", "import geometry", clickImportGeometry},
    {"NV_in", "Command2", "Recalc", clickRecalc},
    {"NV_in", "Command5", "Cont", clickContinue},
    {"NV_in", "Command4", "disp", clickDisplay},
    {"NV_in", "Command8", "import rad", clickImportRadiation},
    {"NV_in", "Command6", "Save", clickSave},
    {"NV_in", "Command7", "Recall", clickRecall},
    {"NV_dsp", "Command1", "OK", clickPanelOk},
    {"NV_dsp", "Command2", "ToFile", clickPanelToFile},
    {"NV_dsp", "Command3", "Title", clickPanelTitle},
    {"NV_dsp", "Command4", "Spectrum", clickPanelSpectrum},
    {"NV_einde", "Command1", "Save and Exit", clickSaveAndExit},
    {"NV_einde", "Command2", "EXIT (no save)", clickExit},
    {"NV_einde", "Command3", "Cancel/Pause", clickCancelExit},
};

} // namespace

std::span<const Button> buttons() { return buttonTable; }

void click(Program& program, const Button& button) {
    if (program.sim.runDepth == 0) program.sim.reported = {}; // a fault is reported once for a run or a click
    try {
        button.click(program);
    } catch (const std::bad_alloc&) {
        program.ui.showMessage("There is not enough memory for this.");
    } catch (const std::length_error&) { // a size beyond what the library's containers can count
        program.ui.showMessage("There is not enough memory for this.");
    }
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
    program.sim.stopFlag = true;
}

void raiseResize(Program& program, const Form& form) {
    if (&form == &program.ui.NV_out.form) resizePlotWindow(program.ui);
}

void raiseSelectorClick(Program& program, const Selector& selector) {
    // The other selectors wait for OK.
    if (&selector == &program.ui.NV_dsp.Combo1) chooseQuantity(program.sim, program.ui);
}

void showExitQuestion(Interface& ui) { showForm(ui, ui.NV_einde.form); }

} // namespace norvane
