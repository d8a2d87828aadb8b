// Every command that writes, with a fault in each of its file operations in turn, and killed before each.

#include "frontends/cli/command_line.h"
#include "platform/file_faults.h"
#include "platform/files.h"
#include "platform/safe_file.h"
#include "support/test_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace norvane {
namespace {

namespace fs = std::filesystem;

enum class Kind { none, fails, failsHalfway, interrupted, discFull, killed, killedHalfway };

/// Which operation is to meet what. `seen` lies in memory that a child process shares.
struct Plan {
    Kind kind = Kind::none;
    int at = 0;
    int* seen = nullptr;
} plan;

FileFault meet(FileOperation operation) {
    constexpr std::size_t few = 3;
    const int number = (*plan.seen)++;
    const bool isWrite = operation == FileOperation::write;
    if (plan.kind == Kind::discFull && number >= plan.at && isWrite) return {ENOSPC, number == plan.at ? few : 0};
    if (number == plan.at + 1 && plan.kind == Kind::killedHalfway) ::raise(SIGKILL);
    if (number != plan.at) return {};
    switch (plan.kind) {
    case Kind::fails: return {EIO, 0};
    case Kind::failsHalfway: return {EDQUOT, few};
    case Kind::interrupted: return isWrite ? FileFault{EINTR, few} : FileFault();
    case Kind::killedHalfway:
        if (isWrite) return {EINTR, few};
        [[fallthrough]];
    case Kind::killed: ::raise(SIGKILL); [[fallthrough]];
    default: return {};
    }
}

struct Outcome {
    int status = -1; ///< -1: killed
    int operations = 0;
    std::string said;
};

/// Carries out a command line of the program in a process of its own, since it may be killed.
Outcome carryOut(const std::vector<std::string>& words, Kind kind, int at) {
    static int* const shared =
        static_cast<int*>(::mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    *shared = 0;
    plan = {kind, at, shared};
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(::open("said", O_CREAT | O_TRUNC | O_WRONLY, 0666), STDERR_FILENO);
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        std::vector<std::string> all{"norvane"};
        all.insert(all.end(), words.begin(), words.end());
        std::vector<char*> arguments;
        for (std::string& word : all) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        setFileFaults(meet);
        const int status = programMain(static_cast<int>(all.size()), arguments.data());
        std::fflush(nullptr);
        ::_exit(status);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    std::ifstream said("said");
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, *shared, {std::istreambuf_iterator<char>(said), {}}};
}

/// The content that the program itself would take.
std::string contentOf(const std::string& name) {
    std::string content;
    bool ignored = false;
    const auto take = [&](std::string_view piece) {
        content += piece;
        return true;
    };
    return readWholeFile(name, {[&] { content.clear(); }, take}, ignored) ? content : "(none)";
}

using Contents = std::map<std::string, std::string>;

/// A command, what it writes, and how that is allowed to end.
struct Writer {
    const char* name;
    std::vector<std::string> words;
    std::vector<std::string> outputs;
};

const char* const settings = "NT 2:UT 0:LT 1:DT 1E-5:PP 1E5";

struct FileFaultTest : testing::TestWithParam<Writer> {
    TestProgram test{fs::is_directory("/dev/shm") ? "/dev/shm" : ""}; // thousands of flushes wear a disc
    Contents before;                                                  ///< of an earlier command
    Contents after;                                                   ///< of this one without a fault
    Outcome usual;                                                    ///< of this one without a fault

    FileFaultTest() {
        test.write("ffmpeg", "#!/bin/sh\nfor last; do :; done\ncat [!f]*_00000?.png > \"$last\"\n");
        fs::permissions("ffmpeg", fs::perms::owner_all);
        ::setenv("PATH", (test.folder.string() + ":/usr/bin:/bin").c_str(), 1);
        before = contentsFor("TT 300");
        after = contentsFor("TT 400");
    }

    Contents contentsFor(const std::string& texts) {
        test.write("m.gmt", std::string(settings) + ":" + texts + "\t\nL\t\n\tVV 1;1\nTT 500\t\nL\t");
        usual = carryOut(GetParam().words, Kind::none, 0);
        EXPECT_EQ(usual.status, 0) << usual.said;
        Contents contents;
        for (const std::string& name : GetParam().outputs) contents[name] = withoutTime(contentOf(name));
        return contents;
    }

    /// A summary tells the seconds of the clock, and which files there are.
    static std::string withoutTime(std::string content) {
        for (const char* const entry : {"\"seconds\":", "\"cellStepsPerSecond\":", "\"files\":"})
            if (const auto at = content.find(entry); at != std::string::npos)
                content.erase(at, content.find('\n', at) - at);
        return content;
    }

    void putBefore() const {
        for (const auto& entry : fs::directory_iterator("."))
            if (const auto name = entry.path().filename(); name != "m.gmt" && name != "ffmpeg") fs::remove(name);
        for (const auto& [name, content] : before) test.write(name, content);
    }

    /// Old or new. The stop file and the log are written in place; behind a state there may be what a reader passes
    /// over.
    bool isWhole(const std::string& name, const std::string& content, bool killed) const {
        const std::string& whole = after.at(name);
        const std::string& old = before.at(name);
        const bool isBeginning = whole.compare(0, content.size(), content) == 0;
        if (name == "m_probes.csv" && hasLinesOf(content, whole, killed)) return true;
        if (name == "m_log" && isBeginning && (killed || content.empty() || content.back() == '\n')) return true;
        if (name == "m_state"
            && (content.compare(0, whole.size(), whole) == 0 || content.compare(0, old.size(), old) == 0))
            return true;
        return content == whole || content == old || (name == "checkstop" && isBeginning);
    }

    /// Rows with their steps, of which one may be missing.
    static bool hasLinesOf(const std::string& content, const std::string& whole, bool mayBeCut) {
        std::istringstream lines(content);
        for (std::string line; std::getline(lines, line);) {
            const bool isCut = lines.eof();
            if (isCut ? !mayBeCut : whole.find(line + "\n") == std::string::npos) return false;
        }
        const std::string header = content.substr(0, content.find('\n'));
        return whole.compare(0, header.size(), header) == 0;
    }

    /// A film without one of its pictures is another one.
    static bool isTold(const std::string& name, const std::string& said) {
        return said.find(name) != std::string::npos || (name == "film.mp4" && said.find("_00000") != std::string::npos);
    }

    void look(const Outcome& outcome, bool killed, bool mustTell) const {
        if (outcome.status == 2) { // refused before it began
            for (const auto& [name, whole] : before) EXPECT_EQ(withoutTime(contentOf(name)), whole) << name;
            EXPECT_TRUE(mustTell && outcome.said.find("m_") != std::string::npos) << outcome.said;
            return;
        }
        bool missesOutput = false;
        for (const auto& [name, whole] : after) {
            const std::string content = withoutTime(contentOf(name));
            const bool told = isTold(name, outcome.said);
            EXPECT_TRUE(isWhole(name, content, killed) || (told && name == "film.mp4"))
                << name << " holds \"" << content.substr(0, 200) << "\"";
            missesOutput = missesOutput || (told && name != "checkstop");
            EXPECT_TRUE(killed || told || content == whole) << name << " is not as it should be, and nobody says so";
        }
        if (killed) return;
        EXPECT_EQ(outcome.status, missesOutput ? 4 : 0) << outcome.said;
        EXPECT_TRUE(mustTell || outcome.said == usual.said) << outcome.said;
        for (const auto& entry : fs::directory_iterator("."))
            EXPECT_EQ(entry.path().string().find(".part0"), std::string::npos) << entry.path() << " is left";
    }
};

TEST_P(FileFaultTest, isToldAndLeavesWholeFiles) {
    const int operations = usual.operations;
    ASSERT_GT(operations, 3);
    const std::map<Kind, const char*> reasons{{Kind::fails, "Input/output error"},
                                              {Kind::failsHalfway, "Disk quota exceeded"},
                                              {Kind::discFull, "No space left on device"},
                                              {Kind::interrupted, ""}};
    int told = 0;
    for (const auto& [kind, reason] : reasons) {
        for (int at = 0; at < operations; ++at) {
            SCOPED_TRACE(std::string(GetParam().name) + ", operation " + std::to_string(at) + ": " + reason);
            putBefore();
            const Outcome outcome = carryOut(GetParam().words, kind, at);
            look(outcome, false, kind != Kind::interrupted);
            const bool isTold = outcome.said != usual.said;
            EXPECT_TRUE(!isTold || outcome.said.find(reason) != std::string::npos) << outcome.said;
            told += isTold ? 1 : 0;
        }
    }
    EXPECT_GT(told, operations) << "the faults were not met";
}

TEST_P(FileFaultTest, afterAKillFilesAreWholeAndTheNextCommandWritesThemAll) {
    const int operations = usual.operations;
    for (const Kind kind : {Kind::killed, Kind::killedHalfway}) {
        for (int at = 0; at < operations; ++at) {
            SCOPED_TRACE(std::string(GetParam().name) + ", killed at operation " + std::to_string(at));
            putBefore();
            const Outcome killed = carryOut(GetParam().words, kind, at);
            EXPECT_TRUE(killed.status == -1 || at + 1 == operations) << killed.said;
            look(killed, true, false);
            look(carryOut(GetParam().words, Kind::none, 0), false, false);
        }
    }
}

std::vector<Writer> writers() {
    std::vector<Writer> all{{"run",
                             {"run", "m.gmt", "--save", "--snapshots", "2", "--summary", "s.json"},
                             {"checkstop", "m_log", "m_out", "m_state", "m_000002.png", "s.json"}},
                            {"film",
                             {"run", "m.gmt", "--snapshots", "1", "--movie", "film.mp4"},
                             {"checkstop", "m_log", "m_out", "film.mp4"}},
                            {"probes",
                             {"run", "m.gmt", "--probe", "A3:T,p", "--probe", "A4:u"},
                             {"checkstop", "m_log", "m_out", "m_probes.csv"}},
                            {"table", {"export", "m.gmt", "--csv", "t.csv"}, {"t.csv"}},
                            {"spectrum", {"spectrum", "m.gmt", "--points", "2"}, {"NV_spectrum"}},
                            {"picture", {"plot", "m.gmt", "-o", "p.png"}, {"p.png"}},
                            {"page", {"check", "m.gmt", "--picture", "k.svg"}, {"k.svg"}}};
#ifdef NORVANE_NETCDF
    // Without a log, since a checkpoint holds how long that is.
    all.push_back({"checkpoint",
                   {"run", "m.gmt", "--checkpoint-every", "2", "--set", "LT=0"},
                   {"checkstop", "m_out", "m_checkpoint.nc"}});
#endif
    return all;
}

INSTANTIATE_TEST_SUITE_P(, FileFaultTest, testing::ValuesIn(writers()), [](const auto& writer) {
    return std::string(writer.param.name);
});

} // namespace
} // namespace norvane
