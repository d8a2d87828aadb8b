#pragma once
// Runs the drawings of a verification case and compares what comes out with what the case expects.

#include "verify/case_file.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace norvane {

/// What a check came to on one grid.
struct GridFigure {
    double value = 0;
    std::optional<double> bound; ///< of its amount
    std::optional<double> order; ///< observed from the grid before to this one
    bool passes = true;
    std::string fault; ///< why there is no value
};

/// A check of the runs of one mode.
struct CheckResult {
    std::size_t check = 0; ///< number in Case::checks
    bool compensated = false;
    std::vector<GridFigure> figures; ///< one for each grid that was run
    std::optional<std::pair<double, double>> between;
    std::optional<std::pair<double, double>> order;
    bool isJudged = false; ///< there is something that a figure can miss
    bool passes = true;
};

/// A profile of one run.
struct ProfileResult {
    std::size_t profile = 0; ///< number in Case::profiles
    std::size_t grid = 0;
    bool compensated = false;
    std::vector<ProfilePoint> points;
};

struct CaseResult {
    CaseFault fault; ///< of a drawing or an expression; then the rest is not whole
    std::vector<CheckResult> checks;
    std::vector<ProfileResult> profiles;
    bool passes = true;
};

struct CaseOptions {
    bool firstGridOnly = false;
    int threads = 1;
    std::function<void(const CaseGrid& grid, bool compensated)> began = [](const CaseGrid&, bool) {};
};

/// Runs all grids of a case in memory, without a file written.
CaseResult runCase(const Case& verified, const CaseOptions& options);

} // namespace norvane
