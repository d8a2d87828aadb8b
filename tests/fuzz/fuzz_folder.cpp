#include "fuzz_folder.h"

#include "geometry/grid_file.h"
#include "platform/files.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

/// Memory that is refused comes back as bad_alloc, as it does without the sanitizer.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1:detect_leaks=1"; }

namespace norvane {

namespace {

namespace fs = std::filesystem;

fs::path ownFolder; // of this process

void removeFolder() {
    std::error_code ignored;
    fs::remove_all(ownFolder, ignored);
}

} // namespace

const char* const smallTable = "NS 1:DT 1E-5:NT 4:UT 1:LT 1:ST 2:DD 1;0.01:DD 2;0.02:LA 0.03:ET 2E-5:GG 2;9.8\t\t\n"
                               "L\t\t\nTT 400:WT 1\tCC 1;0.5:RR 3\tPP 2E5\nWV 1;-1:VV 1;1\t\tWV 0;1\nL\t\t";

void enterEmptyFolder() {
    if (ownFolder.empty()) {
        const fs::path memory = "/dev/shm";
        const fs::path parent = fs::is_directory(memory) ? memory : fs::temp_directory_path();
        ownFolder = parent / ("norvane-fuzz-" + std::to_string(::getpid()));
        fs::create_directories(ownFolder);
        std::atexit(removeFolder);
    }
    fs::current_path(ownFolder);
    for (const fs::directory_entry& entry : fs::directory_iterator(ownFolder)) fs::remove_all(entry.path());
}

MemoryLimit::MemoryLimit(std::size_t bytes) {
    std::ifstream pages("/proc/self/statm");
    std::size_t taken = 0;
    pages >> taken;
    const struct rlimit limit = {taken * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) + bytes, RLIM_INFINITY};
    ::setrlimit(RLIMIT_AS, &limit);
}

MemoryLimit::~MemoryLimit() {
    const struct rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
    ::setrlimit(RLIMIT_AS, &none);
}

void require(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

FuzzProgram::FuzzProgram(int mostYields) : yieldsLeft(mostYields) {
    connectProgram(program);
    sim.threads = 1;
    ui.askText = [](const std::string&, const std::string& defaultText) { return defaultText; };
    ui.yieldToInterface = [this] {
        if (--yieldsLeft < 0) sim.stopFlag = true;
    };
    startProgram(program, {fs::current_path().string(), "norvane", {}});
}

void FuzzProgram::load(std::string_view table) {
    writeBytes("m.gmt", table);
    selectGeometry(program, "m.gmt");
    loadGeometry(sim, ui);
}

void writeBytes(const std::string& name, std::string_view bytes) {
    require(static_cast<bool>(writeFile(name, bytes)), "a file can be written");
}

std::string bytesOf(const std::string& name) {
    std::string bytes;
    readFile(name, bytes);
    return bytes;
}

} // namespace norvane
