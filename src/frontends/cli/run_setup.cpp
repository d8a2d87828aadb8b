#include "frontends/cli/run_setup.h"

#include "frontends/cli/console.h"
#include "geometry/table_edit.h"
#include "platform/files.h"
#include "platform/terminal_text.h"

#include <cstdio>
#include <filesystem>

namespace norvane {

namespace {

/// A stop file and a summary are written over what is there: that has to be one of an earlier run. Gives false after a
/// message.
bool mayReplace(const char* option, const std::string& path, bool (*isOurs)(const std::string& beginning)) {
    constexpr std::size_t few = 64;
    std::string beginning;
    if (path.empty() || !stampOf(path).exists || (readBeginning(path, few, beginning) && isOurs(beginning)))
        return true;
    std::fprintf(stderr, "%s: %s holds something else, which would be lost; name another file\n", option,
                 printableName(path).c_str());
    return false;
}

bool isStopFile(const std::string& beginning) {
    return beginning.size() < 16 && beginning.find_first_not_of(" \t\r\n0123456789-") == std::string::npos;
}

bool isSummary(const std::string& beginning) {
    return beginning.empty() || beginning.substr(0, 15) == "{\n  \"geometry\":";
}

/// Whether an output of the run has a name of its own. Gives false after a message.
bool isFree(const RunOptions& options, const SimState& sim, const std::string& ending) {
    const std::string output = joinPath(sim.inputDir, sim.baseName + ending);
    if (wouldOverwrite(options.geometry, output)) return false;
    if (options.summary.empty() || absolutePath(options.summary) != absolutePath(output)) return true;
    std::fprintf(stderr, "--summary: %s is an output of the run; name another file\n",
                 printableName(options.summary).c_str());
    return false;
}

} // namespace

bool takeChanges(const RunOptions& options, SimState& sim) {
    if (!mayReplace("--stop-file", options.stopFile, isStopFile)) return false;
    if (!mayReplace("--summary", options.summary, isSummary)) return false;
    if (!options.stopFile.empty()) sim.stopFileName = options.stopFile;
    for (const std::string& change : options.changes) {
        const std::string fault = applyChange(sim, change);
        if (fault.empty()) continue;
        std::fprintf(stderr, "--set %s: %s\n", printableName(change).c_str(), printableName(fault).c_str());
        return false;
    }
    return true;
}

bool takeNames(const RunOptions& options, SimState& sim) {
    if (!options.name.empty()) {
        const std::string& name = options.name;
        const bool hasControls = printableName(name) != name;
        if (hasControls || name.find_first_of("/\\") != std::string::npos) {
            std::fprintf(stderr, "--name: \"%s\" is no plain name; -o names the folder\n",
                         printableName(options.name).c_str());
            return false;
        }
        sim.baseName = options.name;
        sim.outName = sim.baseName + "_out";
    }
    if (!options.folder.empty()) {
        std::error_code failed;
        std::filesystem::create_directories(options.folder, failed);
        if (!std::filesystem::is_directory(options.folder, failed)) {
            std::fprintf(stderr, "-o: the folder %s can't be made: %s\n", printableName(options.folder).c_str(),
                         failed ? failed.message().c_str() : "a file has that name");
            return false;
        }
        sim.inputDir = absolutePath(options.folder);
    }
    for (const char* const ending : {"_out", "_log", "_state"})
        if (!isFree(options, sim, ending)) return false;
    return true;
}

bool takeEndings(const RunOptions& options, const SimState& sim, const std::vector<RunExtra>& extras) {
    for (const RunExtra& extra : extras)
        for (const std::string& ending : extra.endings)
            if (!isFree(options, sim, ending)) return false;
    return true;
}

} // namespace norvane
