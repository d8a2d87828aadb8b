#pragma once

#include "frontends/cli/exit_status.h"

#include <string>
#include <vector>

namespace norvane {

struct VerifyOptions {
    std::vector<std::string> folders;
    std::string format = "text"; ///< or "json"
    bool isShort = false;        ///< the first grid of each case alone
    bool quiet = false;          ///< no line for each run on standard error
    int threads = 1;
};

/// Runs verification cases and prints how far their results are from what they are compared with. Gives exitDone where
/// all pass, exitEndedByModel where a check fails, exitNoModel or exitFileFault where a case can't be run or read.
ExitStatus verifyFolders(const VerifyOptions& options);

} // namespace norvane
