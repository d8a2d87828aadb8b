#pragma once
// A picture of a drawing that shows what each cell is, in the shape of the table.

#include "check/finding.h"
#include "core/sim_state.h"
#include "platform/files.h"

#include <string>

namespace norvane {

/// Writes the picture of a model that stands; the ending of the name tells the format. Row numbers and column letters
/// are those of the table; the cells of findings are framed. Faults: those of files.
FileResult writeKindPicture(const SimState& sim, const Findings& findings, const std::string& path);

/// Whether a name ends in one of the formats.
bool isPictureName(const std::string& path);

} // namespace norvane
