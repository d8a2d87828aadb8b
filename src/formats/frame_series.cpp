#include "formats/frame_series.h"

#include "formats/mesh_text.h"
#include "platform/exchanged_file.h"
#include "platform/files.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace norvane {

namespace {

/// What a file may hold, before it is compressed, to be written anew at the end.
constexpr double mostBytesRewritten = 4e9;

std::string hiddenBeside(const std::string& path, const char* ending) {
    return joinPath(folderOf(path), "." + nameOf(path) + ending);
}

} // namespace

FrameSeries::FrameSeries(const std::string& path, FrameLayout layout) : layout_(std::move(layout)) {
    FileResult followed;
    const std::string target = exchangeTarget(path, followed);
    path_ = absolutePath(followed ? target : path);
    meshPath_ = meshPathOf(path_);
    nextPath_ = hiddenBeside(path_, ".next");
    olderPath_ = hiddenBeside(path_, ".older");
}

std::string FrameSeries::begin(const SimState& sim, const FrameOrigin& origin, const Frame& first) {
    const std::span frames(&first, 1);
    times_ = {};
    meshFrames_ = 0;
    hasNext_ = false;
    std::string fault = createFrameFile(nextPath_, sim, layout_, origin);
    if (fault.empty()) fault = addFrames(nextPath_, layout_, 0, frames);
    if (fault.empty()) fault = takeName();
    if (!fault.empty()) {
        removeFile(nextPath_);
        return fault;
    }
    note(frames);
    writeMesh();
    return {};
}

std::string FrameSeries::goOn(const SimState& sim, const FrameOrigin& origin, std::size_t frames) {
    FrameFileInfo info;
    std::string fault = readFrameFile(path_, info);
    if (!fault.empty()) return fault;
    if (!info.isOurs || info.times.steps.size() < frames) return "it has fewer frames than it had";
    times_ = std::move(info.times);
    meshFrames_ = 0;
    if (times_.steps.size() > frames) return rewrite(sim, origin, frames);
    removeFile(nextPath_);
    removeFile(olderPath_);
    return {};
}

/// The second file takes the place of the one with the name, which goes.
std::string FrameSeries::takeName() {
    if (meshFrames_ == 0) removeFile(meshPath_); // it may name frames that go
    bool ignored = false;
    const FileResult exchanged = exchangeFile(nextPath_, path_, olderPath_, ignored);
    removeFile(olderPath_);
    if (!exchanged) removeFile(nextPath_);
    return exchanged.reason;
}

/// A new file with the first frames of the one that has the name.
std::string FrameSeries::rewrite(const SimState& sim, const FrameOrigin& origin, std::size_t frames) {
    FrameTimes kept = times_;
    kept.cut(frames);
    hasNext_ = false;
    std::string fault = createFrameFile(nextPath_, sim, layout_, origin);
    if (fault.empty()) fault = copyFrames(path_, nextPath_, layout_, 0, kept);
    if (fault.empty()) fault = takeName();
    if (fault.empty())
        times_ = std::move(kept);
    else
        removeFile(nextPath_);
    return fault;
}

void FrameSeries::note(std::span<const Frame> frames) {
    for (const Frame& frame : frames) {
        times_.steps.push_back(frame.step);
        times_.times.push_back(frame.time);
    }
}

/// Makes the second file hold what the one with the name holds.
std::string FrameSeries::bringNext() {
    const std::size_t frames = times_.steps.size();
    // A reader who still has it open holds its lock: then it stays to him, and a copy takes its place.
    if (hasNext_ && (nextFrames_ == frames || copyFrames(path_, nextPath_, layout_, nextFrames_, times_).empty())) {
        nextFrames_ = frames;
        return {};
    }
    hasNext_ = false;
    const FileResult fresh = makeFresh(nextPath_);
    if (!fresh) return fresh.reason;
    std::error_code failed;
    std::filesystem::copy_file(path_, nextPath_, std::filesystem::copy_options::overwrite_existing, failed);
    if (failed) return failed.message();
    hasNext_ = true;
    nextFrames_ = frames;
    return {};
}

std::string FrameSeries::exchange() {
    bool kept = false;
    const FileResult exchanged = exchangeFile(nextPath_, path_, olderPath_, kept);
    if (!exchanged) return exchanged.reason;
    std::error_code failed;
    if (kept) std::filesystem::rename(olderPath_, nextPath_, failed);
    hasNext_ = kept && !failed;
    return {};
}

std::string FrameSeries::add(std::span<const Frame> frames) {
    const std::size_t before = times_.steps.size();
    std::string fault = bringNext();
    if (fault.empty()) fault = addFrames(nextPath_, layout_, before, frames);
    if (fault.empty()) fault = exchange();
    if (!fault.empty()) {
        hasNext_ = false;
        removeFile(nextPath_);
        return fault;
    }
    nextFrames_ = before;
    note(frames);
    if (isMeshDue()) writeMesh(); // where it can't be written `end` says so
    return {};
}

/// Its text grows with the frames: it is written anew when they are a fiftieth more, so that all in all it costs no
/// more than fifty times its last text.
bool FrameSeries::isMeshDue() const { return times_.steps.size() >= meshFrames_ + 1 + meshFrames_ / 50; }

std::string FrameSeries::writeMesh() {
    if (!layout_.hasMesh()) return {};
    const FileResult written = replaceFile(meshPath_, meshText(layout_, nameOf(path_), times_));
    if (!written) return nameOf(meshPath_) + ": " + written.reason;
    meshFrames_ = times_.steps.size();
    return {};
}

std::string FrameSeries::end(const SimState& sim, const FrameOrigin& origin) {
    const double bytes = double(layout_.frameBytes()) * double(times_.steps.size());
    if (bytes <= mostBytesRewritten && bytes > 0) rewrite(sim, origin, times_.steps.size()); // the file is whole anyway
    hasNext_ = false;
    removeFile(nextPath_);
    return meshFrames_ == times_.steps.size() ? std::string() : writeMesh();
}

} // namespace norvane
