#include "frontends/cli/run_command.h"

#include "core/number_text.h"
#include "core/run_driver.h"
#include "frontends/cli/exit_status.h"
#include "frontends/cli/progress.h"
#include "geometry/grid_file.h"
#include "platform/files.h"

#include <csignal>
#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace norvane {

namespace {

volatile std::sig_atomic_t stopSignal = 0;

void takeSignal(int number) {
    stopSignal = number;
    std::signal(number, SIG_DFL); // the next one ends the process at once
}

bool writesToTerminal() {
#ifdef _WIN32
    return ::_isatty(1) != 0;
#else
    return ::isatty(1) != 0;
#endif
}

std::string withPlainLineEnds(const std::string& text) {
    std::string plain;
    for (const char c : text)
        if (c != '\r') plain += c;
    while (!plain.empty() && plain.back() == '\n') plain.pop_back();
    return plain;
}

struct ConsoleRun {
    explicit ConsoleRun(bool isQuiet) : quiet(isQuiet), progress(isQuiet, writesToTerminal()) {}

    Program program;
    bool quiet;
    Progress progress;
    std::int64_t densityMessages = 0;
    bool ran = false;
};

/// A model that blows up does so in many cells at once: the first few tell the place.
constexpr std::int64_t maxDensityMessages = 5;

void tell(ConsoleRun& run, const std::string& text) {
    const bool isDensity = text.find("negative density") != std::string::npos;
    if (isDensity && ++run.densityMessages > maxDensityMessages) return;
    run.progress.wipe();
    std::fprintf(stderr, "%s\n", withPlainLineEnds(text).c_str());
}

std::string describedGrid(const SimState& sim) {
    std::string text;
    for (int dim = 1; dim <= sim.nDim; ++dim) text += (dim > 1 ? " x " : "") + std::to_string(sim.cellCount[dim]);
    text += sim.nCells == 1 ? " cell" : " cells";
    if (sim.nsMax > 0) text += ", " + std::to_string(sim.nsMax + 1) + " species";
    return text;
}

void beginRun(ConsoleRun& run) {
    const SimState& sim = run.program.sim;
    run.ran = true;
    run.progress.begin(sim);
    if (run.quiet) return;
    const std::int64_t steps = std::int64_t{sim.stopStep} - sim.stepCount;
    const std::string length = sim.stopStep < 0 ? "until it is stopped" : std::to_string(steps < 1 ? 1 : steps) + " steps";
    std::printf("%s: %s, %s of %s s\n", sim.fileName.c_str(), describedGrid(sim).c_str(), length.c_str(),
                generalText(sim.dt).c_str());
    std::fflush(stdout);
}

void connectInterface(ConsoleRun& run) {
    Interface& ui = run.program.ui;
    ui.showMessage = [&run](const std::string& text) { tell(run, text); };
    ui.yieldToInterface = [&run] {
        if (stopSignal != 0) run.program.sim.stopFlag = 1;
    };
    ui.runBegan = [&run] { beginRun(run); };
    ui.stepBegan = [&run] { run.progress.step(run.program.sim); };
}

bool outputFailed(const ToldFaults& told) { return told.log || told.plotFile || told.snapshot; }

/// Why the run ended, and the status that says so.
int reportEnd(ConsoleRun& run) {
    const SimState& sim = run.program.sim;
    const RunOutcome& outcome = sim.outcome;
    run.progress.wipe();
    if (run.densityMessages > maxDensityMessages)
        std::fprintf(stderr, "... and %lld more such messages\n",
                     static_cast<long long>(run.densityMessages - maxDensityMessages));
    const char* why = outcome.negativeDensity   ? "ended by negative density: try a smaller time step DT"
                      : outcome.reachedStopStep ? "reached its stop step"
                      : outcome.stopFile        ? "stopped by the file checkstop"
                                                : "stopped by a signal";
    const std::string span = spanText(run.progress.seconds());
    std::FILE* const to = outcome.negativeDensity ? stderr : stdout;
    if (!run.quiet || outcome.negativeDensity)
        std::fprintf(to, "Step %d after %s: the run %s.\n", sim.stepCount, span.c_str(), why);
    if (outcome.negativeDensity) return exitEndedByModel;
    if (outputFailed(sim.told)) return exitFileFault;
    return outcome.reachedStopStep ? exitDone : exitStoppedEarly;
}

void catchSignals() {
    std::signal(SIGINT, takeSignal);
    std::signal(SIGTERM, takeSignal);
}

} // namespace

int runGeometry(const RunOptions& options) {
    ConsoleRun run(options.quiet);
    Program& program = run.program;
    connectProgram(program);
    connectInterface(run);
    selectGeometry(program, options.geometry);
    program.sim.batchMode = 1; // the cell structure stands in a line of our own
    const FileResult readable = tryOpenForReading(options.geometry);
    loadGeometry(program.sim, program.ui);
    if (!readable) return exitFileFault;
    if (program.sim.nDim == 0) return exitNoModel;
    catchSignals();
    runSimulation(program.sim, program.ui, program.operations);
    return reportEnd(run);
}

int runBatch(const ProgramStart& start) {
    ConsoleRun run(false);
    connectProgram(run.program);
    connectInterface(run);
    catchSignals();
    startProgram(run.program, start);
    return run.ran ? reportEnd(run) : static_cast<int>(exitNoModel);
}

} // namespace norvane
