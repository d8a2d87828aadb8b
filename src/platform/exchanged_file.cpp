#include "platform/exchanged_file.h"

#include "platform/open_file.h"
#include "platform/sealed_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#ifdef __linux__
#    include <fcntl.h>
#endif

namespace norvane {

namespace {

/// Whether the file system has no such reservation.
bool isUnknownCall(int error) { return error == EOPNOTSUPP || error == ENOSYS || error == EINVAL; }

} // namespace

FileResult exchangeFile(const std::string& fresh, const std::string& path, const std::string& older, bool& kept) {
    namespace fs = std::filesystem;
    kept = false;
    FileResult result = flushFile(fresh);
    if (!result) return result;
    std::error_code failed;
    fs::remove(older, failed);
    fs::create_hard_link(path, older, failed); // refused where there is no file yet, too
    const bool linked = !failed;
    result = renameFile(fresh, path);
    if (!result && linked) fs::remove(older, failed);
    if (!result) return result;
    kept = linked;
    flushFolder(folderOf(path)); // the new file stands; a power cut may bring the old one back
    return {};
}

FileResult makeFresh(const std::string& path) {
    std::error_code failed;
    std::filesystem::remove(path, failed);
    FileResult result;
    const File file = createFile(path, result);
    return result;
}

FileResult reserveRoom(const std::string& path, std::uint64_t bytes) {
    FileResult result;
    const File file = openFile(path, Access::update, result);
    if (!file) return result;
    const std::int64_t length = lengthOf(file.get());
    const auto more = static_cast<std::int64_t>(bytes);
    if (length < 0) return failure(errno);
    if (more > fileSizeLimit() - length) return failure(EFBIG);
#ifdef __linux__
    int error = 0;
    do error = ::fallocate(::fileno(file.get()), FALLOC_FL_KEEP_SIZE, length, more) == 0 ? 0 : errno;
    while (error == EINTR);
    if (!isUnknownCall(error)) return error == 0 ? FileResult{} : failure(error);
#endif
    std::error_code unknown;
    const auto space = std::filesystem::space(folderOf(path), unknown);
    return !unknown && space.available < bytes ? failure(ENOSPC) : FileResult{};
}

std::string exchangeTarget(const std::string& path, FileResult& result) { return outputTarget(path, result); }

} // namespace norvane
