#include "frontends/cli/plot_frames.h"

#include "formats/frame_reader.h"
#include "frontends/cli/frame_target.h"
#include "frontends/cli/option_text.h"
#include "geometry/table_text.h"
#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace norvane {

namespace {

ExitStatus fileFault(const std::string& path, const std::string& what) {
    std::fprintf(stderr, "%s: %s\n", printableName(path).c_str(), printableName(what).c_str());
    return exitFileFault;
}

/// "0, 100, 200 ... 5000".
std::string listed(const std::vector<std::int32_t>& steps) {
    constexpr std::size_t most = 20;
    std::string text;
    for (std::size_t k = 0; k < std::min(steps.size(), most); ++k)
        text += (k > 0 ? ", " : "") + std::to_string(steps[k]);
    return steps.size() > most ? text + " ... " + std::to_string(steps.back()) : text;
}

void choose(PlotFrames& frames, const FrameTimes& times, std::size_t place) {
    frames.places.push_back(place);
    frames.steps.push_back(times.steps[place]);
}

bool takeSteps(const PlotOptions& options, const FrameTimes& times, PlotFrames& frames) {
    for (const std::string& word : parts(lowerCase(options.frames), ',')) {
        if (word == "all") {
            for (std::size_t k = 0; k < times.steps.size(); ++k) choose(frames, times, k);
            continue;
        }
        const auto step = wholeIn(word, 0, std::numeric_limits<std::int32_t>::max());
        const auto found = step ? std::find(times.steps.begin(), times.steps.end(), *step) : times.steps.end();
        if (word == "last")
            choose(frames, times, times.steps.size() - 1);
        else if (found != times.steps.end())
            choose(frames, times, static_cast<std::size_t>(found - times.steps.begin()));
        else
            return fault("--frame", options.frames,
                         "a list of steps that " + printableName(nameOf(frames.path)) + " has, " + listed(times.steps)
                             + "; or last, or all");
    }
    return true;
}

/// The fields that a quantity is computed from.
std::vector<std::string> fieldsOf(const SimState& sim, const ShownQuantity& shown) {
    const NamedQuantity& quantity = shown.quantity;
    const std::string kind = quantity.name.substr(0, quantity.name.rfind(' '));
    if (quantity.isOfGrid) return {};
    if (kind == "Temperature" || kind == "X") return {"T"};
    if (kind == "Pressure") return {"p"};
    if (kind == "Density") return {"rho"};
    const bool isFraction = quantity.location == Location::centre && quantity.unit.empty();
    if (isFraction)
        return sim.nsMax > 0 ? std::vector{"c" + std::to_string(quantity.component)} : std::vector<std::string>();
    if (quantity.location == Location::centre) return {quantity.name};
    std::vector<std::string> fields;
    static constexpr const char* letters[] = {"u", "v", "w"};
    for (int dim = 1; dim <= sim.nDim; ++dim)
        if (quantity.dimension == 0 || quantity.dimension == dim)
            fields.emplace_back(dim <= 3 ? letters[dim - 1] : "u" + std::to_string(dim));
    if (kind == "Std Velocity" || quantity.name == "Std Velocity") fields.emplace_back("rho");
    return fields;
}

} // namespace

ExitStatus chooseFrames(const PlotOptions& options, const SimState& sim, PlotFrames& frames) {
    frames.path = joinPath(sim.inputDir, sim.baseName + framesEnding);
    if (!stampOf(frames.path).exists)
        return fileFault(frames.path, "there is no such file. A run makes it, for example: norvane run "
                                          + options.geometry + " --frames 100");
    FrameFileInfo info;
    const std::string wrong = readFrameFile(frames.path, info);
    if (!wrong.empty()) return fileFault(frames.path, "it can't be read: " + wrong);
    if (!info.isOurs) return fileFault(frames.path, "it holds no frames of this program");
    if (info.times.steps.empty()) return fileFault(frames.path, "there are no frames in it yet");
    if (info.fingerprint != tableFingerprint(sim))
        return fileFault(frames.path, "its frames are those of another drawing, or of a run with --set; run "
                                          + sim.fileName + " with --frames anew, or draw the table that made them");
    return takeSteps(options, info.times, frames) ? exitDone : exitBadUse;
}

bool holdFields(const PlotFrames& frames, const SimState& sim, const std::vector<ShownQuantity>& shown, bool isFlow) {
    const std::vector<std::string> there = fieldsInFrames(frames.path, sim);
    std::vector<ShownQuantity> needed = shown;
    if (isFlow) needed.push_back(shownOf(sim, showVelocity, 0));
    std::string missing;
    for (const ShownQuantity& each : needed)
        for (const std::string& field : fieldsOf(sim, each)) {
            const bool isNamed = ("," + missing + ",").find("," + field + ",") != std::string::npos;
            if (!isNamed && std::find(there.begin(), there.end(), field) == there.end())
                missing += (missing.empty() ? "" : ",") + field;
        }
    if (missing.empty()) return true;
    std::fprintf(stderr,
                 "--frame: the frames in %s lack %s; a run with these in --frames-fields has them, one without that "
                 "option has the usual fields\n",
                 printableName(nameOf(frames.path)).c_str(), missing.c_str());
    return false;
}

ExitStatus takeFrame(const PlotFrames& frames, std::size_t k, SimState& sim) {
    const std::string wrong = readFrame(frames.path, frames.places[k], frames.steps[k], sim);
    return wrong.empty() ? exitDone : fileFault(frames.path, "it can't be read: " + wrong);
}

} // namespace norvane
