#pragma once
// What a run tells about its drawing before it starts, and about its fields when it has ended.

#include "check/checkup.h"
#include "check/run_watch.h"

#include <string>
#include <vector>

namespace norvane {

/// The first few findings, and how to see the others; a line each. Notes are left out.
std::vector<std::string> findingLines(const std::string& geometry, const Findings& findings);

/// "C4", the address of a cell in the table.
std::string addressOf(const SimState& sim, std::int32_t cell);

/// Why a run may have failed, and what to do about it.
std::string failureHint(const std::string& geometry, const Checkup& checkup, const RunWatch& watch);

/// How a run ended, for its table and its summary.
struct RunResult {
    const SimState& sim;
    const RunWatch& watch;
    double seconds;                     ///< of the wall clock
    std::int64_t steps;                 ///< of this run
    std::string end;                    ///< "stopStep", "negativeDensity", "badValue", "steady", "stopFile",
                                        ///< "signal"
    std::vector<std::string> files;     ///< written, by their names
    std::vector<std::string> lines{};   ///< of extras, for the table
    std::vector<std::string> members{}; ///< of extras, for the JSON object
};

/// The table of extremes, rate and files, a line each.
std::vector<std::string> resultLines(const RunResult& result);

/// The same as JSON.
std::string resultJson(const RunResult& result);

} // namespace norvane
