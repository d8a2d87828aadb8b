#pragma once
// What the logic asks of the front end that it runs under.

#include "platform/controls.h"
#include "platform/run_events.h"

#include <functional>
#include <optional>
#include <string>

namespace norvane {

/// The four windows and the operations of a front end. An operation that a front end does not fill in does nothing.
struct Interface : RunEvents {
    CommandWindow NV_in;
    PlotWindow NV_out;
    DisplayWindow NV_dsp;
    ExitWindow NV_einde;

    /// Asks for a text and waits for it. No value: the question was cancelled.
    std::function<std::optional<std::string>(const std::string& prompt, const std::string& defaultText)> askText =
        [](const std::string&, const std::string&) { return std::optional<std::string>(); };

    /// Ends the process at once. Under a front end it does not return.
    std::function<void()> endProgram = [] {};

    std::function<void()> beep = [] {};

    /// A form becomes visible (or is asked to, being visible already: then it may come to the front) or hidden, without
    /// waiting. Called through showForm and hideForm, which keep the record.
    std::function<void(Form& form, bool wasVisible)> formShown = [](Form&, bool) {};
    std::function<void(Form& form)> formHidden = [](Form&) {};
};

inline void showForm(Interface& ui, Form& form) {
    const bool wasVisible = form.visible;
    form.visible = true;
    ui.formShown(form, wasVisible);
}

inline void hideForm(Interface& ui, Form& form) {
    if (!form.visible) return;
    form.visible = false;
    ui.formHidden(form);
}

} // namespace norvane
