#include "frontends/desktop/desktop.h"

#include "check/run_watch.h"
#include "frontends/desktop/dialogs.h"
#include "frontends/desktop/thread_setting.h"
#include "frontends/desktop/window_places.h"
#include "shell/command_window.h"

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

namespace norvane {

Desktop::Desktop(Program& program)
    : program_(program),
      pump_([this] {
          commands_.refreshStatus();
          plot_.refresh();
      }),
      commands_(program, [this](const std::function<void()>& handler) { act(commands_, handler); }),
      plot_(program, [this](const std::function<void()>& handler) { act(plot_, handler); }),
      panel_(program, [this](const std::function<void()>& handler) { act(panel_, handler); }),
      question_(program, [this](const std::function<void()>& handler) { act(question_, handler); }) {
    for (FormWindow* window : windows()) window->layOut(readableFactor(window->controls()));
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
    if (program_.sim.threads == 0) program_.sim.threads = keptThreads(); // else the command line names it
    refresh();
    commands_.show();
    act(commands_, [&] { startProgram(program_, start); });
}

void Desktop::refresh() {
    for (FormWindow* window : windows()) window->refresh();
}

/// Nothing may pass through the toolkit, so what no handler can deal with ends the program here.
void Desktop::act(FormWindow& window, const std::function<void()>& handler) {
    FormWindow* const outer = std::exchange(actor_, &window);
    try {
        handler();
        closeReports();
        setBusy(false);
        refresh();
    } catch (const std::bad_alloc&) {
        showBox("There is not enough memory. The program ends.");
        end();
    }
    actor_ = outer;
}

QWidget* Desktop::ownerOfBoxes() {
    if (actor_ != nullptr && actor_->isVisible()) return actor_;
    QWidget* active = QApplication::activeWindow();
    return active != nullptr ? active : &commands_;
}

void Desktop::showBox(const std::string& text) {
    setBusy(false);
    refresh();
    showMessageBox(ownerOfBoxes(), text);
}

void Desktop::showReport(const Report& report) {
    if (endsSeries(series_, report)) closeReports();
    if (!countMessage(series_, report)) return;
    const SimState& sim = program_.sim;
    const bool isOfCell = report.kind == ReportKind::negativeDensity && report.place >= 1 && report.place <= sim.nCells;
    const auto cell = static_cast<std::int32_t>(report.place);
    showBox(isOfCell ? report.text + "\r\n" + describedPoint(sim, cell) : report.text);
}

void Desktop::closeReports() {
    const std::string closing = closingMessage(series_);
    if (!closing.empty()) showBox(closing);
}

void Desktop::setBusy(bool busy) {
    if (busy == isBusy_) return;
    isBusy_ = busy;
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void Desktop::showWindow(const Form& form, bool wasVisible) {
    FormWindow& window = windowOf(form);
    if (&window == &plot_) { // once for every plot of a run
        plot_.view().takePlot();
        plot_.show();
        return;
    }
    window.refresh();
    if (&window == &question_ && !wasVisible) centreOn(ownerOfBoxes(), question_);
    window.show();
    if (wasVisible) {
        window.raise();
        window.activateWindow();
    }
}

void Desktop::connectInterface() {
    Interface& ui = program_.ui;
    ui.showMessage = [this](const Report& report) { showReport(report); };
    ui.runEnded = [this] { closeReports(); };
    ui.askText = [this](const std::string& prompt, const std::string& defaultText) {
        refresh();
        std::optional<std::string> answer = askInInputBox(ownerOfBoxes(), prompt, defaultText);
        if (answer) setBusy(true); // until the command that asked is done, or has something to say
        return answer;
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
