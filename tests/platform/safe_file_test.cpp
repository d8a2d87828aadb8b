// A file that is overwritten in place: another process reads the old content or the new one.

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

} // namespace
} // namespace norvane
