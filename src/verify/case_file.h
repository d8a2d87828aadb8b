#pragma once
// A verification case as its folder tells it: drawings, and what their results are compared with.

#include "verify/evaluation.h"
#include "verify/expression.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace norvane {

/// What a result is compared with.
enum class CheckKind : std::uint8_t {
    discrete,   ///< the exact solution of the discrete equations: only rounding remains
    continuous, ///< the solution of the differential equations, or a published one
};

/// How a run rounds.
struct RunModes {
    bool plain = true;
    bool compensated = false;
};

struct CaseGrid {
    std::string name;
    std::string drawing;              ///< path of the table, relative to the folder
    std::vector<std::string> changes; ///< of the table in memory, as "norvane run --set" takes them
    std::vector<Expression> values;   ///< of the names that all grids give, in the order of Case::symbols
    std::vector<std::string> ranges;  ///< of cells, likewise
};

/// Values of an expression after each `every`-th step, from the start on: a table with the columns n, t, value.
struct CaseRecord {
    std::int64_t every = 1;
    Expression body;
};

struct CaseCheck {
    std::string title;
    CheckKind kind = CheckKind::continuous;
    RunModes modes;
    Expression measure;
    /// The largest permitted amount, one for all grids or one for each; none where a grid has no bound. Empty: none.
    std::vector<std::optional<Expression>> within;
    std::optional<std::pair<Expression, Expression>> between; ///< the smallest and the largest permitted value
    std::optional<std::pair<Expression, Expression>> order;   ///< likewise of the order observed from grid to grid
    std::string orderWith;                                    ///< the name of grids that it is the order in
    std::string given;                                        ///< the acceptance first set, where it was another one
    std::string note;
};

struct CaseProfile {
    std::string title;
    Expression points;
};

struct Case {
    std::string folder;
    std::string title;
    std::vector<std::string> about; ///< paragraphs
    std::vector<std::string> sources;
    RunModes modes;
    Symbols symbols;              ///< names: those of the grids, then those of `lets`; tables: written, then recorded
    std::vector<Expression> lets; ///< what the last of the names stand for
    std::vector<TableRows> tables;
    std::vector<CaseRecord> records;
    std::vector<CaseGrid> grids; ///< from coarse to fine
    std::vector<CaseCheck> checks;
    std::vector<CaseProfile> profiles;
};

/// What is wrong with a case.
struct CaseFault {
    bool isOfFile = false; ///< the file can't be read
    std::string text;      ///< with the name of the file; empty: nothing
};

/// Reads FOLDER/case.txt, whose bytes may be anything.
CaseFault readCase(const std::string& folder, Case& into);

} // namespace norvane
