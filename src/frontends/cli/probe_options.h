#pragma once

#include "frontends/cli/run_extra.h"

namespace norvane {

/// Adds the options of the probes to "norvane run". A file m.probes beside the geometry m.gmt counts as well.
RunExtraMaker addProbeOptions(CLI::App* run);

} // namespace norvane
