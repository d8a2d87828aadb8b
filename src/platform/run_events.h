#pragma once
// What the simulation itself asks of its surroundings: no window, no file.

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace norvane {

/// What a message is about, for a front end that treats some of them in a way of its own.
enum class ReportKind {
    note,            ///< anything of which there is one
    negativeDensity, ///< one for each faulty cell of a stage; `place` is the cell
    layerMark,       ///< one for each row of a table that should end a layer; `place` is the row
    saveFault,       ///< one for each save that failed; `place` is the step
};

/// A message to the user.
struct Report {
    // Implicit: most messages are a text and nothing else.
    Report(std::string message) : text(std::move(message)) {} // NOLINT(google-explicit-constructor)

    Report(const char* message) : text(message) {} // NOLINT(google-explicit-constructor)

    Report(std::string message, ReportKind about, std::int64_t where, std::string more = {})
        : text(std::move(message)), kind(about), place(where), detail(std::move(more)) {}

    std::string text;
    ReportKind kind = ReportKind::note;
    std::int64_t place = 0; ///< as the kind says; 0: none
    std::string
        detail{}; ///< what the system's own sentence leaves out: a file, a reason. For a line of its own, or none
};

/// An operation that is not filled in does nothing.
struct RunEvents {
    /// Shows a text with one OK button and waits until it is dismissed; no other command is taken meanwhile.
    std::function<void(const Report& report)> showMessage = [](const Report&) {};

    /// Carries out all pending commands of the user, each to its end, and returns. Called in the hot loop.
    std::function<void()> yieldToInterface = [] {};

    /// Marks of the run loop, for front ends that count steps or show progress.
    std::function<void()> runBegan = [] {};
    std::function<void()> stepBegan = [] {};
    std::function<void()> runEnded = [] {};
};

} // namespace norvane
