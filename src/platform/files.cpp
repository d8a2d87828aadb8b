#include "platform/available_memory.h"
#include "platform/file_faults.h"
#include "platform/letter_case.h"
#include "platform/open_file.h"
#include "platform/replacement.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <system_error>

#ifndef _WIN32
#    include <sys/stat.h>
#endif

namespace norvane {

namespace {

FileResult writeThrough(const std::string& path, Access access, std::string_view content) {
    FileResult result;
    File file = openFile(path, access, result);
    if (!file) return result;
    const std::int64_t oldLength = access == Access::append && isRegular(file.get()) ? lengthOf(file.get()) : -1;
    errno = 0;
    if (!writeAll(file.get(), content)) {
        result = failure(errno);
        if (oldLength >= 0) cutTo(file.get(), oldLength); // half a line would be continued when there is room again
        return result;
    }
    errno = 0;
    if (!closeFile(std::move(file))) return failure(errno); // some file systems report a full disc only here
    return {};
}

/// Reads a file, piece by piece, while `goesOn` gives true for the latest piece.
FileResult readWhile(const std::string& path,
                     std::string& content,
                     const std::function<bool(std::string_view piece)>& goesOn) try {
    content.clear();
    FileResult result;
    const File file = openFile(path, Access::read, result);
    if (!file) return result;
    constexpr std::int64_t littleMemory = std::int64_t{1} << 22;
    const std::int64_t size = lengthOf(file.get());
    const double memory = size > littleMemory ? availableMemory() : 0;
    if (memory > 0 && static_cast<double>(size) > memory) return failure(ENOMEM); // rather than that the system ends us
    std::string piece(std::size_t{1} << 16, '\0');
    errno = 0;
    bool whole = seekTo(file.get(), 0);
    for (std::size_t got = piece.size(); whole && got == piece.size();) {
        whole = readAll(file.get(), piece.data(), piece.size(), got);
        content.append(piece, 0, got);
        if (!goesOn(std::string_view(piece).substr(0, got))) break;
        // At once, but not for a file that is given up soon.
        if (static_cast<std::int64_t>(content.size()) == littleMemory) content.reserve(static_cast<std::size_t>(size));
    }
    if (whole) return {};
    result = failure(errno);
    content = std::string();
    return result;

} catch (const std::exception&) { // no memory for so much

    content = std::string();
    return failure(ENOMEM);
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

bool liesBelow(const std::string& path, const std::string& folder) {
    namespace fs = std::filesystem;
    std::error_code failed;
    const fs::path top = fs::canonical(folder, failed);
    if (failed) return false;
    // The last link may lead to a file that does not exist yet.
    fs::path target = path;
    for (int links = 0; links < 40 && fs::is_symlink(target, failed); ++links) {
        const fs::path next = fs::read_symlink(target, failed);
        if (failed) return false;
        target = target.parent_path() / next;
    }
    const fs::path whole = fs::weakly_canonical(fs::absolute(target, failed), failed);
    if (failed) return false;
    const auto differs = std::mismatch(top.begin(), top.end(), whole.begin(), whole.end());
    return differs.first == top.end() && differs.second != whole.end();
}

std::string folderOf(const std::string& path) {
    return std::filesystem::path(absolutePath(path)).parent_path().string();
}

std::string nameOf(const std::string& path) { return std::filesystem::path(path).filename().string(); }

FileResult readFile(const std::string& path, std::string& content) {
    return readWhile(path, content, [](std::string_view) { return true; });
}

FileResult readItems(const std::string& path, const ItemForm& form, std::string& content, bool& tooLong) {
    std::size_t length = 0; // behind the last separator
    const auto goesOn = [&](std::string_view piece) {
        const std::size_t last = piece.find_last_of(form.separators);
        length = last == std::string_view::npos ? length + piece.size() : piece.size() - 1 - last;
        return length <= form.longest;
    };
    FileResult read = readWhile(path, content, goesOn);
    tooLong = length > form.longest;
    return read;
}

FileResult readBeginning(const std::string& path, std::size_t bytes, std::string& content) {
    content.clear();
    FileResult result;
    const File file = openFile(path, Access::read, result);
    if (!file) return result;
    content.resize(bytes);
    std::size_t got = 0;
    if (!readAll(file.get(), content.data(), bytes, got)) result = failure(errno);
    content.resize(got);
    return result;
}

FileResult readEnd(const std::string& path, std::size_t bytes, std::string& content) {
    content.clear();
    FileResult result;
    const File file = openFile(path, Access::read, result);
    if (!file) return result;
    errno = 0;
    const std::int64_t length = lengthOf(file.get());
    const std::int64_t begin = std::max<std::int64_t>(length - static_cast<std::int64_t>(bytes), 0);
    content.resize(bytes);
    std::size_t got = 0;
    const bool read = length >= 0 && seekTo(file.get(), begin) && readAll(file.get(), content.data(), bytes, got);
    if (!read) result = failure(errno);
    content.resize(got);
    return result;
}

FileResult writeFile(const std::string& path, std::string_view content) {
    return writeThrough(path, Access::replace, content);
}

FileResult appendFile(const std::string& path, std::string_view content) {
    return writeThrough(path, Access::append, content);
}

FileResult replaceFile(const std::string& path, std::string_view content) {
    Replacement replacement(path);
    replacement.add(content);
    return replacement.finish();
}

FileResult renameFile(const std::string& from, const std::string& to) {
    if (isToFail(FileOperation::rename)) return failure(errno);
    std::error_code failed;
    std::filesystem::rename(from, to, failed);
    return failed ? FileResult{failed.value(), failed.message()} : FileResult{};
}

FileResult tryOpenForWriting(const std::string& path) {
    FileResult result;
    openFile(path, Access::append, result);
    return result;
}

FileResult tryOpenForReading(const std::string& path) {
    FileResult result;
    openFile(path, Access::read, result);
    return result;
}

FileResult removeFile(const std::string& path) {
    std::error_code failed;
    std::filesystem::remove(path, failed);
    return failed ? FileResult{failed.value(), failed.message()} : FileResult{};
}

FileResult cutFile(const std::string& path, std::uint64_t length) {
    FileResult result;
    const File file = openFile(path, Access::update, result);
    if (!file) return result;
    errno = 0;
    const std::int64_t has = lengthOf(file.get());
    if (has < 0) return failure(errno);
    if (static_cast<std::uint64_t>(has) < length)
        return {EINVAL, "it has " + std::to_string(has) + " bytes, and had " + std::to_string(length)};
    return cutTo(file.get(), static_cast<std::int64_t>(length)) ? FileResult{} : failure(errno);
}

FileResult flushFile(const std::string& path) {
    FileResult result;
    const File file = openFile(path, Access::update, result);
    if (!file) return result;
    errno = 0;
    return flushToDisc(file.get()) ? FileResult{} : failure(errno);
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
    std::vector<std::string> names;
    std::error_code failed;
    std::filesystem::directory_iterator entry(folder, failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
        const std::string name = entry->path().filename().string();
        const bool fits = endsLike(name, ending);
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
    struct stat status {};

    if (::stat(path.c_str(), &status) != 0) return {};
    const auto nanoseconds = [](const timespec& time) {
        return std::int64_t{time.tv_sec} * 1000000000 + std::int64_t{time.tv_nsec};
    };
    return {true,
            static_cast<std::uint64_t>(status.st_size),
            nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim),
            std::uint64_t{status.st_dev},
            std::uint64_t{status.st_ino}};
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
