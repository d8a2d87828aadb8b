#include "frontends/cli/frames.h"

#include "display/field_plot.h"
#include "drawing/image_surface.h"
#include "platform/process.h"

#include <cstdio>
#include <filesystem>

namespace norvane {

namespace {

std::string numbered(const std::string& prefix, std::int32_t step) {
    char number[16];
    std::snprintf(number, sizeof number, "%06d", step);
    return prefix + number + ".png";
}

/// The list that ffmpeg takes the frames from: names as they are, not a pattern, since steps leave gaps.
std::string frameList(const Frames& frames) {
    std::string list;
    for (const std::string& path : frames.paths) {
        std::string quoted;
        for (const char c : path) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
        list += "file '" + quoted + "'\nduration 0.04\n";
    }
    return list;
}

} // namespace

void takeFrame(Frames& frames, SimState& sim, Interface& ui) {
    const DrawnSurface drawn(ui.NV_out.Picture1);
    clearPlot(ui);
    drawField(sim, ui); // the plot file belongs to the plots of the schedule
    const std::string path = numbered(frames.prefix, sim.stepCount);
    const FileResult written = writePicture(drawn.image(), path, PictureFormat::png);
    if (written)
        frames.paths.push_back(absolutePath(path));
    else if (frames.missing++ == 0)
        ui.showMessage("The picture " + path + " can't be written: " + written.reason
                       + ".\r\nThe run goes on without it.");
}

void findFrames(Frames& frames, std::int32_t every, std::int32_t first, std::int32_t step) {
    if (every <= 0) return;
    for (std::int64_t k = std::int64_t{first} / every + 1; k * every < step; ++k) {
        const std::string path = numbered(frames.prefix, static_cast<std::int32_t>(k * every));
        if (stampOf(path).exists) frames.paths.push_back(absolutePath(path));
    }
}

bool canMakeMovies() {
    std::error_code unknown;
    return std::filesystem::is_regular_file(programPath("ffmpeg"), unknown);
}

std::string makeMovie(const Frames& frames, const std::string& path) {
    if (frames.paths.empty()) return "there are no pictures";
    const std::filesystem::path whole = absolutePath(path);
    // Beside the film, under names that nobody has: an older film stays until the new one is complete.
    const std::string beside =
        (whole.parent_path() / (whole.stem().string() + ".part" + std::to_string(processNumber()))).string();
    const std::string listPath = beside + ".txt";
    const std::string partPath = beside + whole.extension().string();
    const FileResult listed = writeFile(listPath, frameList(frames));
    if (!listed) return listPath + " can't be written: " + listed.reason;
    const int status = runProcess({"ffmpeg", "-nostdin", "-loglevel", "error", "-y", "-f", "concat", "-safe", "0", "-i",
                                   listPath, "-vf", "pad=ceil(iw/2)*2:ceil(ih/2)*2", "-pix_fmt", "yuv420p", partPath});
    removeFile(listPath);
    const FileResult renamed = status == 0 ? renameFile(partPath, whole.string()) : FileResult();
    if (status != 0 || !renamed) removeFile(partPath);
    if (status == processNotFound) return "ffmpeg is not installed";
    if (status != 0) return "ffmpeg could not make it";
    if (!renamed) return renamed.reason;
    for (const std::string& frame : frames.paths) removeFile(frame);
    return {};
}

} // namespace norvane
