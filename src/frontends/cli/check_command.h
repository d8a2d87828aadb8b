#pragma once

#include "check/checkup.h"
#include "frontends/cli/exit_status.h"

#include <string>
#include <vector>

namespace norvane {

struct CheckOptions {
    std::vector<std::string> geometries;
    std::string format = "text"; ///< or "json"
    bool strict = false;         ///< warnings count as errors
    bool suggest = false;        ///< print a time step to write
    std::string picture;         ///< of what each cell is; empty: none
};

/// Prints what is odd about geometries, and what they are. Gives exitDone, or exitNoModel where one has an error, or
/// with `strict` a warning.
ExitStatus checkGeometries(const CheckOptions& options);

} // namespace norvane
