#pragma once

#include "frontends/cli/run_extra.h"

namespace norvane {

/// Adds --balance to "norvane run".
RunExtraMaker addBalanceOptions(CLI::App* run);

} // namespace norvane
