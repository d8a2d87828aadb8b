#pragma once
// What the options of a run change of a loaded geometry before it runs.

#include "frontends/cli/run_command.h"

namespace norvane {

/// Takes --set and --stop-file, and refuses a stop file or a summary that would replace something else. Gives false
/// after a message.
bool takeChanges(const RunOptions& options, SimState& sim);

/// Takes -o and --name, which say where all outputs go. Gives false after a message.
bool takeNames(const RunOptions& options, SimState& sim);

/// Refuses extras whose files would replace the geometry or the summary. Gives false after a message.
bool takeEndings(const RunOptions& options, const SimState& sim, const std::vector<RunExtra>& extras);

} // namespace norvane
