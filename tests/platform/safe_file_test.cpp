// A file that is overwritten in place: another process reads the old content or the new one.

#include "platform/file_faults.h"
#include "platform/safe_file.h"
#include "support/test_program.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>
#include <string>

namespace norvane {
namespace {

std::string whole(char c) { return std::string(std::size_t{1} << 20, c); }

/// Overwrites the file again and again, with one letter and another; gives the number of the process.
pid_t startWriter(const std::string& path) {
    const pid_t process = ::fork();
    if (process != 0) return process;
    for (char c = 'a';; c = c == 'a' ? 'b' : 'a') {
        overwriteFile(path, whole(c));
        ::usleep(5000); // or a reader would seldom get the lock
    }
}

TEST(safeFile, isNeverAMixtureForAnotherProcess) {
    TestProgram test;
    ASSERT_TRUE(overwriteFile("f", whole('a')));
    const pid_t writer = startWriter("f");
    std::multiset<char> met;
    bool disturbedEver = false;
    for (int read = 0; read < 40; ++read) {
        std::string content;
        bool disturbed = false;
        const FileResult result = readWholeFile("f",
                                                {[&] { content.clear(); },
                                                 [&](std::string_view piece) {
                                                     content += piece;
                                                     return content.size() < whole('a').size();
                                                 }},
                                                disturbed);
        if (result) met.insert(content[0]);
        EXPECT_EQ(content.find_first_not_of(content.substr(0, 1)), std::string::npos) << "read " << read;
        disturbedEver = disturbedEver || disturbed;
    }
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    EXPECT_TRUE(met.count('a') > 0 && met.count('b') > 0 && disturbedEver) << "the reads met no save";
}

int operationsLeft = 0;

FileFault killInTime(FileOperation operation) {
    if (operationsLeft-- == 0) ::raise(SIGKILL);
    return {0, operationsLeft == 0 && operation == FileOperation::write ? 3 : SIZE_MAX};
}

/// Gives whether the overwrite was killed before it had made so many operations.
bool overwriteKilledAt(int operation, const std::string& content) {
    const pid_t process = ::fork();
    if (process == 0) {
        operationsLeft = operation;
        setFileFaults(killInTime);
        overwriteFile("f", content);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    return WIFSIGNALED(status);
}

std::string contentOf(const std::string& path) {
    std::string content;
    bool ignored = false;
    const auto take = [&](std::string_view piece) {
        content += piece;
        return true;
    };
    return readWholeFile(path, {[&] { content.clear(); }, take}, ignored) ? content : "";
}

TEST(safeFile, outlivesTwoKillsInARowWhateverTheLengths) {
    TestProgram test{std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : ""}; // not thousands of flushes of a disc
    const std::string contents[] = {"old" + std::string(500, 'o') + "\n", "first" + std::string(700, '1') + "\n",
                                    "second" + std::string(300, '2') + "\n"};
    int kills = 0;
    for (int first = 0; first < 25; ++first) {
        for (int second = 0; second < 25; ++second) {
            test.write("f", contents[0]);
            kills += overwriteKilledAt(first, contents[1]) ? 1 : 0;
            kills += overwriteKilledAt(second, contents[2]) ? 1 : 0;
            const std::string met = contentOf("f");
            const std::string line = met.substr(0, met.find('\n') + 1); // behind it may be what a reader passes over
            ASSERT_TRUE(line == contents[0] || line == contents[1] || line == contents[2])
                << "kills at " << first << " and " << second << " leave \"" << met << "\"";
        }
    }
    EXPECT_GT(kills, 200);
}

} // namespace
} // namespace norvane
