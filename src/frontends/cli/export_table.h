#pragma once

#include "core/sim_state.h"
#include "frontends/cli/exit_status.h"
#include "frontends/cli/export_command.h"

namespace norvane {

bool asksForTable(const ExportOptions& options);

/// Whether a table may be written as the options have it; a message says what is wrong. Comes before the load.
bool mayExportTable(const ExportOptions& options);

/// Writes the table of a model that stands.
ExitStatus exportTable(const ExportOptions& options, const SimState& sim);

} // namespace norvane
