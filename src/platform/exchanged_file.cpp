#include "platform/exchanged_file.h"

#include "platform/open_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#ifndef _WIN32
#    include <fcntl.h>
#    include <unistd.h>
#endif

namespace norvane {

namespace {

FileResult flushContent(const std::string& path) {
    FileResult result;
    const File file = openFile(path, Access::update, result);
    if (!file) return result;
    errno = 0;
    return flushToDisc(file.get()) ? FileResult{} : failure(errno);
}

/// Names that were changed lie in the folder. Some file systems have nothing to flush there: no fault.
void flushFolder(const std::string& folder) {
#ifndef _WIN32
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
#else
    (void)folder;
#endif
}

} // namespace

FileResult exchangeFile(const std::string& fresh, const std::string& path, const std::string& older, bool& kept) {
    namespace fs = std::filesystem;
    kept = false;
    FileResult flushed = flushContent(fresh);
    if (!flushed) return flushed;
    std::error_code failed;
    fs::remove(older, failed);
    fs::create_hard_link(path, older, failed); // refused where there is no file yet, too
    const bool linked = !failed;
    fs::rename(fresh, path, failed);
    if (failed) {
        FileResult fault{failed.value(), failed.message()};
        if (linked) fs::remove(older, failed);
        return fault;
    }
    kept = linked;
    flushFolder(folderOf(path));
    return {};
}

FileResult makeFresh(const std::string& path) {
    std::error_code failed;
    std::filesystem::remove(path, failed);
    errno = 0;
    const File file(std::fopen(path.c_str(), "wbx"));
    return file ? FileResult{} : failure(errno);
}

std::string exchangeTarget(const std::string& path, FileResult& result) { return outputTarget(path, result); }

} // namespace norvane
