#include "platform/sealed_file.h"

#include "platform/checksum.h"
#include "platform/file_faults.h"
#include "platform/open_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

#ifndef _WIN32
#    include <fcntl.h>
#    include <unistd.h>
#endif

namespace norvane {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view sealBegin = "\nnorvane CRC-64/XZ ";
constexpr std::size_t sealLength = sealBegin.size() + 16 + 1;

std::string sealOf(std::uint64_t crc) { return std::string(sealBegin) + hexText(crc) + "\n"; }

/// Reads `length` bytes of a file from its begin, in pieces that stay in the cache. Gives false at a fault.
bool addBytes(std::FILE* file, std::int64_t length, Crc64& crc) {
    std::string piece(std::size_t{1} << 18, '\0');
    if (!seekTo(file, 0)) return false;
    while (length > 0) {
        const auto part = static_cast<std::size_t>(std::min<std::int64_t>(length, std::int64_t(piece.size())));
        std::size_t got = 0;
        if (!readAll(file, piece.data(), part, got) || got < part) return false;
        crc.add(std::string_view(piece).substr(0, part));
        length -= static_cast<std::int64_t>(part);
    }
    return true;
}

/// The last bytes of a file, as many as a seal has; empty where it is shorter or can't be read.
std::string lastBytes(std::FILE* file, std::int64_t length) {
    std::string text(sealLength, '\0');
    std::size_t got = 0;
    const auto start = length - static_cast<std::int64_t>(sealLength);
    const bool isRead = start >= 0 && seekTo(file, start) && readAll(file, text.data(), text.size(), got);
    return isRead && got == text.size() ? text : std::string();
}

/// `path` gets a second name, which takes the place of `older`.
FileResult keepOlder(const std::string& path, const std::string& older) {
    std::error_code failed;
    const std::string beside = older + ".link";
    fs::remove(beside, failed);
    fs::create_hard_link(path, beside, failed);
    if (failed) return renameFile(path, older); // a file system without them
    FileResult renamed = renameFile(beside, older);
    fs::remove(beside, failed); // two names of one file: a rename does nothing
    return renamed;
}

} // namespace

FileResult flushFolder(const std::string& folder) {
#ifdef _WIN32
    static_cast<void>(folder);
#else
    if (isToFail(FileOperation::flush)) return failure(errno);
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return failure(errno);
    const bool flushed = ::fsync(descriptor) == 0 || errno == EINVAL; // some file systems do so by themselves
    const FileResult result = flushed ? FileResult{} : failure(errno);
    ::close(descriptor);
    if (!result) return result;
#endif
    return {};
}

FileResult writeSealed(const std::string& path, std::string_view content) {
    FileResult result;
    File file = openFile(path, Access::replace, result);
    if (!file) return result;
    Crc64 crc;
    crc.add(content);
    errno = 0;
    const bool written = writeAll(file.get(), content) && writeAll(file.get(), sealOf(crc.value()))
                         && flushToDisc(file.get()) && closeFile(std::move(file));
    if (written) return {};
    result = failure(errno);
    removeFile(path);
    return result;
}

FileResult checkSeal(const std::string& path, bool& whole) {
    whole = false;
    FileResult result;
    const File file = openFile(path, Access::read, result);
    if (!file) return result;
    errno = 0;
    const std::int64_t length = lengthOf(file.get());
    if (length < 0) return failure(errno);
    const std::string last = lastBytes(file.get(), length);
    if (last.empty()) return {};
    Crc64 crc;
    if (!addBytes(file.get(), length - static_cast<std::int64_t>(sealLength), crc)) return failure(errno);
    whole = last == sealOf(crc.value());
    return {};
}

FileResult publishFile(const std::string& fresh, const std::string& path, const std::string& older) {
    std::error_code unknown;
    const bool keeps = !older.empty() && fs::exists(path, unknown);
    FileResult result = keeps ? keepOlder(path, older) : FileResult();
    if (result) result = renameFile(fresh, path);
    return result ? flushFolder(folderOf(path)) : result;
}

} // namespace norvane
