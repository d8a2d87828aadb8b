#pragma once
// The exit question.

#include "frontends/desktop/form_window.h"

namespace norvane {

class ExitForm : public FormWindow {
public:
    ExitForm(Program& program, Act act);

    void layOut(double factor) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QPushButton* cancel_;
};

} // namespace norvane
