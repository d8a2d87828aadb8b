#include "frontends/cli/run_command.h"

#include "core/number_text.h"
#include "core/run_driver.h"
#include "display/snapshot.h"
#include "drawing/image_surface.h"
#include "exchange/state_file.h"
#include "exchange/view_factors.h"
#include "frontends/cli/run_console.h"
#include "frontends/cli/run_report.h"
#include "frontends/cli/run_setup.h"
#include "frontends/cli/stop_signals.h"
#include "platform/files.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <new>

namespace norvane {

namespace {

/// " (process 123)", or nothing where its number is not known.
std::string processText(int number) { return number > 0 ? " (process " + std::to_string(number) + ")" : ""; }

/// The build has read the keys: what the command line names takes their place.
void beginRun(ConsoleRun& run) {
    SimState& sim = run.console.program.sim;
    run.ran = true;
    run.watch = {};
    run.firstStep = sim.stepCount;
    if (!run.checkpoints.isResumed) run.startStep = sim.stepCount;
    if (run.options.plotEvery > 0) sim.updateEvery = run.options.plotEvery;
    if (run.options.frameEvery > 0) sim.frameEvery = run.options.frameEvery;
    takeTime(run);
    run.progress.begin(sim);
    const std::int64_t steps = std::int64_t{sim.stopStep} - sim.stepCount;
    const std::string size = " of " + generalText(sim.dt) + " s";
    const std::string length = sim.stopStep < 0                          ? "steps" + size + " until it is stopped"
                               : steps == 0 && run.checkpoints.isResumed ? "no step left"
                               : steps <= 1                              ? "1 step" + size
                                                                         : std::to_string(steps) + " steps" + size;
    const std::string start = sim.stepCount > 0 ? " from step " + std::to_string(sim.stepCount) : "";
    say(run, sim.fileName + ": " + describedGrid(sim) + ", " + length + start);
    const RunContext context = contextOf(run);
    for (const RunExtra& extra : run.extras)
        if (extra.begin && !run.checkpoints.isResumed) extra.begin(context); // else they went on with the fields
    run.begun = true;
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
    program.ui.yieldToInterface = [&run] {
        if (isStopSignalled() && !run.checkpoints.inOutputs) run.console.program.sim.stopFlag = true;
    };
    program.ui.runBegan = [&run] { beginRun(run); };
    program.ui.stepBegan = [&run] {
        run.checkpoints.inOutputs = false;
        run.progress.step(run.console.program.sim);
    };
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

/// Makes the extras and lets them look at the options; they come after all outputs that keys ask for. Gives false,
/// after a message, where something is wrong with the options.
bool prepareExtras(ConsoleRun& run) {
    const auto refuse = [](const std::string& option, const std::string& fault) {
        std::fprintf(stderr, "%s: %s\n", printableName(option).c_str(), printableName(fault).c_str());
        return false;
    };
    for (const std::string& text : run.options.regions) {
        NamedRange named;
        std::vector<std::int32_t> cells;
        std::string fault = parseNamedRange(text, named);
        if (fault.empty()) fault = cellsOfRange(run.console.program.sim, named.range, {}, cells);
        const bool isTwice = std::any_of(run.labels.begin(), run.labels.end(),
                                         [&](const NamedRange& label) { return label.name == named.name; });
        if (fault.empty() && isTwice) fault = "there is a region of that name already";
        if (!fault.empty()) return refuse("--region " + text, fault);
        run.labels.push_back(named);
    }
    for (const RunExtraMaker& make : run.options.extras)
        if (std::optional<RunExtra> extra = make()) run.extras.push_back(std::move(*extra));
    const RunContext context = contextOf(run);
    for (const RunExtra& extra : run.extras) {
        const std::string fault = extra.prepare ? extra.prepare(context) : "";
        if (!fault.empty()) return refuse(extra.name, fault);
    }
    return true;
}

/// Their places in the schedule, after all outputs that keys ask for.
void connectExtras(ConsoleRun& run) {
    RunOperations& operations = run.console.program.operations;
    for (const RunExtra& extra : run.extras) {
        if (extra.write)
            operations.outputs.push_back({.name = extra.name.c_str(),
                                          .steps = extra.steps,
                                          .lastOfInterval = true,
                                          .atStop = true,
                                          .write = [&run, &extra](SimState&) { extra.write(contextOf(run)); }});
        if (extra.watch.wants) operations.watches.push_back(extra.watch);
    }
}

} // namespace

void takeTime(ConsoleRun& run) {
    SimState& sim = run.console.program.sim;
    if (run.options.time > 0 && sim.dt > 0)
        sim.stopStep = toInt32(run.startStep + std::ceil(run.options.time / double(sim.dt) - 1e-6));
}

int runGeometry(const RunOptions& options) {
    ConsoleRun run(options);
    if (!options.movie.empty() && !canMakeMovies()) {
        std::fprintf(stderr, "--movie: ffmpeg is not installed; without it there is no film\n");
        return exitBadUse;
    }
    connectRun(run);
    Program& program = run.console.program;
    program.sim.threads = options.threads;
    program.sim.compensated = options.compensated;
    const ExitStatus loaded = loadFor(run.console, options.geometry);
    if (loaded != exitDone) return loaded;
    if (!takeChanges(options, program.sim)) return exitBadUse;
    if (wouldOverwrite(options.geometry, program.sim.stopFileName)) return exitBadUse;
    if (!isWorthARun(run)) return exitNoModel;
    program.operations.outputs.push_back(watchOf(run));
    if (options.radiation) importViewFactors(program.sim, program.ui);
    if (options.radiation && !program.sim.radActive) return exitFileFault; // reported by a message
    if (!takeNames(options, program.sim)) return exitBadUse;
    run.goesOn = options.recall;
    if (!takeCheckpointOptions(run)) return exitBadUse;
    if (!prepareExtras(run) || !takeEndings(options, program.sim, run.extras)) return exitBadUse;
    connectExtras(run);
    if (!claimFiles(run)) return exitFileFault;
    run.frames.prefix = absolutePath(program.sim.inputDir + "/" + program.sim.baseName + "_");
    const ExitStatus connected = connectCheckpoints(run);
    if (connected != exitDone) return connected;
    catchStopSignals();
    if (options.recall) {
        if (!recallState(program.sim, program.ui)) return exitFileFault;
        continueRun(program.sim, program.ui, program.operations);
    } else {
        runSimulation(program.sim, program.ui, program.operations);
    }
    if (run.checkpoints.isResumed && !run.ran) return exitFileFault; // reported by a message
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
