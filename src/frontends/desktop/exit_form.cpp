#include "frontends/desktop/exit_form.h"

namespace norvane {

ExitForm::ExitForm(Program& program, Act act)
    : FormWindow(program, program.ui.NV_einde.form, std::move(act), 2775, 2070) {
    addButton("Command1", {240, 120, 1335, 495});
    addButton("Command2", {240, 720, 1335, 495});
    cancel_ = addButton("Command3", {240, 1320, 1335, 495});
    // The question may come while a person types elsewhere: Enter must not end the program then.
    setDefaultButton(cancel_);
    setEscapeButton(cancel_);
}

void ExitForm::layOut(double factor) {
    FormWindow::layOut(factor);
    setFixedSize(designSize());
}

void ExitForm::showEvent(QShowEvent* event) {
    FormWindow::showEvent(event);
    cancel_->setFocus();
}

} // namespace norvane
