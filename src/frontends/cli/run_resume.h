#pragma once
// How a run goes on from a checkpoint, and what that shares with writing one.

#include "frontends/cli/run_checkpoint.h"
#include "frontends/cli/run_console.h"

#include <string>
#include <string_view>
#include <vector>

namespace norvane {

constexpr const char* checkpointExtra = "--checkpoint-every"; ///< the name of its entry among the extras
constexpr const char* logPositionName = "log";

SimState& simOf(ConsoleRun& run);
/// Prints lines to standard error.
void complain(ConsoleRun& run, std::string_view text);
std::string logPath(const SimState& sim);

/// Options that shape what the files of a run hold, beside the table.
std::vector<NamedText> settingsOf(const ConsoleRun& run);

/// Reads the checkpoint that the options name and lets the run begin there. Gives exitDone, or a status after a
/// message.
ExitStatus connectResume(ConsoleRun& run);

} // namespace norvane
