#pragma once
// The commands of the windows. A front end raises events by these, and shows the records as they are then.

#include "shell/program.h"

#include <span>
#include <string>
#include <string_view>

namespace norvane {

/// A button, and what a click on it does.
struct Button {
    const char* form;
    const char* control;
    const char* caption;
    void (*click)(Program& program);
};

/// All buttons of the four windows.
std::span<const Button> buttons();

/// Raises the Click event of a button of the table. During a run it acts at once, inside the yield that delivers it.
void click(Program& program, const Button& button);

/// Sets the path of Dir1 and raises its Change event: File1 follows, without a selection.
void setDirectory(Program& program, const std::string& path);

/// A request to close a form by its title bar. The form always stays: the command window and the plot window bring up
/// the exit question and stop a run, the other two refuse.
void requestClose(Program& program, const Form& form);

/// A form has got a new inner size, which its record holds already.
void raiseResize(Program& program, const Form& form);

/// A person picked an entry of a selector of the display panel, whose record shows it already.
void raiseSelectorClick(Program& program, const Selector& selector);

/// Makes the exit question visible without waiting for an answer.
void showExitQuestion(Interface& ui);

} // namespace norvane
