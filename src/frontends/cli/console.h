#pragma once
// A program whose person sits at a terminal, or is a script: messages go to standard error.

#include "frontends/cli/exit_status.h"
#include "shell/message_series.h"
#include "shell/program.h"

#include <functional>
#include <string>

namespace norvane {

struct Console {
    Program program;
    MessageSeries series;
    std::function<void()> beforeMessage = [] {}; ///< makes room for a line
};

/// Connects the program with the terminal.
void connectConsole(Console& console);

/// Prints how many messages of a series were held back, if any.
void closeSeries(Console& console);

/// Imports a geometry without its structure message; what is wrong with it is printed. Gives the exit status.
ExitStatus loadFor(Console& console, const std::string& geometry);

/// Makes a model for a command that only looks: built afresh, or recalled from the state file. Gives the exit
/// status; leaves the stop file alone.
ExitStatus standModel(Console& console, bool recalled);

/// Whether a geometry is the very file that a command writes; then that is printed.
bool wouldOverwrite(const std::string& geometry, const std::string& output);

/// The cells along each dimension and the species, "60 x 18 cells, 2 species".
std::string describedGrid(const SimState& sim);

} // namespace norvane
