#include "frontends/cli/run_command.h"

#include "core/number_text.h"
#include "core/run_driver.h"
#include "display/snapshot.h"
#include "drawing/image_surface.h"
#include "exchange/state_file.h"
#include "exchange/view_factors.h"
#include "frontends/cli/console.h"
#include "frontends/cli/frames.h"
#include "frontends/cli/progress.h"
#include "frontends/cli/run_report.h"
#include "frontends/cli/run_setup.h"
#include "frontends/cli/stop_signals.h"
#include "platform/claim.h"
#include "platform/files.h"
#include "platform/terminal_text.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <new>

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

/// " (process 123)", or nothing where its number is not known.
std::string processText(int number) { return number > 0 ? " (process " + std::to_string(number) + ")" : ""; }

struct ConsoleRun {
    explicit ConsoleRun(const RunOptions& runOptions)
        : options(runOptions), progress(runOptions.quiet, writesToTerminal()) {}

    Console console;
    RunOptions options;
    Progress progress;
    Frames frames;
    bool ran = false;
    bool printed = true;                ///< all that was to be printed
    std::map<std::string, int> bitmaps; ///< names of the snapshots of key FT, with how many were written under each
    Claim files;                        ///< of this model
    Claim folder;                       ///< the working directory, for the stop file
    Checkup checkup;
    RunWatch watch;
    std::int32_t firstStep = 0; ///< step count at the start
};

void say(ConsoleRun& run, const std::string& line) {
    if (run.options.quiet) return;
    errno = 0;
    const bool printed = std::printf("%s\n", printableName(line).c_str()) >= 0 && std::fflush(stdout) == 0;
    if (!printed && errno != EPIPE) run.printed = false; // a reader who leaves has read enough
}

/// The build has read the keys: what the command line names takes their place.
void beginRun(ConsoleRun& run) {
    SimState& sim = run.console.program.sim;
    run.ran = true;
    run.watch = {};
    run.firstStep = sim.stepCount;
    if (run.options.plotEvery > 0) sim.updateEvery = run.options.plotEvery;
    if (run.options.frameEvery > 0) sim.frameEvery = run.options.frameEvery;
    if (run.options.time > 0 && sim.dt > 0)
        sim.stopStep = toInt32(sim.stepCount + std::ceil(run.options.time / double(sim.dt) - 1e-6));
    run.progress.begin(sim);
    const std::int64_t steps = std::int64_t{sim.stopStep} - sim.stepCount;
    const std::string size = " of " + generalText(sim.dt) + " s";
    const std::string length = sim.stopStep < 0 ? "steps" + size + " until it is stopped"
                               : steps <= 1     ? "1 step" + size
                                                : std::to_string(steps) + " steps" + size;
    const std::string start = sim.stepCount > 0 ? " from step " + std::to_string(sim.stepCount) : "";
    say(run, sim.fileName + ": " + describedGrid(sim) + ", " + length + start);
}

/// A snapshot is drawn on an image that exists for it alone: the plots in between cost no drawing.
void takeDrawnSnapshot(ConsoleRun& run, SimState& sim, Interface& ui) {
    const DrawnSurface drawn(ui.NV_out.Picture1);
    ui.NV_out.Picture1.savePicture = [&run, save = ui.NV_out.Picture1.savePicture](const std::string& path) {
        std::string reason = save(path);
        if (reason.empty()) run.bitmaps[path] += 1;
        return reason;
    };
    takeSnapshot(sim, ui, false);
}

/// Ends a run whose fields hold what no gas has; comes after the plot, so that it can be looked at.
Output watchOf(ConsoleRun& run) {
    return {
        .name = "look at the fields", .every = &SimState::updateEvery, .atStop = true, .write = [&run](SimState& sim) {
            run.watch.look(sim);
            if (run.watch.bad.cell != 0) sim.stopFlag = true;
        }};
}

void connectRun(ConsoleRun& run) {
    connectConsole(run.console);
    Program& program = run.console.program;
    run.console.beforeMessage = [&run] { run.progress.wipe(); };
    program.ui.yieldToInterface = [&program] {
        if (isStopSignalled()) program.sim.stopFlag = true;
    };
    program.ui.runBegan = [&run] { beginRun(run); };
    program.ui.stepBegan = [&run] { run.progress.step(run.console.program.sim); };
    program.operations.output("snapshot").write = [&run](SimState& sim) {
        Interface& ui = run.console.program.ui;
        if (run.options.frameEvery > 0)
            takeFrame(run.frames, sim, ui);
        else
            takeDrawnSnapshot(run, sim, ui);
    };
}

/// Two runs that write the same files would leave a mixture. Gives false, after a message, where another run has them.
bool claimFiles(ConsoleRun& run) {
    const SimState& sim = run.console.program.sim;
    int other = 0;
    run.files = Claim::alone(sim.inputDir, sim.baseName, other);
    if (other != 0) {
        std::fprintf(stderr,
                     "Another run%s is writing the files %s_* in this folder.\n"
                     "Wait for it, stop it, or run a copy of the geometry in a folder of its own.\n",
                     processText(other).c_str(), printableName(sim.baseName).c_str());
        return false;
    }
    run.folder = Claim::shared(folderOf(absolutePath(sim.stopFileName)), nameOf(sim.stopFileName), other);
    if (other != 0)
        std::fprintf(stderr,
                     "Another run%s has the same working directory, and so the same stop file %s:\n"
                     "a 1 in it ends the one that reads it first, and only that.\n"
                     "--stop-file gives a run one of its own.\n",
                     processText(other).c_str(), printableName(sim.stopFileName).c_str());
    return true;
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
    say(run, end
                 + (outcome.reachedStopStep ? "the run reached its stop step."
                    : outcome.stopFile      ? "the run was stopped by the file checkstop."
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
    const std::int32_t steps = sim.stepCount - run.firstStep;
    add(sim.baseName + "_state", run.options.save || (sim.saveEvery > 0 && steps >= sim.saveEvery));
    for (const auto& [path, count] : run.bitmaps) files.push_back(nameOf(path));
    if (!run.frames.paths.empty())
        files.push_back(std::to_string(run.frames.paths.size()) + " pictures " + nameOf(run.frames.prefix) + "*.png");
    return files;
}

const char* endName(const ConsoleRun& run) {
    const RunOutcome& outcome = run.console.program.sim.outcome;
    if (outcome.negativeDensity) return "negativeDensity";
    if (run.watch.bad.cell != 0) return "badValue";
    if (outcome.reachedStopStep) return "stopStep";
    return outcome.stopFile ? "stopFile" : "signal";
}

/// The table at the end, and the summary; false: the summary can't be written.
bool reportResult(ConsoleRun& run) {
    const SimState& sim = run.console.program.sim;
    const RunResult result{
        sim,          run.watch,        run.progress.seconds(), std::int64_t{sim.stepCount} - run.firstStep,
        endName(run), writtenFiles(run)};
    for (const std::string& line : resultLines(result)) say(run, line);
    if (run.options.summary.empty()) return true;
    const FileResult written = replaceFile(run.options.summary, resultJson(result));
    if (!written)
        std::fprintf(stderr, "The summary %s can't be written: %s\n", printableName(run.options.summary).c_str(),
                     written.reason.c_str());
    return static_cast<bool>(written);
}

/// Ends a run in order, and gives the status that says how it went.
int finish(ConsoleRun& run) {
    reportEnd(run);
    bool written = true;
    if (run.options.save) written = saveAtEnd(run) && written;
    if (!run.options.movie.empty()) written = makeMovieAtEnd(run) && written;
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
    return sim.outcome.reachedStopStep ? exitDone : exitStoppedEarly;
}

/// Looks at the drawing, and prints the first findings. Gives false where it is not to be run.
bool isWorthARun(ConsoleRun& run) {
    Program& program = run.console.program;
    RunEvents silent; // the run builds the model again, and reports what there is to report
    try {
        run.checkup = checkLoaded(program.sim, silent);
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "There is not enough memory to check the drawing; it is run unchecked.\n");
        program.sim.runMode = modeGeometryRead;
        program.sim.onlyLooks = false;
        return true;
    }
    const Findings& findings = run.checkup.findings;
    if (!run.options.quiet || findings.errors > 0 || run.options.strict)
        for (const std::string& line : findingLines(run.options.geometry, findings))
            std::fprintf(stderr, "%s\n", line.c_str());
    if (findings.errors > 0 && !run.options.force) {
        std::fprintf(stderr, "This drawing is not run; mend it, or run it all the same with --force.\n");
        return false;
    }
    if (findings.warnings == 0 || !run.options.strict) return true;
    std::fprintf(stderr, "This drawing is not run, since --strict refuses warnings.\n");
    return false;
}

} // namespace

int runGeometry(const RunOptions& options) {
    ConsoleRun run(options);
    if (!options.movie.empty() && !canMakeMovies()) {
        std::fprintf(stderr, "--movie: ffmpeg is not installed; without it there is no film\n");
        return exitBadUse;
    }
    connectRun(run);
    Program& program = run.console.program;
    program.sim.threads = options.threads;
    const ExitStatus loaded = loadFor(run.console, options.geometry);
    if (loaded != exitDone) return loaded;
    if (!takeChanges(options, program.sim)) return exitBadUse;
    if (wouldOverwrite(options.geometry, program.sim.stopFileName)) return exitBadUse;
    if (!isWorthARun(run)) return exitNoModel;
    program.operations.outputs.push_back(watchOf(run));
    if (options.radiation) importViewFactors(program.sim, program.ui);
    if (options.radiation && !program.sim.radActive) return exitFileFault; // reported by a message
    if (!takeNames(options, program.sim)) return exitBadUse;
    if (!claimFiles(run)) return exitFileFault;
    run.frames.prefix = absolutePath(program.sim.inputDir + "/" + program.sim.baseName + "_");
    catchStopSignals();
    if (options.recall) {
        if (!recallState(program.sim, program.ui)) return exitFileFault;
        continueRun(program.sim, program.ui, program.operations);
    } else {
        runSimulation(program.sim, program.ui, program.operations);
    }
    return finish(run);
}

int runBatch(const ProgramStart& start) {
    ConsoleRun run({});
    connectRun(run);
    catchStopSignals();
    bool isTaken = false;
    ProgramStart claiming = start;
    claiming.mayRun = [&] {
        isTaken = run.console.program.sim.nDim > 0 && !claimFiles(run);
        return !isTaken;
    };
    startProgram(run.console.program, claiming);
    if (isTaken) return exitFileFault;
    if (run.ran) return finish(run);
    return run.console.program.sim.reported.geometry ? exitFileFault : exitNoModel;
}

} // namespace norvane
