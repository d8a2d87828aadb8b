#include "platform/available_memory.h"

#include "platform/files.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>

#ifdef _WIN32
#    include <windows.h>
#else
#    include <sys/resource.h>
#    include <unistd.h>
#endif

namespace norvane {

namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();

#ifndef _WIN32

std::string textOf(const std::string& path) {
    std::string text;
    readBeginning(path, std::size_t{1} << 16, text);
    return text;
}

/// The number after a word at the beginning of a line, or at the beginning of the text for an empty word.
double numberAfter(const std::string& text, std::string_view word, double otherwise) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, word.size(), word) != 0) continue;
        const std::size_t digit = line.find_first_not_of(" \t", word.size());
        const bool isNumber = digit != std::string::npos && line[digit] >= '0' && line[digit] <= '9';
        return isNumber ? std::strtod(line.c_str() + digit, nullptr) : otherwise;
    }
    return otherwise;
}

double freeInMachine() {
    const double kilobytes = numberAfter(textOf("/proc/meminfo"), "MemAvailable:", -1);
    if (kilobytes >= 0) return kilobytes * 1024;
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? static_cast<double>(pages) * static_cast<double>(pageSize) : unlimited;
}

/// What the groups from `folder` up to `root` leave. Pages of files count as used there, but are given up on demand.
double freeInGroups(const std::string& root, std::string folder, const char* limitFile, const char* usageFile) {
    double least = unlimited;
    for (;;) {
        const double limit = numberAfter(textOf(root + folder + limitFile), "", unlimited);
        if (limit < unlimited) {
            const double usage = numberAfter(textOf(root + folder + usageFile), "", 0);
            const std::string details = textOf(root + folder + "/memory.stat");
            const double files = numberAfter(details, "file ", numberAfter(details, "cache ", 0));
            least = std::min(least, std::max(0.0, limit - std::max(0.0, usage - files)));
        }
        if (folder.empty()) return least;
        folder.erase(folder.find_last_of('/'));
    }
}

/// The groups of the process, of both versions of the system's control groups.
double freeInControlGroups() {
    std::istringstream lines(textOf("/proc/self/cgroup"));
    double least = unlimited;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t path = line.find(":/");
        if (path == std::string::npos) continue;
        std::string folder = line.substr(path + 1);
        if (folder == "/") folder.clear();
        if (line.compare(0, 3, "0::") == 0)
            least = std::min(least, freeInGroups("/sys/fs/cgroup", folder, "/memory.max", "/memory.current"));
        else if (line.find("memory") < path)
            least = std::min(least, freeInGroups("/sys/fs/cgroup/memory", folder, "/memory.limit_in_bytes",
                                                 "/memory.usage_in_bytes"));
    }
    return least;
}

double freeAddressSpace() {
    struct rlimit limit {};

    if (::getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return unlimited;
    const double taken = numberAfter(textOf("/proc/self/statm"), "", 0) * static_cast<double>(::sysconf(_SC_PAGESIZE));
    return std::max(0.0, static_cast<double>(limit.rlim_cur) - taken);
}

#endif

} // namespace

double availableMemory() {
#ifdef _WIN32
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    const double bytes = GlobalMemoryStatusEx(&status) ? static_cast<double>(status.ullAvailPhys) : unlimited;
#else
    const double bytes = std::min({freeInMachine(), freeInControlGroups(), freeAddressSpace()});
#endif
    return bytes < unlimited ? std::max(bytes, 1.0) : 0;
}

} // namespace norvane
