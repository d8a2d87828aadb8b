#pragma once

#include <string>

namespace norvane {

/// Drives a whole program from a script, without a window, and prints on standard output what a person would have seen.
///   path   the script; "-" is standard input
///   trace  also print every operation on the drawing surface
///   putsAnywhere  the command put may write outside the working directory
/// Gives the exit status: 0, or 2 after a fault of the script, which is printed on standard error with its line.
/// endProgram and faults end the process from within.
int runScript(const std::string& path, bool trace, bool putsAnywhere);

} // namespace norvane
