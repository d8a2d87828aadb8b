#include "frontends/cli/run_checkpoint.h"

#include "core/number_text.h"
#include "core/run_memory.h"
#include "frontends/cli/run_console.h"
#include "frontends/cli/stop_signals.h"
#include "geometry/table_text.h"
#include "platform/files.h"
#include "platform/sealed_file.h"

#include <cmath>
#include <memory>
#include <utility>

namespace norvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* extraName = "--checkpoint-every";
constexpr const char* logPosition = "log";

#ifdef NORVANE_NETCDF
constexpr bool hasCheckpoints = true;
#else
constexpr bool hasCheckpoints = false;

std::string writeCheckpoint(const std::string&, SimState&, const Checkpoint&) { return {}; }

std::string readCheckpoint(const std::string&, Checkpoint&) { return {}; }

std::string readCheckpointFields(const std::string&, SimState&) { return {}; }
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

SimState& simOf(ConsoleRun& run) { return run.console.program.sim; }

void complain(ConsoleRun& run, const std::string& line) { contextOf(run).complain(line); }

std::string logPath(const SimState& sim) { return joinPath(sim.inputDir, sim.baseName + "_log"); }

/// Options that shape what the files of a run hold, beside the table.
std::vector<NamedText> settingsOf(const ConsoleRun& run) {
    const RunOptions& options = run.options;
    std::vector<NamedText> settings;
    if (options.plotEvery > 0) settings.push_back({"--plot-every", std::to_string(options.plotEvery)});
    if (options.frameEvery > 0) settings.push_back({"--snapshots", std::to_string(options.frameEvery)});
    if (options.radiation) settings.push_back({"--radiation", ""});
    for (const RunExtra& extra : run.extras)
        if (extra.name != extraName)
            settings.push_back({extra.name, extra.steps > 0 ? "every " + std::to_string(extra.steps) + " steps" : ""});
    return settings;
}

/// The first setting of `list` that `others` lacks.
const NamedText* settingBeyond(const std::vector<NamedText>& list, const std::vector<NamedText>& others) {
    for (const NamedText& setting : list)
        if (std::find(others.begin(), others.end(), setting) == others.end()) return &setting;
    return nullptr;
}

std::string settingText(const NamedText& setting) {
    return setting.text.empty() ? setting.name : setting.name + " (" + setting.text + ")";
}

// --- writing
// ----------------------------------------------------------------------------------------------------------

std::vector<NamedText> positionsOf(const ConsoleRun& run, const SimState& sim) {
    std::vector<NamedText> positions;
    if (sim.logEvery > 0) positions.push_back({logPosition, std::to_string(stampOf(logPath(sim)).size)});
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
            if (extra.name != extraName) flush(joinPath(sim.inputDir, sim.baseName + ending));
}

std::string writeAndPublish(ConsoleRun& run, bool afterOutputs) {
    RunCheckpoints& checkpoints = run.checkpoints;
    SimState& sim = simOf(run);
    const BadValue bad = firstBadValue(sim);
    if (bad.cell != 0) return "the fields hold a " + std::string(bad.quantity) + " that no gas has";
    const std::string fault = writeCheckpoint(checkpoints.fresh, sim, checkpointOf(run, afterOutputs));
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

// --- going on
// ---------------------------------------------------------------------------------------------------------

/// What else there is, when a checkpoint can't be taken.
std::string otherWays(const RunCheckpoints& checkpoints, bool tookOlder) {
    const std::string afresh = "Start the run afresh, without --resume.";
    if (tookOlder || !stampOf(checkpoints.older).exists) return afresh;
    Checkpoint older;
    const std::string fault = readCheckpoint(checkpoints.older, older);
    if (!fault.empty())
        return "The one before it, " + nameOf(checkpoints.older) + ", is of no use either: " + fault + ".\n" + afresh;
    return "The one before it, " + nameOf(checkpoints.older) + ", is of step " + std::to_string(older.step)
           + ": --resume-older in place of --resume goes on from there.";
}

/// The file that the run goes on from.
const std::string& sourceOf(const ConsoleRun& run) {
    return run.options.checkpoints.older ? run.checkpoints.older : run.checkpoints.path;
}

ExitStatus readSource(ConsoleRun& run) {
    RunCheckpoints& checkpoints = run.checkpoints;
    const std::string& source = sourceOf(run);
    const std::string name = nameOf(source);
    const bool exists = stampOf(source).exists;
    const std::string fault = readCheckpoint(source, checkpoints.from);
    const std::string other = fault.empty() ? "" : otherWays(checkpoints, run.options.checkpoints.older);
    if (!fault.empty() && !exists) {
        complain(run, "There is no checkpoint " + name + " in " + folderOf(source)
                          + ".\n--checkpoint-every writes one; "
                          + "the run that goes on needs the geometry, -o and --name of the run before.\n" + other);
        return exitFileFault;
    }
    if (!fault.empty()) {
        complain(run, "The checkpoint " + name + " can't be taken: " + fault + ".\n" + other);
        return exitFileFault;
    }
    if (checkpoints.from.table != tableFingerprint(simOf(run))) {
        complain(run, "The checkpoint " + name
                          + " is of another drawing, or of other changes by --set.\n"
                            "Go on with the drawing as it was then, or start the run afresh, without --resume.");
        return exitFileFault;
    }
    return exitDone;
}

/// The files of a run would be of two kinds.
bool fitsSettings(ConsoleRun& run) {
    const std::vector<NamedText> settings = settingsOf(run);
    const NamedText* const missing = settingBeyond(run.checkpoints.from.settings, settings);
    const NamedText* const added = settingBeyond(settings, run.checkpoints.from.settings);
    if (missing != nullptr)
        complain(run,
                 "The run was started with " + settingText(*missing) + "; a run that goes on needs the same options.");
    else if (added != nullptr)
        complain(run,
                 "The run was started without " + settingText(*added) + "; a run that goes on needs the same options.");
    return missing == nullptr && added == nullptr;
}

const NamedText* positionOf(const Checkpoint& checkpoint, const std::string& name) {
    for (const NamedText& position : checkpoint.positions)
        if (position.name == name) return &position;
    return nullptr;
}

/// A log that is shorter is no reason to lose the run.
void cutLog(ConsoleRun& run) {
    const SimState& sim = simOf(run);
    const NamedText* const position = positionOf(run.checkpoints.from, logPosition);
    if (sim.logEvery <= 0 || position == nullptr) return;
    const std::uint64_t length = std::strtoull(position->text.c_str(), nullptr, 10);
    if (length == 0 && !stampOf(logPath(sim)).exists) return;
    const FileResult cut = cutFile(logPath(sim), length);
    if (!cut)
        complain(run, nameOf(logPath(sim)) + " is not as the run left it: " + cut.reason
                          + ".\nThe run goes on, and its lines come after what is there.");
}

bool goOnWithExtras(ConsoleRun& run) {
    const RunContext context = contextOf(run);
    for (const RunExtra& extra : run.extras) {
        const NamedText* const position = positionOf(run.checkpoints.from, extra.name);
        std::string fault;
        if (extra.goOn && position != nullptr)
            fault = extra.goOn(context, position->text);
        else if (extra.begin)
            extra.begin(context);
        if (fault.empty()) continue;
        complain(run, extra.name + " can't go on: " + fault);
        return false;
    }
    return true;
}

/// Why what was built is not the model of the checkpoint; empty: it is.
std::string faultOfModel(const SimState& sim, const Checkpoint& from) {
    if (radiationFingerprint(sim) != from.radiation)
        return "the view factors " + sim.baseName + "_rad are not those of the run. Put them back";
    if (modelFingerprint(sim) != from.model)
        return "this program makes other numbers of the same drawing. Go on with the one that wrote it, "
               + from.program;
    return {};
}

Restored restore(ConsoleRun& run, SimState& sim) {
    const Checkpoint& from = run.checkpoints.from;
    const auto refuse = [&](const std::string& fault) {
        complain(run, "The checkpoint " + nameOf(sourceOf(run)) + " can't be taken: " + fault + ".");
        return Restored::failed;
    };
    const std::string otherModel = faultOfModel(sim, from);
    if (!otherModel.empty()) return refuse(otherModel);
    const std::string fault = readCheckpointFields(sourceOf(run), sim);
    if (!fault.empty()) return refuse(fault + ". " + otherWays(run.checkpoints, run.options.checkpoints.older));
    const double time = run.options.time;
    if (time > 0 && from.firstStep + std::ceil(time / double(sim.dt) - 1e-6) < from.step + (from.afterOutputs ? 1 : 0))
        return refuse("--time counts from the start of the run, and that is already at step "
                      + std::to_string(from.step));
    sim.stepCount = from.step;
    sim.stopStep = from.stopStep;
    sim.spectrumRandom.state = from.random;
    sim.revision += 1;
    run.startStep = from.firstStep;
    cutLog(run);
    findFrames(run.frames, run.options.frameEvery, from.firstStep, from.step + (from.afterOutputs ? 1 : 0));
    if (!goOnWithExtras(run)) return Restored::failed;
    return from.afterOutputs ? Restored::afterOutputs : Restored::beforeOutputs;
}

} // namespace

void addCheckpointOptions(CLI::App* run, CheckpointOptions& options) {
    run->add_option(extraName, options.every,
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
    extra.name = extraName;
    extra.endings = {"_checkpoint.nc", "_checkpoint_old.nc"};
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
    if (!checkpoints.isResumed) return exitDone;
    const ExitStatus read = readSource(run);
    if (read != exitDone) return read;
    if (!fitsSettings(run)) return exitBadUse;
    checkpoints.keepsOlder = !run.options.checkpoints.older;
    checkpoints.latest = checkpoints.from.step;
    sim.runMode = modeModelStands; // the log of the run goes on
    operations.restore = [&run](SimState& model) { return restore(run, model); };
    return exitDone;
}

} // namespace norvane
