#include "frontends/desktop/desktop.h"

#include "frontends/desktop/dialogs.h"
#include "frontends/desktop/thread_setting.h"
#include "frontends/desktop/window_places.h"
#include "shell/command_window.h"

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace norvane {

namespace {

QWidget* ownerOfDialogs(QWidget* fallback) {
    QWidget* active = QApplication::activeWindow();
    return active != nullptr ? active : fallback;
}

} // namespace

Desktop::Desktop(Program& program)
    : program_(program),
      pump_([this] {
          commands_.refreshStatus();
          plot_.refresh();
      }),
      commands_(program, [this](const std::function<void()>& handler) { act(handler); }),
      plot_(program, [this](const std::function<void()>& handler) { act(handler); }),
      panel_(program, [this](const std::function<void()>& handler) { act(handler); }),
      question_(program, [this](const std::function<void()>& handler) { act(handler); }) {
    std::vector<PlacedControl> all;
    for (const FormWindow* window : windows())
        all.insert(all.end(), window->controls().begin(), window->controls().end());
    const double factor = readableFactor(all);
    for (FormWindow* window : windows()) window->layOut(factor);
    connectInterface();
}

Desktop::~Desktop() = default;

std::vector<FormWindow*> Desktop::windows() { return {&commands_, &plot_, &panel_, &question_}; }

FormWindow& Desktop::windowOf(const Form& form) {
    for (FormWindow* window : windows())
        if (&window->form() == &form) return *window;
    return commands_;
}

void Desktop::start(const ProgramStart& start) {
    restorePlaces({&commands_, &plot_, &panel_, &question_});
    if (program_.sim.threads == 0) program_.sim.threads = keptThreads(); // else the command line tells it
    refresh();
    commands_.show();
    act([&] { startProgram(program_, start); });
}

void Desktop::refresh() {
    for (FormWindow* window : windows()) window->refresh();
}

/// Nothing may pass through the toolkit, so what no handler can deal with ends the program here.
void Desktop::act(const std::function<void()>& handler) {
    try {
        handler();
        refresh();
    } catch (const std::bad_alloc&) {
        showMessageBox(&commands_, "There is not enough memory. The program ends.");
        end();
    }
}

void Desktop::showWindow(const Form& form, bool wasVisible) {
    FormWindow& window = windowOf(form);
    if (&window == &plot_) { // once for every plot of a run
        plot_.view().takePlot();
        plot_.show();
        return;
    }
    window.refresh();
    window.show();
    if (wasVisible) {
        window.raise();
        window.activateWindow();
    }
}

void Desktop::connectInterface() {
    Interface& ui = program_.ui;
    ui.showMessage = [this](const Report& report) {
        refresh();
        showMessageBox(ownerOfDialogs(&commands_), report.text);
    };
    ui.askText = [this](const std::string& prompt, const std::string& defaultText) {
        refresh();
        return askInInputBox(ownerOfDialogs(&commands_), prompt, defaultText);
    };
    ui.yieldToInterface = [this] { pump_.yield(); };
    ui.endProgram = [this] { end(); };
    ui.beep = [] { QApplication::beep(); };
    ui.formShown = [this](Form& form, bool wasVisible) { showWindow(form, wasVisible); };
    ui.formHidden = [this](Form& form) { windowOf(form).hide(); };
}

void Desktop::requestEndOfSession() {
    // While a box is open no other command is taken.
    if (QApplication::activeModalWidget() == nullptr) commands_.close();
}

/// The handlers below this call may be deep inside a run: nothing of them may go on, and no event be delivered.
void Desktop::end() {
    keepPlaces({&commands_, &plot_, &panel_, &question_});
    std::fflush(nullptr);
    std::_Exit(EXIT_SUCCESS);
}

} // namespace norvane
