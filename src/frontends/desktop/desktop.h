#pragma once
// The windows of a program on the screen.

#include "frontends/desktop/command_form.h"
#include "frontends/desktop/display_form.h"
#include "frontends/desktop/event_pump.h"
#include "frontends/desktop/exit_form.h"
#include "frontends/desktop/plot_form.h"
#include "shell/message_series.h"

namespace norvane {

/// Holds no logic of the program: its windows copy a person's input into the records and call the handlers of the
/// shell, and it shows the records as they are then.
class Desktop {
public:
    /// Makes the windows and fills in the operations of the program's interface. Needs a QApplication.
    explicit Desktop(Program& program);
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    /// Shows the command window and starts the program; in batch mode it returns when that run has stopped.
    void start(const ProgramStart& start);

    /// Shows all records.
    void refresh();

    /// Carries out all pending events now.
    void poll() { pump_.poll(); }

    /// The session ends: the program asks as for a closed window, and the end of the session is held up.
    void requestEndOfSession();

    std::vector<FormWindow*> windows();

private:
    void connectInterface();

    /// Raises an event of a window: messages meanwhile come up over it.
    void act(FormWindow& window, const std::function<void()>& handler);
    void showReport(const Report& report);
    void closeReports();
    void showBox(const std::string& text);
    QWidget* ownerOfBoxes();
    void setBusy(bool busy);
    void showWindow(const Form& form, bool wasVisible);
    FormWindow& windowOf(const Form& form);
    [[noreturn]] void end();

    Program& program_;
    EventPump pump_;
    MessageSeries series_;
    FormWindow* actor_ = nullptr; ///< the window whose control was used; null: none
    bool isBusy_ = false;         ///< the pointer shows that something works
    CommandForm commands_;
    PlotForm plot_;
    DisplayForm panel_;
    ExitForm question_;
};

} // namespace norvane
