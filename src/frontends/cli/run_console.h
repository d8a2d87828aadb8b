#pragma once
// A run of the command line while it goes on.

#include "check/checkup.h"
#include "check/run_watch.h"
#include "frontends/cli/console.h"
#include "frontends/cli/frames.h"
#include "frontends/cli/progress.h"
#include "frontends/cli/run_command.h"
#include "platform/claim.h"

#include <map>
#include <string>
#include <vector>

namespace norvane {

struct ConsoleRun {
    explicit ConsoleRun(const RunOptions& runOptions);

    Console console;
    RunOptions options;
    Progress progress;
    Frames frames;
    bool ran = false;
    bool printed = true;                ///< all that was to be printed
    std::map<std::string, int> bitmaps; ///< names of the snapshots of key FT, with how many were written under each
    Claim files;                        ///< of this model
    Claim folder;                       ///< the working directory, for the stop file
    Checkup checkup;
    RunWatch watch;
    std::int32_t firstStep = 0; ///< step count at the start
    std::int32_t startStep = 0; ///< the same of the run that this one resumes
    std::vector<NamedRange> labels;
    std::vector<RunExtra> extras;
    bool goesOn = false; ///< from a state that was saved
    RunCheckpoints checkpoints;
    bool begun = false; ///< each extra has begun
};

/// Prints a line, unless the run is quiet.
void say(ConsoleRun& run, const std::string& line);

RunContext contextOf(ConsoleRun& run);

/// --time: it sets the stop step, from the start of the run on.
void takeTime(ConsoleRun& run);

/// Ends a run in order, and gives the status that says how it went.
int finish(ConsoleRun& run);

} // namespace norvane
