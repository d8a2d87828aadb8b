#pragma once
// What the parts of the workbench have in common: what they may see, and what they may ask for.

#include "frontends/desktop/form_window.h"

#include <QWidget>
#include <cstdint>
#include <functional>
#include <string>

namespace norvane {

/// What a part asks of the others and of the four windows. It changes nothing of the program in any other way. An entry
/// that is not filled in does nothing.
struct WorkbenchRequests {
    Act act;                                         ///< raises an event, as a control of the four windows does
    std::function<void(const char* control)> press;  ///< clicks a button of the command window: "Command2"
    std::function<void(std::int32_t cell)> showCell; ///< brings a cell [1..nCells] into sight and marks it
    /// Adds a column to the history: a probe as the command line has it, "C7:T". Gives what is wrong; empty: nothing.
    std::function<std::string(const std::string& probe)> addProbe;
    std::function<void(const std::string& path)> open; ///< selects a geometry, imports and runs it
};

/// Colours that a palette does not hold.
struct WorkbenchTheme {
    bool isDark = false;
    bool isHighContrast = false;
};

/// A part of the workbench. While a run goes on, stages may be computed on another thread whenever events are
/// delivered: fields are read in `take` alone, and what is painted comes from what it copied.
class WorkbenchPart : public QWidget {
public:
    WorkbenchPart(Program& program, const WorkbenchRequests& requests, QWidget* parent)
        : QWidget(parent), program_(program), requests_(requests) {}

    /// Copies what is shown from the program. Called where no stage is computed: between steps a few times a second,
    /// and after each command. What takes long is left out while the part is not visible.
    virtual void take() = 0;

    /// A step of the run is complete: called after each one, for what must not miss any. Must cost next to nothing.
    virtual void noteStep() {}

    virtual void setTheme(const WorkbenchTheme&) {}

protected:
    const Program& program_;
    const WorkbenchRequests& requests_;
};

} // namespace norvane
