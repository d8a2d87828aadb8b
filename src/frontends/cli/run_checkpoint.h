#pragma once
// Checkpoints of a run, and a run that goes on from one: --checkpoint-every, --resume, --resume-older.
//
// A checkpoint is taken after the stages of a step and before its outputs, and holds how long the files of the run were
// then. The run that goes on cuts them back and begins with these outputs; so it doesn't matter why the earlier run
// ended, which may have written the outputs of a last step, nor what a killed one wrote afterwards.

#include "formats/checkpoint_file.h"
#include "frontends/cli/exit_status.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
#include <string>

namespace norvane {

struct ConsoleRun;

struct CheckpointOptions {
    std::string every; ///< "1000", "30s", "5min"; empty: no checkpoints
    bool resume = false;
    bool older = false; ///< resumes from the checkpoint before the latest one
};

void addCheckpointOptions(CLI::App* run, CheckpointOptions& options);

/// Of one run.
struct RunCheckpoints {
    std::int32_t steps = 0; ///< between two; 0: none by steps
    double seconds = 0;     ///< between two, by the clock; 0: none
    std::string path;
    std::string older;
    std::string fresh; ///< of a checkpoint that is being written
    Checkpoint from;   ///< that the run goes on from
    bool isResumed = false;
    bool keepsOlder = false;   ///< the file under `path` is a good one of this run
    bool removesOlder = false; ///< the older one is of an earlier run
    bool inOutputs = false;   ///< of a step: a stop then would find files written that the checkpoint of the step lacks
    std::int32_t latest = -1; ///< step of the latest checkpoint
    int count = 0;            ///< that were written
    int failures = 0;
    std::string fault; ///< reported last
    std::string table; ///< fingerprints
    std::uint64_t model = 0;
    std::uint64_t radiation = 0;
    std::chrono::steady_clock::time_point lastTime; ///< of a checkpoint, or of the start
};

/// Looks at the options, which gives what the extras are told of. Gives false, after a message, where they are of no
/// use.
bool takeCheckpointOptions(ConsoleRun& run);

/// Connects the checkpoints with the run whose files have their names, and reads the one to go on from. Gives exitDone,
/// or a status after a message.
ExitStatus connectCheckpoints(ConsoleRun& run);

} // namespace norvane
