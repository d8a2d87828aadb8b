// One script, two front ends: what a script prints and writes is the same, whether it acts on the records or on the
// controls of the windows.

#include "support/test_program.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

namespace norvane {
namespace {

namespace fs = std::filesystem;

/// What a script leaves behind.
struct Outcome {
    int status = -1;
    std::string out;
    std::map<std::string, std::string> files;
};

/// The moment in the name of a snapshot differs from run to run.
std::string withoutMoments(const std::string& text) {
    static const std::regex moment("_[0-9]{8}_[0-9]{6}");
    return std::regex_replace(text, moment, "_MOMENT");
}

std::string bytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Runs a program on the script in a folder that holds the examples and nothing else.
Outcome runIn(const fs::path& folder, const std::string& program, const fs::path& script) {
    fs::remove_all(folder);
    fs::create_directories(folder / "models" / "empty");
    for (const fs::directory_entry& entry : fs::directory_iterator(NORVANE_EXAMPLES))
        if (entry.path().extension() != ".md") fs::copy(entry.path(), folder / "models");
    fs::copy(script, folder / "script.txt");
    fs::current_path(folder);

    Outcome outcome;
    std::FILE* pipe = ::popen((program + " script.txt").c_str(), "r");
    char block[4096];
    for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, pipe)) > 0;) outcome.out.append(block, got);
    const int status = ::pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome.out = withoutMoments(outcome.out);
    std::set<fs::path> files; // in order: of pictures of several seconds the last one counts, as of those of one second
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) files.insert(entry.path());
    for (const fs::path& file : files)
        outcome.files[withoutMoments(file.lexically_relative(folder).string())] = bytesOf(file);
    return outcome;
}

std::vector<fs::path> scripts() {
    std::vector<fs::path> all;
    for (const fs::directory_entry& entry : fs::directory_iterator(NORVANE_SCRIPTS)) all.push_back(entry.path());
    return all;
}

class Replay : public testing::TestWithParam<fs::path> {};

TEST_P(Replay, printsAndWritesTheSame) {
    const TestProgram place; // its folder, and the way back
    const fs::path folder = place.folder / "work";
    const Outcome records = runIn(folder, NORVANE_PROGRAM " script --trace", GetParam());
    const Outcome windows = runIn(folder, NORVANE_REPLAY " --trace", GetParam());
    fs::current_path(place.folder);

    EXPECT_EQ(records.status, 0) << records.out;
    EXPECT_EQ(windows.status, records.status);
    EXPECT_EQ(windows.out, records.out);
    for (const auto& [name, bytes] : records.files) {
        const auto found = windows.files.find(name);
        ASSERT_NE(found, windows.files.end()) << name << " is missing";
        EXPECT_TRUE(found->second == bytes) << name << " differs";
    }
    EXPECT_EQ(windows.files.size(), records.files.size());
}

std::string nameOfCase(const testing::TestParamInfo<fs::path>& script) { return script.param.stem().string(); }

INSTANTIATE_TEST_SUITE_P(scripts, Replay, testing::ValuesIn(scripts()), nameOfCase);

} // namespace
} // namespace norvane
