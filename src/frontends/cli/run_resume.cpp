#include "frontends/cli/run_resume.h"

#include "core/run_memory.h"
#include "geometry/table_text.h"
#include "platform/files.h"

#include <algorithm>
#include <cstdlib>

namespace norvane {

namespace {

/// The first setting of `list` that `others` lacks.
const NamedText* settingBeyond(const std::vector<NamedText>& list, const std::vector<NamedText>& others) {
    for (const NamedText& setting : list)
        if (std::find(others.begin(), others.end(), setting) == others.end()) return &setting;
    return nullptr;
}

std::string settingText(const NamedText& setting) {
    return setting.text.empty() ? setting.name : setting.name + " (" + setting.text + ")";
}

/// What else there is, when a checkpoint can't be taken.
std::string otherWays(const RunCheckpoints& checkpoints, bool tookOlder) {
    std::string afresh = "Start the run afresh, without --resume.";
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
    const NamedText* const position = positionOf(run.checkpoints.from, logPositionName);
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
    sim.stepCount = from.step;
    sim.stopStep = from.stopStep;
    run.startStep = from.firstStep;
    takeTime(run);
    if (sim.stopStep >= 0 && sim.stopStep < from.step + (from.afterOutputs ? 1 : 0))
        return refuse("--time counts from the start of the run, and that is already at step "
                      + std::to_string(from.step));
    sim.spectrumRandom.state = from.random;
    sim.revision += 1;
    cutLog(run);
    findFrames(run.frames, run.options.frameEvery, from.firstStep, from.step + (from.afterOutputs ? 1 : 0));
    if (!goOnWithExtras(run)) return Restored::failed;
    return from.afterOutputs ? Restored::afterOutputs : Restored::beforeOutputs;
}

} // namespace

ExitStatus connectResume(ConsoleRun& run) {
    RunCheckpoints& checkpoints = run.checkpoints;
    const ExitStatus read = readSource(run);
    if (read != exitDone) return read;
    if (!fitsSettings(run)) return exitBadUse;
    checkpoints.keepsOlder = !run.options.checkpoints.older;
    checkpoints.latest = checkpoints.from.step;
    simOf(run).runMode = modeModelStands; // the log of the run goes on
    run.console.program.operations.restore = [&run](SimState& model) { return restore(run, model); };
    return exitDone;
}

} // namespace norvane
