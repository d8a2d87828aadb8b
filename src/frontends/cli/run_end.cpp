#include "core/number_text.h"
#include "exchange/state_file.h"
#include "frontends/cli/run_console.h"
#include "frontends/cli/run_report.h"
#include "platform/files.h"
#include "platform/terminal_text.h"

#include <cerrno>
#include <cstdio>

#ifdef _WIN32
#    include <io.h>
#else
#    include <unistd.h>
#endif

namespace norvane {

namespace {

bool writesToTerminal() {
#ifdef _WIN32
    return ::_isatty(1) != 0;
#else
    return ::isatty(1) != 0;
#endif
}

bool saveAtEnd(ConsoleRun& run) {
    Program& program = run.console.program;
    if (program.sim.outcome.negativeDensity || run.watch.bad.cell != 0) {
        std::fprintf(stderr, "The state is not saved: it holds %s.\n",
                     program.sim.outcome.negativeDensity ? "negative density" : "values that no gas has");
        return true;
    }
    const bool saved = saveState(program.sim, program.ui);
    if (saved) say(run, "The state is saved in " + program.sim.baseName + "_state.");
    return saved;
}

bool makeMovieAtEnd(ConsoleRun& run) {
    const std::string fault = makeMovie(run.frames, run.options.movie);
    if (fault.empty()) {
        run.frames.film = run.options.movie;
        say(run, "The film " + run.options.movie + " has " + std::to_string(run.frames.paths.size()) + " pictures.");
        return true;
    }
    const std::string rest = run.frames.paths.empty() ? "" : " The pictures " + run.frames.prefix + "*.png stay.";
    std::fprintf(stderr, "No film %s: %s.%s\n", printableName(run.options.movie).c_str(), fault.c_str(),
                 printableName(rest).c_str());
    return false;
}

/// The stamp in the name of a snapshot counts seconds.
void reportReplacedBitmaps(const ConsoleRun& run) {
    int replaced = 0;
    for (const auto& [path, count] : run.bitmaps) replaced += count - 1;
    if (replaced > 0)
        std::fprintf(stderr,
                     "%d of the snapshots of key FT were replaced by one of the same second.\n"
                     "--snapshots N numbers its pictures by their steps instead.\n",
                     replaced);
}

/// Why an extra ended the run, empty: none did.
std::string endedByExtra(const ConsoleRun& run) {
    for (const RunExtra& extra : run.extras) {
        std::string reason = extra.endedBy ? extra.endedBy() : "";
        if (!reason.empty()) return reason;
    }
    return {};
}

void reportEnd(ConsoleRun& run) {
    const SimState& sim = run.console.program.sim;
    const RunOutcome& outcome = sim.outcome;
    run.progress.wipe();
    closeSeries(run.console);
    reportReplacedBitmaps(run);
    if (run.frames.missing > 1) std::fprintf(stderr, "%d pictures in all could not be written.\n", run.frames.missing);
    const std::string end =
        "Step " + std::to_string(sim.stepCount) + " after " + spanText(run.progress.seconds()) + ": ";
    const BadValue& bad = run.watch.bad;
    if (outcome.negativeDensity || bad.cell != 0) {
        const std::string cause = outcome.negativeDensity
                                      ? "the run ended by negative density."
                                      : "the run ended, since the " + std::string(bad.quantity) + " of cell "
                                            + addressOf(sim, bad.cell) + " (point " + std::to_string(bad.cell) + ") is "
                                            + generalText(static_cast<float>(bad.value)) + ".";
        const std::string hint = run.options.geometry.empty()
                                     ? " Try a smaller time step DT."
                                     : "\n" + failureHint(run.options.geometry, run.checkup, run.watch);
        std::fprintf(stderr, "%s%s%s\n", end.c_str(), cause.c_str(), hint.c_str());
        return;
    }
    const std::string reason = endedByExtra(run);
    say(run, end
                 + (!reason.empty()           ? reason
                    : outcome.reachedStopStep ? "the run reached its stop step."
                    : outcome.stopFile        ? "the run was stopped by the file checkstop."
                                              : "the run was stopped by a signal."));
}

/// The files of the model that are there, the log and the state only where this run wrote them.
std::vector<std::string> writtenFiles(const ConsoleRun& run) {
    const SimState& sim = run.console.program.sim;
    std::vector<std::string> files;
    const auto add = [&](const std::string& name, bool isWritten) {
        if (isWritten && stampOf(joinPath(sim.inputDir, name)).exists) files.push_back(name);
    };
    add(sim.outName, true);
    add(sim.baseName + "_log", sim.logEvery > 0);
    const std::int32_t steps = sim.stepCount - run.startStep;
    add(sim.baseName + "_state", run.options.save || (sim.saveEvery > 0 && steps >= sim.saveEvery));
    for (const auto& [path, count] : run.bitmaps) files.push_back(nameOf(path));
    if (!run.frames.film.empty())
        files.push_back(nameOf(run.frames.film));
    else if (!run.frames.paths.empty())
        files.push_back(std::to_string(run.frames.paths.size()) + " pictures " + nameOf(run.frames.prefix) + "*.png");
    for (const RunExtra& extra : run.extras)
        if (extra.files)
            for (const std::string& name : extra.files()) files.push_back(name);
    return files;
}

const char* endName(const ConsoleRun& run) {
    const RunOutcome& outcome = run.console.program.sim.outcome;
    if (outcome.negativeDensity) return "negativeDensity";
    if (run.watch.bad.cell != 0) return "badValue";
    if (!endedByExtra(run).empty()) return "steady";
    if (outcome.reachedStopStep) return "stopStep";
    return outcome.stopFile ? "stopFile" : "signal";
}

/// The table at the end, and the summary; false: the summary can't be written.
bool reportResult(ConsoleRun& run) {
    const SimState& sim = run.console.program.sim;
    RunResult result{
        sim,          run.watch,        run.progress.seconds(), std::int64_t{sim.stepCount} - run.firstStep,
        endName(run), writtenFiles(run)};
    for (const RunExtra& extra : run.extras) {
        if (extra.report)
            for (const std::string& line : extra.report()) result.lines.push_back(line);
        if (extra.summary) result.members.push_back(extra.summary());
    }
    for (const std::string& line : resultLines(result)) say(run, line);
    if (run.options.summary.empty()) return true;
    const FileResult written = replaceFile(run.options.summary, resultJson(result));
    if (!written)
        std::fprintf(stderr, "The summary %s can't be written: %s\n", printableName(run.options.summary).c_str(),
                     written.reason.c_str());
    return static_cast<bool>(written);
}

bool finishExtras(ConsoleRun& run) {
    const RunContext context = contextOf(run);
    bool written = true;
    for (const RunExtra& extra : run.extras)
        if (extra.finish) written = extra.finish(context) && written;
    return written;
}

} // namespace

ConsoleRun::ConsoleRun(const RunOptions& runOptions)
    : options(runOptions), progress(runOptions.quiet, writesToTerminal()) {}

void say(ConsoleRun& run, const std::string& line) {
    if (run.options.quiet) return;
    errno = 0;
    const bool printed = std::printf("%s\n", printableName(line).c_str()) >= 0 && std::fflush(stdout) == 0;
    if (!printed && errno != EPIPE) run.printed = false; // a reader who leaves has read enough
}

RunContext contextOf(ConsoleRun& run) {
    return {run.console.program.sim,
            run.options,
            run.labels,
            run.extras,
            [&run](const std::string& line) { say(run, line); },
            [&run](const std::string& line) {
                run.progress.wipe();
                std::fprintf(stderr, "%s\n", printableName(line).c_str());
            },
            run.goesOn};
}

int finish(ConsoleRun& run) {
    reportEnd(run);
    bool written = true;
    if (run.options.save) written = saveAtEnd(run) && written;
    if (!run.options.movie.empty()) written = makeMovieAtEnd(run) && written;
    if (run.begun) written = finishExtras(run) && written;
    if (!run.options.geometry.empty())
        written = reportResult(run) && written; // a batch start prints no more than it did
    const SimState& sim = run.console.program.sim;
    if (sim.outcome.negativeDensity || run.watch.bad.cell != 0) return exitEndedByModel;
    const ReportedFaults& reported = sim.reported;
    // Not the stop file: the results are whole without it.
    const bool missesOutput =
        reported.log || reported.plotFile || reported.snapshot || reported.state || reported.memory != 0;
    if (!run.printed) std::fprintf(stderr, "norvane: not all could be printed\n");
    if (missesOutput || !written || run.frames.missing > 0 || !run.printed) return exitFileFault;
    return sim.outcome.reachedStopStep || !endedByExtra(run).empty() ? exitDone : exitStoppedEarly;
}

} // namespace norvane
