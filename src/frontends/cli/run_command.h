#pragma once

#include "frontends/cli/run_checkpoint.h"
#include "frontends/cli/run_extra.h"
#include "shell/program.h"

#include <string>
#include <vector>

namespace norvane {

struct RunOptions {
    std::string geometry;
    bool quiet = false;
    bool recall = false;              ///< goes on from the saved state
    bool save = false;                ///< saves the state at the end
    bool radiation = false;           ///< imports the view factors first
    int plotEvery = 0;                ///< steps between plots; 0: as the geometry says
    int frameEvery = 0;               ///< steps between pictures; 0: none but those that the geometry asks for
    int threads = 0;                  ///< 0: as suits the grid and the machine
    bool compensated = false;         ///< keeps what the commit of a step rounds away
    std::string movie;                ///< file of the film of the pictures; empty: none
    bool force = false;               ///< runs a drawing that a check finds errors in
    bool strict = false;              ///< refuses one that a check has warnings about
    std::vector<std::string> changes; ///< of the table in memory, "DT=2E-5" or "C7=TT 400"
    double time = 0;                  ///< s to run, instead of NT; 0: as the geometry says
    std::string folder;               ///< of all outputs; empty: that of the geometry
    std::string name;                 ///< of all outputs, before "_out"; empty: that of the geometry
    std::string stopFile;             ///< empty: checkstop in the working directory
    std::string summary;              ///< file of the result as JSON; empty: none
    std::vector<std::string> regions; ///< labels of ranges of cells, "radiator=B2:B18"
    CheckpointOptions checkpoints;
    std::vector<RunExtraMaker> extras; ///< in the order in which they come after a step
};

/// Loads a geometry and runs it to its end, as the button Recalc does; gives the exit status.
/// An interrupt or a termination request finishes the step in hand; a second one ends the process.
int runGeometry(const RunOptions& options);

/// The batch start: as above, with the geometry named or found as the program's start does.
int runBatch(const ProgramStart& start);

} // namespace norvane
