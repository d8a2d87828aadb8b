#include "formats/frame_series.h"
#include "frontends/cli/console.h"
#include "frontends/cli/frame_target.h"
#include "frontends/cli/run_frames.h"
#include "platform/claim.h"
#include "platform/files.h"
#include "platform/terminal_text.h"

#include <cstdio>

namespace norvane {

namespace {

/// A file of one moment does not take the place of a series. Empty: nothing is lost.
std::string faultOfExport(const std::string& path) {
    FrameFileInfo info;
    std::string fault = faultOfTarget(path, info);
    if (fault.empty() && info.times.steps.size() > 1)
        fault = nameOf(path) + " holds the " + std::to_string(info.times.steps.size())
                + " frames of a run; name another file with -o";
    return fault;
}

} // namespace

int exportFrames(const ExportOptions& options, const SimState& sim) {
    const std::string path =
        options.output.empty() ? joinPath(sim.inputDir, sim.baseName + framesEnding) : options.output;
    FrameLayout layout;
    std::string fault = layoutOf(sim, "", layout);
    if (fault.empty()) fault = faultOfExport(path);
    if (!fault.empty()) {
        std::fprintf(stderr, "norvane export: %s\n", printableName(fault).c_str());
        return exitBadUse;
    }
    layout.isRectilinear = isOnAxes(sim);
    if (wouldOverwrite(options.geometry, path)) return exitBadUse;
    int other = 0;
    const Claim files = Claim::alone(sim.inputDir, sim.baseName, other);
    if (other != 0 && options.output.empty()) {
        std::fprintf(stderr, "A run is writing the files %s_* in this folder; wait for it, or name a file with -o.\n",
                     printableName(sim.baseName).c_str());
        return exitFileFault;
    }
    FrameOrigin origin = originOf(sim, NORVANE_PROGRAM_NAME);
    origin.isSavedState = options.state;
    FrameSeries series(path, layout);
    Frame frame;
    takeFields(sim, layout, frame);
    fault = series.begin(sim, origin, frame);
    if (fault.empty()) fault = series.end(sim, origin);
    if (fault.empty()) return exitDone;
    std::fprintf(stderr, "%s can't be written: %s\n", printableName(path).c_str(), fault.c_str());
    return exitFileFault;
}

} // namespace norvane
