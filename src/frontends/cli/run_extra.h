#pragma once
// What a run writes or watches beside what the keys of its table ask for. Each kind lives in a file of its own, which
// reads its options of the command line and makes a RunExtra; the run knows no more of it.

#include "core/run_operations.h"
#include "geometry/cell_selection.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace norvane {

struct RunExtra;
struct RunOptions;

/// What an extra may ask of its run.
struct RunContext {
    SimState& sim;
    const RunOptions& options;
    const std::vector<NamedRange>& labels;                 ///< those of --region
    const std::vector<RunExtra>& extras;                   ///< all of the run
    std::function<void(const std::string& line)> say;      ///< to standard output, unless the run is quiet
    std::function<void(const std::string& line)> complain; ///< to standard error
    bool goesOn = false;                                   ///< from a state that was saved, not from the drawing
};

/// A value of a row that was written last.
struct NamedValue {
    std::string name;
    double value = 0;
};

/// An entry that is not filled in is skipped. Faults within a run are reported once each, by `complain`, and remembered
/// for `finish`.
struct RunExtra {
    std::string name;       ///< for messages
    std::int32_t steps = 0; ///< `write` comes after the steps N, 2N ... and after the last one; 0: the last one alone
    std::vector<std::string> endings; ///< of the files that it writes beside the geometry: "_frames.nc"

    /// After the geometry is loaded and the files have their names, before anything is written; the fields of the
    /// drawing are not built yet. Gives what is wrong, which ends the command with status 2; empty: nothing.
    std::function<std::string(const RunContext& run)> prepare;
    /// The model stands (or the state that the run goes on from), and its engine; no step is begun.
    std::function<void(const RunContext& run)> begin;
    std::function<void(const RunContext& run)> write;
    StageWatch watch; ///< where a stage is measured
    /// Ends what it writes; true: all could be written.
    std::function<bool(const RunContext& run)> finish;

    std::function<std::vector<std::string>()> report; ///< lines for the table at the end of the run
    std::function<std::string()> summary;             ///< members of a JSON object: "\"heat\": 1, ..."; or empty
    std::function<std::vector<std::string>()> files;  ///< names of the files that it wrote
    std::function<std::string()> endedBy;             ///< why it set stopFlag at a good end; empty: it did not
    std::function<std::vector<NamedValue>()> lastRow; ///< of what it measures over time

    /// Where its files stand, as a text without line ends, for a checkpoint; and back to there in a run that resumes,
    /// instead of `begin`. What was written later is cut off. Gives what is wrong; empty: nothing. A checkpoint is
    /// taken after the stages of a step and before its `write`, which a run that resumes begins with: what was measured
    /// since the latest row, in these stages too, belongs to the text.
    std::function<std::string()> position;
    std::function<std::string(const RunContext& run, const std::string& position)> goOn;
};

/// Makes an extra from the options that were read; none, where they were not given.
using RunExtraMaker = std::function<std::optional<RunExtra>()>;

} // namespace norvane
