#include "frontends/cli/run_checkpoint.h"

#include "core/number_text.h"
#include "core/run_memory.h"
#include "frontends/cli/run_resume.h"
#include "frontends/cli/stop_signals.h"
#include "geometry/table_text.h"
#include "platform/files.h"
#include "platform/sealed_file.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace norvane {

namespace {

using Clock = std::chrono::steady_clock;

#ifdef NORVANE_NETCDF
constexpr bool hasCheckpoints = true;
#else
constexpr bool hasCheckpoints = false;

} // namespace

std::string writeCheckpoint(const std::string&, SimState&, const Checkpoint&) { return {}; }

std::string readCheckpoint(const std::string&, Checkpoint&) { return {}; }

std::string readCheckpointFields(const std::string&, SimState&) { return {}; }

namespace {
#endif

/// "1000", "30s", "5min", "2h". Gives what is wrong; empty: nothing.
std::string parseInterval(const std::string& text, RunCheckpoints& checkpoints) {
    constexpr double longest = 1e9; // s
    std::size_t length = 0;
    const double number = numericPrefix(text, length);
    const std::string unit = text.substr(length);
    const bool isPositive = length > 0 && number > 0 && number <= longest;
    double seconds = 0;
    for (const auto& [name, value] : {std::pair{"s", 1.0}, {"min", 60.0}, {"h", 3600.0}})
        if (unit == name) seconds = number * value;
    if (isPositive && seconds > 0)
        checkpoints.seconds = seconds;
    else if (isPositive && unit.empty() && number == std::floor(number))
        checkpoints.steps = static_cast<std::int32_t>(number);
    else
        return "\"" + text + "\" is no number of steps, such as 1000, and no time, such as 30s, 5min or 2h";
    return {};
}

std::vector<NamedText> positionsOf(const ConsoleRun& run, const SimState& sim) {
    std::vector<NamedText> positions;
    if (sim.logEvery > 0) positions.push_back({logPositionName, std::to_string(stampOf(logPath(sim)).size)});
    for (const RunExtra& extra : run.extras)
        if (extra.position) positions.push_back({extra.name, extra.position()});
    return positions;
}

Checkpoint checkpointOf(ConsoleRun& run, bool afterOutputs) {
    RunCheckpoints& checkpoints = run.checkpoints;
    const SimState& sim = simOf(run);
    if (checkpoints.table.empty()) {
        checkpoints.table = tableFingerprint(sim);
        checkpoints.model = modelFingerprint(sim);
        checkpoints.radiation = radiationFingerprint(sim);
    }
    return {"norvane " NORVANE_VERSION,
            sim.stepCount,
            run.startStep,
            sim.stopStep,
            afterOutputs,
            checkpoints.table,
            checkpoints.model,
            checkpoints.radiation,
            sim.spectrumRandom.state,
            settingsOf(run),
            positionsOf(run, sim)};
}

/// What the checkpoint says of the other files must hold after a power cut, too.
void flushFiles(const ConsoleRun& run, const SimState& sim) {
    const auto flush = [](const std::string& path) {
        if (stampOf(path).exists) flushFile(path); // its own writes tell of faults
    };
    if (sim.logEvery > 0) flush(logPath(sim));
    for (const RunExtra& extra : run.extras)
        for (const std::string& ending : extra.endings)
            if (extra.name != checkpointExtra) flush(joinPath(sim.inputDir, sim.baseName + ending));
}

std::string writeAndPublish(ConsoleRun& run, bool afterOutputs) {
    RunCheckpoints& checkpoints = run.checkpoints;
    SimState& sim = simOf(run);
    const BadValue bad = firstBadValue(sim);
    if (bad.cell != 0) return "the fields hold a " + std::string(bad.quantity) + " that no gas has";
    std::string fault = writeCheckpoint(checkpoints.fresh, sim, checkpointOf(run, afterOutputs));
    if (!fault.empty()) return fault;
    flushFiles(run, sim);
    const FileResult published =
        publishFile(checkpoints.fresh, checkpoints.path, checkpoints.keepsOlder ? checkpoints.older : "");
    if (!published) return published.reason;
    if (std::exchange(checkpoints.removesOlder, false)) removeFile(checkpoints.older);
    checkpoints.keepsOlder = true;
    checkpoints.latest = sim.stepCount;
    checkpoints.count += 1;
    return {};
}

/// The next checkpoint is written whatever becomes of this one. The same fault is told once.
void store(ConsoleRun& run, bool afterOutputs) {
    RunCheckpoints& checkpoints = run.checkpoints;
    const std::string fault = writeAndPublish(run, afterOutputs);
    checkpoints.lastTime = Clock::now();
    if (!fault.empty()) checkpoints.failures += 1;
    if (!fault.empty() && fault != checkpoints.fault)
        complain(run, "No checkpoint of step " + std::to_string(simOf(run).stepCount) + " in "
                          + nameOf(checkpoints.path) + ": " + fault + ".\nThe run goes on"
                          + (checkpoints.latest < 0
                                 ? "."
                                 : "; the checkpoint of step " + std::to_string(checkpoints.latest) + " stays."));
    checkpoints.fault = fault;
}

void beforeOutputs(ConsoleRun& run) {
    RunCheckpoints& checkpoints = run.checkpoints;
    const SimState& sim = simOf(run);
    checkpoints.inOutputs = true;
    const bool isAsked = takeCheckpointSignal();
    const bool isDue =
        (checkpoints.steps > 0 && sim.stepCount % checkpoints.steps == 0) || sim.stopFlag || isAsked
        || (checkpoints.seconds > 0
            && Clock::now() - checkpoints.lastTime >= std::chrono::duration<double>(checkpoints.seconds));
    if (isDue && !sim.outcome.negativeDensity && sim.stepCount != checkpoints.latest) store(run, false);
    if (isAsked && sim.stepCount == checkpoints.latest) {
        run.progress.wipe();
        say(run, "Checkpoint of step " + std::to_string(sim.stepCount) + " in " + nameOf(checkpoints.path) + ".");
    }
}

bool finishCheckpoints(ConsoleRun& run) {
    RunCheckpoints& checkpoints = run.checkpoints;
    const SimState& sim = simOf(run);
    if (checkpoints.steps == 0 && checkpoints.seconds == 0) return true;
    // The stop file is read after the outputs of a step.
    if (sim.outcome.stopFile && !sim.outcome.negativeDensity && checkpoints.latest != sim.stepCount) store(run, true);
    if (!sim.outcome.reachedStopStep && checkpoints.latest == sim.stepCount)
        say(run, "The same command with --resume goes on from step " + std::to_string(sim.stepCount) + ".");
    if (checkpoints.failures > 1)
        complain(run, std::to_string(checkpoints.failures) + " checkpoints in all could not be written.");
    return checkpoints.failures == 0;
}

/// Checkpoints take the place of checkpoints alone: a netCDF file of this name, and nothing else. Empty: nothing is
/// lost.
std::string faultOfCheckpointFiles(const RunContext& run) {
    for (const char* const ending : {"_checkpoint.nc", "_checkpoint_old.nc"}) {
        const std::string path = joinPath(run.sim.inputDir, run.sim.baseName + ending);
        if (!stampOf(path).exists) continue;
        std::string beginning;
        const FileResult read = readBeginning(path, 4, beginning);
        if (!read) return nameOf(path) + " can't be read: " + read.reason;
        if (beginning != "\x89HDF") return nameOf(path) + " holds something else, which would be lost; rename it";
    }
    return {};
}

} // namespace

SimState& simOf(ConsoleRun& run) { return run.console.program.sim; }

void complain(ConsoleRun& run, std::string_view text) {
    const RunContext context = contextOf(run);
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        context.complain(std::string(line));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
}

std::string logPath(const SimState& sim) { return joinPath(sim.inputDir, sim.baseName + "_log"); }

std::vector<NamedText> settingsOf(const ConsoleRun& run) {
    const RunOptions& options = run.options;
    std::vector<NamedText> settings;
    if (options.plotEvery > 0) settings.push_back({"--plot-every", std::to_string(options.plotEvery)});
    if (options.frameEvery > 0) settings.push_back({"--snapshots", std::to_string(options.frameEvery)});
    if (options.compensated) settings.push_back({"--compensated", ""});
    if (options.radiation) settings.push_back({"--radiation", ""});
    for (const RunExtra& extra : run.extras)
        if (extra.name != checkpointExtra)
            settings.push_back({extra.name, extra.steps > 0 ? "every " + std::to_string(extra.steps) + " steps" : ""});
    return settings;
}

void addCheckpointOptions(CLI::App* run, CheckpointOptions& options) {
    run->add_option(checkpointExtra, options.every,
                    "keep all that an exact continuation needs in m_checkpoint.nc, every N steps or 30s, 5min, 2h; "
                    "also at the end, after Ctrl-C, and at SIGUSR1")
        ->type_name("N|TIME")
        ->check(CLI::Validator(
            [](const std::string& text) {
                RunCheckpoints ignored;
                return parseInterval(text, ignored);
            },
            ""));
    run->add_flag("--resume", options.resume, "go on from m_checkpoint.nc as if the run had not stopped");
    run->add_flag("--resume-older", options.older, "the same from the checkpoint before, m_checkpoint_old.nc");
}

bool takeCheckpointOptions(ConsoleRun& run) {
    const CheckpointOptions& options = run.options.checkpoints;
    RunCheckpoints& checkpoints = run.checkpoints;
    checkpoints.isResumed = options.resume || options.older;
    if (options.every.empty() && !checkpoints.isResumed) return true;
    if (!options.every.empty()) parseInterval(options.every, checkpoints);
    std::string fault;
    if (!hasCheckpoints)
        fault = "--checkpoint-every and --resume: this program was built without netCDF, and has no checkpoints";
    else if (options.resume && options.older)
        fault = "--resume takes the latest checkpoint, --resume-older the one before; give one of them";
    else if (checkpoints.isResumed && run.options.recall)
        fault = "--resume goes on from a checkpoint, --recall from the saved state; give one of them";
    if (!fault.empty()) {
        complain(run, fault);
        return false;
    }
    run.goesOn = run.goesOn || checkpoints.isResumed;
    if (!options.every.empty()) catchCheckpointSignal();
    RunExtra extra;
    extra.name = checkpointExtra;
    extra.endings = {"_checkpoint.nc", "_checkpoint_old.nc"};
    if (!checkpoints.isResumed) extra.prepare = faultOfCheckpointFiles; // one that resumes looks into them
    extra.finish = [&run](const RunContext&) { return finishCheckpoints(run); };
    extra.files = [&run] {
        std::vector<std::string> files;
        for (const std::string& path : {run.checkpoints.path, run.checkpoints.older})
            if (run.checkpoints.count > 0 && stampOf(path).exists) files.push_back(nameOf(path));
        return files;
    };
    run.extras.push_back(std::move(extra));
    return true;
}

ExitStatus connectCheckpoints(ConsoleRun& run) {
    RunCheckpoints& checkpoints = run.checkpoints;
    SimState& sim = simOf(run);
    const bool writes = checkpoints.steps > 0 || checkpoints.seconds > 0;
    checkpoints.path = joinPath(sim.inputDir, sim.baseName + "_checkpoint.nc");
    checkpoints.older = joinPath(sim.inputDir, sim.baseName + "_checkpoint_old.nc");
    checkpoints.fresh = joinPath(sim.inputDir, "." + sim.baseName + "_checkpoint.nc.part");
    checkpoints.lastTime = Clock::now();
    RunOperations& operations = run.console.program.operations;
    if (writes)
        operations.outputs.insert(operations.outputs.begin(), {.name = "checkpoint",
                                                               .steps = 1,
                                                               .lastOfInterval = true,
                                                               .write = [&run](SimState&) { beforeOutputs(run); }});
    if (writes || checkpoints.isResumed) removeFile(checkpoints.fresh); // of a run that was killed
    checkpoints.removesOlder = !checkpoints.isResumed;
    return checkpoints.isResumed ? connectResume(run) : exitDone;
}

} // namespace norvane
