#include "frontends/cli/frame_target.h"

#include "formats/mesh_text.h"
#include "platform/exchanged_file.h"
#include "platform/files.h"

namespace norvane {

namespace {

constexpr const char* otherName = " holds something else, which would be lost; move it away, or name another file";

/// Under a name that no run uses: another one may be writing.
std::string faultOfFolder(const std::string& path) {
    const std::string trial = joinPath(folderOf(path), "." + nameOf(path) + ".trial");
    const FileResult made = makeFresh(trial);
    if (made) removeFile(trial);
    return made.reason;
}

} // namespace

std::string faultOfTarget(const std::string& path, FrameFileInfo& info) {
    const std::string mesh = meshPathOf(path);
    const std::string fault = readFrameFile(path, info);
    if (!fault.empty()) return nameOf(path) + " can't be read: " + fault + "; move it away";
    if (!info.isOurs && stampOf(path).size > 0) return nameOf(path) + otherName;
    std::string beginning;
    constexpr std::size_t few = 128;
    const bool hasMesh = stampOf(mesh).size > 0;
    if (hasMesh && (!readBeginning(mesh, few, beginning) || !isMeshText(beginning))) return nameOf(mesh) + otherName;
    FileResult followed;
    const std::string target = exchangeTarget(path, followed);
    const std::string made = followed ? faultOfFolder(target) : followed.reason;
    return made.empty() ? std::string() : nameOf(path) + " can't be written: " + made;
}

} // namespace norvane
