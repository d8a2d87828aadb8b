#include "frontends/cli/run_frames.h"

#include "exchange/state_file.h"
#include "formats/frame_series.h"
#include "formats/frame_writer.h"
#include "frontends/cli/frame_target.h"
#include "frontends/cli/run_command.h"
#include "platform/files.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <optional>

namespace norvane {

namespace {

/// Frames of one run.
class RunFrames {
public:
    explicit RunFrames(FrameOptions options) : options_(std::move(options)) {}

    std::string prepare(const RunContext& run);
    void begin(const RunContext& run);
    void write(const RunContext& run);
    bool finish(const RunContext& run);
    std::string position();
    std::string goOn(const RunContext& run, const std::string& position);

    std::vector<std::string> report() const;
    std::string summary() const;
    std::vector<std::string> files() const;

private:
    std::string faultOfAppend(const RunContext& run, const FrameFileInfo& info) const;
    std::string open(const RunContext& run, std::size_t kept);
    std::string start(const RunContext& run);
    void startWriter();
    void addFrame(const SimState& sim);
    void complain(const RunContext& run, std::int32_t step, const std::string& reason);
    void tellFaults(const RunContext& run);

    FrameOptions options_;
    std::string path_;
    FrameLayout layout_;
    FrameOrigin origin_;
    bool goesOn_ = false;        ///< with the frames of an earlier run
    std::size_t kept_ = 0;       ///< frames that belong to the file whatever the steps of this run are
    std::int32_t lastStep_ = -1; ///< of the latest frame
    std::size_t lost_ = 0;       ///< while no file could be begun
    bool told_ = false;
    std::optional<FrameSeries> series_;
    std::optional<FrameWriter> writer_; ///< after the series, which it writes
};

std::string listOf(std::string names) {
    std::replace(names.begin(), names.end(), ' ', ',');
    return names;
}

std::string RunFrames::prepare(const RunContext& run) {
    path_ = joinPath(run.sim.inputDir, run.sim.baseName + framesEnding);
    origin_ = originOf(run.sim, NORVANE_PROGRAM_NAME);
    std::string fault = layoutOf(run.sim, options_.fields, layout_);
    if (!fault.empty()) return "--frames-fields: " + fault;
    FrameFileInfo info;
    fault = faultOfTarget(path_, info);
    if (!fault.empty() || !options_.append || !info.isOurs || info.times.steps.empty()) return fault;
    fault = faultOfAppend(run, info);
    goesOn_ = fault.empty();
    return fault.empty() ? fault : "--append: " + fault + ". Without --append the frames are replaced";
}

/// What speaks against going on with the frames that are there.
std::string RunFrames::faultOfAppend(const RunContext& run, const FrameFileInfo& info) const {
    const std::string name = nameOf(path_);
    if (!run.goesOn) return "this run begins anew; " + name + " is continued by one with --recall";
    if (info.fingerprint != origin_.fingerprint)
        return name
               + " holds frames of another table; go on with the table that made them, with the same --set "
                 "(--time is another length of a run)";
    if (info.fields != layout_.fieldNames())
        return name + " holds other fields; go on with --frames-fields " + listOf(info.fields);
    if (!run.options.recall) return {};
    const std::int32_t saved = savedStep(run.sim);
    const std::int32_t last = info.times.steps.back();
    if (saved < 0 || last <= saved) return {};
    return name + " has frames up to step " + std::to_string(last) + ", and the saved state is that of step "
           + std::to_string(saved) + "; move the file away to keep it";
}

void RunFrames::startWriter() {
    writer_.emplace(layout_.frameBytes(), [this](std::span<const Frame> frames) { return series_->add(frames); });
}

/// Goes on after the first `kept` frames of the file.
std::string RunFrames::open(const RunContext& run, std::size_t kept) {
    layout_.isRectilinear = isOnAxes(run.sim);
    series_.emplace(path_, layout_);
    std::string fault = series_->goOn(run.sim, origin_, kept);
    if (!fault.empty()) {
        series_.reset();
        return fault;
    }
    kept_ = kept;
    lastStep_ = kept > 0 ? series_->times().steps.back() : -1;
    startWriter();
    return {};
}

/// Begins a file with a frame of this moment.
std::string RunFrames::start(const RunContext& run) {
    layout_.isRectilinear = isOnAxes(run.sim);
    series_.emplace(path_, layout_);
    Frame frame;
    takeFields(run.sim, layout_, frame);
    std::string fault = series_->begin(run.sim, origin_, frame);
    if (!fault.empty()) {
        series_.reset();
        lost_ += 1;
        return fault;
    }
    kept_ = 1;
    lastStep_ = frame.step;
    startWriter();
    return {};
}

void RunFrames::addFrame(const SimState& sim) {
    writer_->add([&](Frame& frame) { takeFields(sim, layout_, frame); });
    lastStep_ = sim.stepCount;
}

void RunFrames::complain(const RunContext& run, std::int32_t step, const std::string& reason) {
    if (told_) return;
    told_ = true;
    run.complain("The frame of step " + std::to_string(step) + " can't be written to " + nameOf(path_) + ": " + reason
                 + ". The run goes on without it.");
}

void RunFrames::tellFaults(const RunContext& run) {
    if (!writer_) return;
    const FrameFaults faults = writer_->faults();
    if (faults.lost > 0) complain(run, faults.firstStep, faults.first);
}

void RunFrames::begin(const RunContext& run) {
    try {
        FrameFileInfo info;
        std::string fault = goesOn_ ? readFrameFile(path_, info) : "";
        const std::size_t frames = info.times.steps.size();
        if (fault.empty() && frames > 0 && info.times.steps.back() > run.sim.stepCount)
            fault = "it has later frames, up to step " + std::to_string(info.times.steps.back());
        if (fault.empty()) fault = goesOn_ ? open(run, frames) : start(run);
        if (!fault.empty()) complain(run, run.sim.stepCount, fault);
        if (fault.empty() && lastStep_ != run.sim.stepCount) {
            addFrame(run.sim);
            kept_ += 1;
        }
    } catch (const std::bad_alloc&) {
        complain(run, run.sim.stepCount, "there is not enough memory");
        lost_ += 1;
    }
}

void RunFrames::write(const RunContext& run) {
    if (series_) {
        if (lastStep_ != run.sim.stepCount) addFrame(run.sim);
        tellFaults(run);
        return;
    }
    const std::string fault = goesOn_ ? "it could not be continued" : start(run); // there may be room by now
    if (!fault.empty()) complain(run, run.sim.stepCount, fault);
}

bool RunFrames::finish(const RunContext& run) {
    std::size_t lost = lost_;
    std::string fault;
    if (series_) {
        writer_->finish();
        tellFaults(run);
        lost += writer_->faults().lost;
        fault = series_->end(run.sim, origin_);
    }
    if (lost > 1) run.complain(std::to_string(lost) + " frames in all could not be written.");
    if (!fault.empty()) run.complain("The mesh of the frames can't be written: " + fault);
    return lost == 0 && fault.empty() && series_;
}

/// A frame that came because the run stopped is left out: a run that goes on does not have it.
std::string RunFrames::position() {
    if (!series_) return "frames 0 step -1";
    writer_->finish();
    const std::vector<std::int32_t>& steps = series_->times().steps;
    std::size_t frames = steps.size();
    if (frames > kept_ && steps.back() % options_.every != 0) --frames;
    return "frames " + std::to_string(frames) + " step " + std::to_string(frames > 0 ? steps[frames - 1] : -1);
}

std::string RunFrames::goOn(const RunContext& run, const std::string& position) {
    unsigned long long frames = 0;
    int step = 0;
    // NOLINTNEXTLINE(cert-err34-c): numbers out of range fit no file
    if (std::sscanf(position.c_str(), "frames %llu step %d", &frames, &step) != 2)
        return "\"" + position + "\" is no place in a file of frames";
    if (frames == 0) return {};
    FrameFileInfo info;
    const std::string fault = readFrameFile(path_, info);
    const std::string name = nameOf(path_);
    if (!fault.empty()) return name + " can't be read: " + fault;
    if (!info.isOurs || info.times.steps.size() < frames || info.times.steps[frames - 1] != step)
        return name + " does not hold the " + std::to_string(frames) + " frames that it had, up to step "
               + std::to_string(step);
    if (info.fingerprint != origin_.fingerprint || info.fields != layout_.fieldNames())
        return name + " holds frames of another table, or other fields";
    const std::string opened = open(run, static_cast<std::size_t>(frames));
    return opened.empty() ? opened : name + ": " + opened;
}

std::vector<std::string> RunFrames::report() const {
    if (!series_ || series_->times().steps.empty()) return {};
    const std::vector<std::int32_t>& steps = series_->times().steps;
    return {"Frames: " + std::to_string(steps.size()) + ", steps " + std::to_string(steps.front()) + " to "
            + std::to_string(steps.back())};
}

std::string RunFrames::summary() const {
    return "\"frames\": " + std::to_string(series_ ? series_->times().steps.size() : 0);
}

std::vector<std::string> RunFrames::files() const {
    if (!series_) return {};
    std::vector<std::string> names{nameOf(path_)};
    if (stampOf(series_->meshPath()).exists) names.push_back(nameOf(series_->meshPath()));
    return names;
}

} // namespace

RunExtra framesOf(const FrameOptions& options) {
    const auto frames = std::make_shared<RunFrames>(options);
    RunExtra extra;
    extra.name = "frames";
    extra.steps = options.every;
    extra.endings = {framesEnding, meshEnding};
    extra.prepare = [frames](const RunContext& run) { return frames->prepare(run); };
    extra.begin = [frames](const RunContext& run) { frames->begin(run); };
    extra.write = [frames](const RunContext& run) { frames->write(run); };
    extra.finish = [frames](const RunContext& run) { return frames->finish(run); };
    extra.report = [frames] { return frames->report(); };
    extra.summary = [frames] { return frames->summary(); };
    extra.files = [frames] { return frames->files(); };
    extra.position = [frames] { return frames->position(); };
    extra.goOn = [frames](const RunContext& run, const std::string& position) { return frames->goOn(run, position); };
    return extra;
}

} // namespace norvane
