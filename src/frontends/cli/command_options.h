#pragma once
// What the commands of the command line share in reading their options.

#include "frontends/cli/plot_command.h"
#include "frontends/cli/run_command.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace norvane {

/// A command of the program.
struct Command {
    CLI::App* app;
    std::function<int()> act; ///< once the options are read; gives the exit status
};

inline constexpr const char* lookStatusHelp = "Exit status: 0 done, 2 bad use, 3 the geometry cannot be used,\n"
                                              "4 a file cannot be read or written.";

/// What is wrong with an option's text; empty: nothing.
std::string notEmpty(const std::string& text);
std::string positiveTime(const std::string& text);
std::string positiveNumber(const std::string& text);

void addGeometry(CLI::App* command, std::string& geometry);

/// "1 temperature, 2 velocity ..."
std::string listedQuantities();

Command addRun(CLI::App& app);
Command addPlot(CLI::App& app);
Command addExport(CLI::App& app);

} // namespace norvane
