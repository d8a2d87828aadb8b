#pragma once

#include "frontends/cli/run_extra.h"

namespace norvane {

/// Adds the options that end a run when its values have come to rest. It watches what the extras before it measure.
RunExtraMaker addSteadyOptions(CLI::App* run);

} // namespace norvane
