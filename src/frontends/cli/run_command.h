#pragma once

#include "shell/program.h"

#include <string>

namespace norvane {

struct RunOptions {
    std::string geometry;
    bool quiet = false;
};

/// Loads a geometry and runs it to its end, as the button Recalc does; gives the exit status.
/// An interrupt or a termination request finishes the step in hand; a second one ends the process.
int runGeometry(const RunOptions& options);

/// The batch start: as above, with the geometry named or found as the program's start tells.
int runBatch(const ProgramStart& start);

} // namespace norvane
