#include "platform/files.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <system_error>

#ifdef _WIN32
#    include <io.h>
#    include <windows.h>
#else
#    include <sys/stat.h>
#    include <unistd.h>
#endif

namespace norvane {

namespace {

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, Closer>;

constexpr int notAFile = EINVAL; ///< told by openFile of pipes, sockets and, for reading, devices

FileResult failure(int number) {
    if (number == 0) number = EIO; // a fault that the library does not number
    if (number == notAFile) return {number, "it is not a file"};
    return {number, std::generic_category().message(number)};
}

/// Opens a regular file; for writing also a device, such as the null device that a link may lead to. Anything else is
/// refused before it is opened: a folder fails late and unclearly, and a pipe may wait for ever.
File openFile(const std::string& path, const char* mode) {
    std::error_code ignored;
    const auto type = std::filesystem::status(path, ignored).type();
    using std::filesystem::file_type;
    const bool isReading = mode[0] == 'r' && mode[1] == 'b';
    const bool isDevice = type == file_type::character || type == file_type::block;
    if (type == file_type::directory || type == file_type::fifo || type == file_type::socket
        || (isDevice && isReading)) {
        errno = type == file_type::directory ? EISDIR : notAFile;
        return nullptr;
    }
    errno = 0;
    return File(std::fopen(path.c_str(), mode));
}

bool writeAll(std::FILE* file, std::string_view content) {
    if (content.empty()) return true;
    return std::fwrite(content.data(), 1, content.size(), file) == content.size() && std::fflush(file) == 0;
}

bool flushToDisc(std::FILE* file) {
#ifdef _WIN32
    return ::_commit(::_fileno(file)) == 0;
#else
    return ::fsync(::fileno(file)) == 0 || errno == EINVAL || errno == EROFS; // a pipe or device has nothing to flush
#endif
}

bool cutTo(std::FILE* file, std::size_t length) {
#ifdef _WIN32
    return ::_chsize_s(::_fileno(file), static_cast<long long>(length)) == 0;
#else
    return ::ftruncate(::fileno(file), static_cast<off_t>(length)) == 0 || errno == EINVAL;
#endif
}

/// Makes a file at least so long, so that a full disc shows before anything in it is lost; leaves it as it was where
/// that can't be done. The position is at its beginning afterwards.
bool makeRoom(std::FILE* file, std::size_t length) {
    if (std::fseek(file, 0, SEEK_END) != 0) return false;
    const long end = std::ftell(file);
    if (end < 0) return false;
    const auto oldLength = static_cast<std::size_t>(end);
    if (oldLength < length && !(writeAll(file, std::string(length - oldLength, ' ')) && flushToDisc(file))) {
        const int number = errno;
        cutTo(file, oldLength);
        errno = number;
        return false;
    }
    return std::fseek(file, 0, SEEK_SET) == 0;
}

FileResult writeThrough(const std::string& path, const char* mode, std::string_view content) {
    File file = openFile(path, mode);
    if (!file) return failure(errno);
    errno = 0;
    if (!writeAll(file.get(), content)) return failure(errno);
    if (std::fclose(file.release()) != 0) return failure(errno); // some file systems tell a full disc only here
    return {};
}

} // namespace

std::string joinPath(const std::string& folder, const std::string& name) {
    return folder + static_cast<char>(std::filesystem::path::preferred_separator) + name;
}

std::string absolutePath(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code failed; // without a working directory the path stays as it is
    fs::path whole = fs::absolute(path, failed);
    if (failed) whole = path;
    const bool climbs = std::find(whole.begin(), whole.end(), "..") != whole.end();
    // Behind a link ".." is not the folder that the text names.
    const fs::path resolved = climbs ? fs::weakly_canonical(whole, failed) : whole;
    whole = (failed ? whole : resolved).lexically_normal();
    if (whole.has_relative_path() && whole.filename().empty()) whole = whole.parent_path();
    return whole.string();
}

std::string folderOf(const std::string& path) {
    return std::filesystem::path(absolutePath(path)).parent_path().string();
}

std::string nameOf(const std::string& path) { return std::filesystem::path(path).filename().string(); }

FileResult readFile(const std::string& path, std::string& content) try {
    content.clear();
    File file = openFile(path, "rb");
    if (!file) return failure(errno);
    std::error_code ignored;
    const auto size = std::filesystem::file_size(path, ignored);
    constexpr std::size_t blockSize = 1 << 16;
    std::size_t length = 0;
    content.resize(ignored ? blockSize : static_cast<std::size_t>(size) + 1);
    for (;;) {
        errno = 0;
        length += std::fread(content.data() + length, 1, content.size() - length, file.get());
        if (length < content.size()) break;
        content.resize(content.size() + content.size() / 2 + blockSize); // the file grew, or its size is not told
    }
    const bool failed = std::ferror(file.get()) != 0;
    content.resize(failed ? 0 : length);
    return failed ? failure(errno) : FileResult{};

} catch (const std::exception&) { // no memory for so much

    content = std::string();
    return failure(ENOMEM);
}

FileResult readPieces(const std::string& path, const std::function<bool(std::string_view piece)>& take) try {
    File file = openFile(path, "rb");
    if (!file) return failure(errno);
    std::string piece(std::size_t{1} << 17, '\0'); // stays in the cache while it is taken
    for (;;) {
        errno = 0;
        const std::size_t length = std::fread(piece.data(), 1, piece.size(), file.get());
        if (std::ferror(file.get()) != 0) return failure(errno);
        if (length == 0 || !take(std::string_view(piece).substr(0, length))) return {};
    }

} catch (const std::exception&) { // no memory for a piece, or for what is made of it

    return failure(ENOMEM);
}

FileResult writeFile(const std::string& path, std::string_view content) { return writeThrough(path, "wb", content); }

FileResult appendFile(const std::string& path, std::string_view content) { return writeThrough(path, "ab", content); }

FileResult overwriteFile(const std::string& path, std::string_view content) {
    File file = openFile(path, "r+b");
    if (!file && errno == ENOENT) file = openFile(path, "wb");
    if (!file) return failure(errno);
    errno = 0;
    std::FILE* const to = file.get();
    if (!makeRoom(to, content.size())) return failure(errno);
    const std::string_view rest = content.empty() ? content : content.substr(1);
    // Until all else is safe a mark stands in the first place, so that no reader takes a mixture of old and new for
    // whole.
    const bool written = writeAll(to, "#") && flushToDisc(to) && writeAll(to, rest) && cutTo(to, content.size())
                         && flushToDisc(to) && std::fseek(to, 0, SEEK_SET) == 0 && writeAll(to, content.substr(0, 1))
                         && flushToDisc(to);
    if (!written) return failure(errno);
    if (std::fclose(file.release()) != 0) return failure(errno);
    return {};
}

FileResult replaceFile(const std::string& path, std::string_view content) {
    namespace fs = std::filesystem;
    std::error_code failed;
    const fs::path linked = fs::weakly_canonical(path, failed); // a link stays, and leads to the new file
    const std::string target = failed ? path : linked.string();
    const bool exists = fs::exists(target, failed);
    if (exists && !fs::is_regular_file(target, failed))
        return writeFile(path, content); // a device takes it as it comes
    std::string beside;
    File file;
    for (int number = 0; !file && number < 100; ++number) {
        beside = target + ".part" + std::to_string(number);
        errno = 0;
        file.reset(std::fopen(beside.c_str(), "wbx")); // never one that somebody else has made
        if (!file && errno != EEXIST) return failure(errno);
    }
    if (!file) return failure(EEXIST);
    errno = 0;
    bool written = writeAll(file.get(), content);
    if (std::fclose(file.release()) != 0) written = false;
    const int number = errno;
    if (written) fs::rename(beside, target, failed);
    if (written && !failed) return {};
    const FileResult fault = written ? FileResult{failed.value(), failed.message()} : failure(number);
    fs::remove(beside, failed);
    return fault;
}

FileResult tryOpenForWriting(const std::string& path) {
    const File file = openFile(path, "ab");
    return file ? FileResult{} : failure(errno);
}

FileResult tryOpenForReading(const std::string& path) {
    const File file = openFile(path, "rb");
    return file ? FileResult{} : failure(errno);
}

FileResult removeFile(const std::string& path) {
    std::error_code failed;
    std::filesystem::remove(path, failed);
    return failed ? FileResult{failed.value(), failed.message()} : FileResult{};
}

std::string programPath(const std::string& calledName) {
    namespace fs = std::filesystem;
    if (fs::path(calledName).has_parent_path()) return absolutePath(calledName);
#ifdef _WIN32
    constexpr char separator = ';';
#else
    constexpr char separator = ':';
#endif
    const char* const variable = std::getenv("PATH");
    std::string folders = variable == nullptr ? "" : variable;
    while (!folders.empty()) {
        const std::size_t end = std::min(folders.find(separator), folders.size());
        const std::string candidate = joinPath(folders.substr(0, end), calledName);
        std::error_code unknown;
        if (end > 0 && fs::is_regular_file(candidate, unknown)) return absolutePath(candidate);
        folders.erase(0, std::min(end + 1, folders.size()));
    }
    return absolutePath(calledName);
}

std::vector<std::string> listFiles(const std::string& folder, const std::string& ending) {
    const auto lower = [](std::string text) {
        for (char& c : text)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        return text;
    };
    std::vector<std::string> names;
    std::error_code failed;
    std::filesystem::directory_iterator entry(folder, failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
        const std::string name = entry->path().filename().string();
        const bool fits =
            name.size() >= ending.size() && lower(name.substr(name.size() - ending.size())) == lower(ending);
        std::error_code unknown;
        if (fits && !entry->is_directory(unknown)) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

FileStamp stampOf(const std::string& path) {
#ifdef _WIN32
    std::error_code failed;
    const auto size = std::filesystem::file_size(path, failed);
    if (failed) return {};
    const auto written = std::filesystem::last_write_time(path, failed).time_since_epoch();
    if (failed) return {};
    return {true, size, std::chrono::duration_cast<std::chrono::nanoseconds>(written).count()};
#else
    struct stat told {};

    if (::stat(path.c_str(), &told) != 0) return {};
    const auto nanoseconds = [](const timespec& time) {
        return std::int64_t{time.tv_sec} * 1000000000 + std::int64_t{time.tv_nsec};
    };
    return {true,
            static_cast<std::uint64_t>(told.st_size),
            nanoseconds(told.st_mtim),
            nanoseconds(told.st_ctim),
            std::uint64_t{told.st_dev},
            std::uint64_t{told.st_ino}};
#endif
}

double physicalMemory() {
#ifdef _WIN32
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) ? static_cast<double>(status.ullTotalPhys) : 0;
#else
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    double bytes = pages > 0 && pageSize > 0 ? static_cast<double>(pages) * static_cast<double>(pageSize) : 0;
    // A container may grant less than the machine has.
    std::string limit;
    if (readFile("/sys/fs/cgroup/memory.max", limit) && !limit.empty() && limit[0] >= '0' && limit[0] <= '9') {
        const double granted = std::strtod(limit.c_str(), nullptr);
        if (bytes == 0 || granted < bytes) bytes = granted;
    }
    return bytes;
#endif
}

std::tm localTime() {
    const std::time_t now = std::time(nullptr);
    std::tm broken{};
#ifdef _WIN32
    ::localtime_s(&broken, &now);
#else
    ::localtime_r(&now, &broken);
#endif
    return broken;
}

} // namespace norvane
