#pragma once
// What a check found, in words. Names of files and texts of the table are as they are: a front end makes them harmless.

#include "check/checkup.h"

#include <string>
#include <vector>

namespace norvane {

/// "note", "warning", "error".
const char* severityName(Severity severity);

/// The parts with a separator between them.
std::string joined(const std::vector<std::string>& parts, const char* separator);

/// "none", "sound" ...
const char* limitName(StepLimit kind);

/// "plate.gmt:D17: warning: "TT 3oo": the number ..."
std::string findingLine(const std::string& geometry, const Finding& finding);

/// All findings, how many there are, and what the model is; with `suggests` a time step to write.
std::vector<std::string> checkLines(const std::string& geometry, const Checkup& checkup, bool suggests);

} // namespace norvane
