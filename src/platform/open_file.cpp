#include "platform/open_file.h"

#include "platform/file_faults.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <limits>
#include <system_error>
#include <thread>

#ifdef _WIN32
#    include <io.h>
#else
#    include <fcntl.h>
#    include <sys/file.h>
#    include <sys/resource.h>
#    include <sys/stat.h>
#    include <unistd.h>
#endif

namespace norvane {

namespace {

namespace fs = std::filesystem;

const FileResult notAFile{EINVAL, "it is not a file"};
const FileResult foreignLink{EACCES, "it is a link, and the link or its folder belongs to somebody else"};

bool isWritten(Access access) { return access != Access::read; }

#ifdef _WIN32

File openChecked(const std::string& path, Access access, FileResult& result) {
    std::error_code ignored;
    const auto type = fs::status(path, ignored).type();
    if (type == fs::file_type::directory) {
        result = failure(EISDIR);
        return nullptr;
    }
    constexpr const char* modes[] = {"rb", "r+b", "wb", "ab"};
    errno = 0;
    File file(std::fopen(path.c_str(), modes[static_cast<int>(access)]));
    if (!file) result = failure(errno);
    return file;
}

#else

bool isOwn(const struct stat& status) { return status.st_uid == ::geteuid(); }

bool ownFolder(const std::string& path) {
    struct stat folder {};

    return ::stat(folderOf(path).c_str(), &folder) == 0 && isOwn(folder);
}

/// What a written file must be, beside what a read one must: no name of a file that somebody else has given it.
FileResult faultOf(const std::string& path, Access access, const struct stat& status) {
    if (S_ISDIR(status.st_mode)) return failure(EISDIR);
    const bool isDevice = S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode);
    if (!S_ISREG(status.st_mode) && !(isDevice && isWritten(access))) return notAFile;
    if (isWritten(access) && S_ISREG(status.st_mode) && status.st_nlink > 1 && !ownFolder(path)) return foreignLink;
    return {};
}

int openRetrying(const char* path, int flags) {
    int descriptor = -1;
    do descriptor = ::open(path, flags | O_CLOEXEC | O_NOCTTY, 0666);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// Opened without waiting and looked at before anything of it changes.
File openChecked(const std::string& path, Access access, FileResult& result) {
    constexpr int flags[] = {O_RDONLY, O_RDWR, O_WRONLY | O_CREAT, O_WRONLY | O_CREAT | O_APPEND};
    constexpr const char* modes[] = {"rb", "r+b", "wb", "ab"};
    const int noLink = isWritten(access) ? O_NOFOLLOW : 0; // links were followed by outputTarget
    const auto which = static_cast<std::size_t>(access);
    const int descriptor = openRetrying(path.c_str(), flags[which] | noLink | O_NONBLOCK);
    if (descriptor < 0) {
        result = errno == ENXIO ? notAFile : failure(errno); // a pipe that nobody reads
        return nullptr;
    }

    struct stat status {};

    int fault = ::fstat(descriptor, &status) == 0 ? 0 : errno;
    result = fault != 0 ? failure(fault) : faultOf(path, access, status);
    const bool empties = access == Access::replace && S_ISREG(status.st_mode);
    if (result && empties && ::ftruncate(descriptor, 0) != 0) result = failure(errno);
    if (result && ::fcntl(descriptor, F_SETFL, flags[which] & O_APPEND) != 0) result = failure(errno);
    std::FILE* const stream = result ? ::fdopen(descriptor, modes[which]) : nullptr;
    if (stream == nullptr) {
        if (result) result = failure(errno);
        ::close(descriptor);
    }
    return File(stream);
}

#endif

} // namespace

FileResult failure(int number) {
    if (number == 0) number = EIO;
    return {number, std::generic_category().message(number)};
}

std::string outputTarget(const std::string& path, FileResult& result) {
    std::string target = path;
#ifndef _WIN32
    constexpr int mostLinks = 40; // as the system allows
    for (int links = 0;; ++links) {
        struct stat status {};

        if (::lstat(target.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) break;
        if (links == mostLinks) {
            result = failure(ELOOP);
            break;
        }
        std::error_code failed;
        const fs::path next = fs::read_symlink(target, failed);
        if (failed || !isOwn(status) || !ownFolder(target)) {
            result = failed ? FileResult{failed.value(), failed.message()} : foreignLink;
            break;
        }
        target = (fs::path(target).parent_path() / next).string();
    }
#else
    static_cast<void>(result);
#endif
    return target;
}

File openFile(const std::string& path, Access access, FileResult& result) {
    result = {};
    const std::string target = isWritten(access) ? outputTarget(path, result) : path;
    if (result && isWritten(access) && isToFail(FileOperation::open)) result = failure(errno);
    if (!result) return nullptr;
    File file = openChecked(target, access, result);
    if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
    return file;
}

File createFile(const std::string& path, FileResult& result) {
    result = {};
    errno = 0;
    File file(isToFail(FileOperation::open) ? nullptr : std::fopen(path.c_str(), "wbx"));
    if (!file) {
        result = failure(errno);
        return file;
    }
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
    lockAtOnce(file.get());
    return file;
}

bool closeFile(File file) {
    const bool closed = std::fclose(file.release()) == 0;
    return !isToFail(FileOperation::close) && closed;
}

bool isRegular(std::FILE* file) {
#ifdef _WIN32
    return ::_isatty(::_fileno(file)) == 0;
#else
    struct stat status {};

    return ::fstat(::fileno(file), &status) == 0 && S_ISREG(status.st_mode);
#endif
}

bool writeAll(std::FILE* file, std::string_view content) {
    while (!content.empty()) {
        const FileFault fault = faultOf(FileOperation::write);
        const std::string_view passing = content.substr(0, fault.mostBytes);
        errno = 0;
        const std::size_t written = std::fwrite(passing.data(), 1, passing.size(), file);
        content.remove_prefix(written);
        if (fault.error != 0) errno = fault.error;
        if (content.empty() && fault.error == 0) break;
        if (errno != EINTR) return false; // a signal is no fault; some network file systems let one through
        std::clearerr(file);
    }
    return true;
}

bool readAll(std::FILE* file, char* to, std::size_t length, std::size_t& got) {
    got = 0;
    while (got < length) {
        errno = 0;
        const std::size_t part = std::fread(to + got, 1, length - got, file);
        got += part;
        if (std::ferror(file) != 0) {
            if (errno != EINTR) return false;
            std::clearerr(file);
        } else if (part == 0) {
            break;
        }
    }
    return true;
}

bool flushToDisc(std::FILE* file) {
    if (isToFail(FileOperation::flush)) return false;
#ifdef _WIN32
    return ::_commit(::_fileno(file)) == 0;
#else
    int status = 0;
    do status = ::fsync(::fileno(file));
    while (status != 0 && errno == EINTR);
    return status == 0 || errno == EINVAL || errno == EROFS; // a device has nothing to flush
#endif
}

bool cutTo(std::FILE* file, std::int64_t length) {
    if (isToFail(FileOperation::cut)) return false;
#ifdef _WIN32
    return ::_chsize_s(::_fileno(file), length) == 0;
#else
    int status = 0;
    do status = ::ftruncate(::fileno(file), static_cast<off_t>(length));
    while (status != 0 && errno == EINTR);
    return status == 0;
#endif
}

bool seekTo(std::FILE* file, std::int64_t position) {
#ifdef _WIN32
    return ::_fseeki64(file, position, SEEK_SET) == 0;
#else
    return ::fseeko(file, static_cast<off_t>(position), SEEK_SET) == 0;
#endif
}

std::int64_t lengthOf(std::FILE* file) {
#ifdef _WIN32
    return ::_fseeki64(file, 0, SEEK_END) == 0 ? ::_ftelli64(file) : -1;
#else
    return ::fseeko(file, 0, SEEK_END) == 0 ? static_cast<std::int64_t>(::ftello(file)) : -1;
#endif
}

std::int64_t fileSizeLimit() {
#ifndef _WIN32
    struct rlimit limit {};

    if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
        return static_cast<std::int64_t>(limit.rlim_cur);
#endif
    return std::numeric_limits<std::int64_t>::max();
}

bool lockFile(std::FILE* file, bool exclusive, bool& waited) {
#ifdef _WIN32
    static_cast<void>(file), static_cast<void>(exclusive), static_cast<void>(waited);
    return false;
#else
    using namespace std::chrono_literals;
    constexpr auto patience = 5s; // a process that holds the lock and hangs must not hold up a run for ever
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        if (::flock(::fileno(file), (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0) return true;
        const bool isTaken = errno == EWOULDBLOCK || errno == EINTR;
        if (!isTaken || std::chrono::steady_clock::now() - start > patience) return false;
        waited = true;
        std::this_thread::sleep_for(2ms);
    }
#endif
}

bool lockAtOnce(std::FILE* file) {
#ifdef _WIN32
    static_cast<void>(file);
    return false;
#else
    return ::flock(::fileno(file), LOCK_EX | LOCK_NB) == 0;
#endif
}

} // namespace norvane
