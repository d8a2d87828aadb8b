// The command line: it blames the right word, and a run keeps its results whatever happens around it.

#include "support/run_program.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <set>
#include <thread>

namespace norvane {
namespace {

using testing::HasSubstr;

std::string square(int side, const std::string& keys) {
    const std::string tabs(static_cast<std::size_t>(side) - 1, '\t');
    std::string table = keys + tabs + "\nL" + tabs + "\n";
    for (int row = 0; row < side; ++row) table += tabs + "\n";
    return table + "L" + tabs;
}

/// Starts a run without an end; gives its number.
pid_t startRun(const std::string& geometry) {
    const pid_t process = ::fork();
    if (process == 0) {
        ::execl(NORVANE_PROGRAM, NORVANE_PROGRAM, "run", "-q", geometry.c_str(), nullptr);
        ::_exit(127);
    }
    return process;
}

void waitFor(const TestProgram& test, const std::string& name) {
    for (int turn = 0; turn < 500 && !test.exists(name); ++turn)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_TRUE(test.exists(name));
}

void end(pid_t process) {
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
}

TEST(commandLine, blamesTheWrongWordAndNamesTheNearestOne) {
    TestProgram test;
    test.write("m.gmt", square(3, "DT 1E-5:NT -1"));
    const std::vector<std::array<std::string, 2>> cases = {
        {"rnu m.gmt", "\"rnu\" is no command. Did you mean \"run\"?"},
        {"m.gmt", "Did you mean \"norvane run m.gmt\"?"},
        {"--verison", "there is no option \"--verison\". Did you mean \"--version\"?"},
        {"run --steps 5 m.gmt", "norvane run: there is no option \"--steps\"."},
        {"plot m.gmt -o x.png --slice 1=1", "dimension 1 is drawn"},
        {"plot m.gmt -o x.png --scale 5:1", "is not LOW:HIGH"},
        {"plot m.gmt -o x.png --quantity 6 --component 1", "a species of the table, 0 to 0"},
        {"run m.gmt --movie x.mp4 --snapshots 1", "ffmpeg is not installed"},
    };
    for (const auto& [arguments, message] : cases) {
        const Outcome outcome = runProgram(arguments, "PATH=/none");
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_THAT(outcome.out, HasSubstr(message)) << arguments;
    }
    EXPECT_EQ(runProgram("plot m.gmt -o x.png --quantity 6 --component 0").status, 0);
    const Outcome endless = runProgram("run m.gmt", "(sleep 0.5; echo 1 > checkstop) &");
    EXPECT_THAT(endless.out, HasSubstr("3 x 3 cells, steps of 0.00001 s until it is stopped"));
}

TEST(commandLine, tellsFileAndReasonAfterTheSentenceOfTheSystem) {
    TestProgram test;
    test.write("m.gmt", square(3, "DT 1E-5"));
    EXPECT_THAT(runProgram("run m.gmt --recall").out,
                HasSubstr("An error occured opening the file\nm_state: No such file or directory\n"));
    test.write("m_state", " 4 \r\n 1 \r\n 1 \r\n 1 \r\n");
    EXPECT_THAT(runProgram("run m.gmt --recall").out,
                HasSubstr("incorrect number of cells in saved state\n"
                          "m_state holds a state of 4 cells, and the geometry has 9\n"));
    test.write("a\x1B[2J\nb.gmt", "L\n\nL");
    EXPECT_THAT(runProgram("run a*").out, HasSubstr("a\\x1b[2J\\x0ab.gmt: 1 cell, 1 step of 0.01 s\n"));
    EXPECT_EQ(runProgram("run m.gmt > /dev/full").status, 4);
    test.write("checkstop", square(3, ""));
    EXPECT_EQ(runProgram("run checkstop").status, 2);
    test.write("p.gmt", square(3, "DT 1E-6:NT 20:FT 1"));
    EXPECT_THAT(runProgram("run p.gmt").out, HasSubstr("of the snapshots of key FT were replaced"));
}

TEST(commandLine, makesAFilmOfTheNumberedPicturesAndKeepsThemWhereItFails) {
    TestProgram test;
    test.write("m.gmt", square(3, "DT 1E-6:NT 6:UT 0"));
    // In place of the film: the list of its pictures, with what a picture of a step begins with.
    test.write("ffmpeg", "#!/bin/sh\nwhile [ $# -gt 1 ]; do [ \"$1\" = -i ] && list=$2; shift; done\n"
                         "head -c 4 m_000002.png >> \"$list\"; cp \"$list\" \"$1\"; exit ${FAULT:-0}\n");
    std::filesystem::permissions("ffmpeg", std::filesystem::perms::owner_all);
    const std::string path = "export PATH=\"$PWD:$PATH\";";
    const std::string film = "run m.gmt --snapshots 2 --movie x.mp4";
    const Outcome failed = runProgram(film, path + "export FAULT=1;");
    EXPECT_EQ(failed.status, 4);
    EXPECT_THAT(failed.out, HasSubstr("No film x.mp4: ffmpeg could not make it. The pictures "));
    EXPECT_TRUE(test.exists("m_000002.png") && !test.exists("x.mp4"));
    EXPECT_THAT(runProgram(film, path).out, HasSubstr("The film x.mp4 has 3 pictures."));
    std::string list;
    for (const char* step : {"2", "4", "6"})
        list += "file '" + test.folder.string() + "/m_00000" + step + ".png'\nduration 0.04\n";
    EXPECT_EQ(test.read("x.mp4"), list + "\x89PNG");
    std::set<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(test.folder)) left.insert(entry.path().filename());
    EXPECT_THAT(left, testing::ElementsAre("checkstop", "ffmpeg", "m.gmt", "m_out", "x.mp4"));
}

TEST(commandLine, underANameThatEndsInALineRunsTheGeometryBesideIt) {
    TestProgram test;
    std::filesystem::create_directory("sub");
    std::filesystem::create_symlink(NORVANE_PROGRAM, "sub/norvane_");
    test.write("sub/m.gmt", square(3, "DT 1E-6:NT 6:LT 1"));
    test.write("n.gmt", square(3, "DT 1E-6:NT 6:LT 1"));
    EXPECT_EQ(std::system("sub/norvane_"), 0);
    EXPECT_EQ(std::system("sub/norvane_ n.gmt"), 0);
    EXPECT_TRUE(test.exists("sub/m_log") && test.exists("n_log"));
    EXPECT_NE(std::system("sub/norvane_ a b 2> /dev/null"), 0);
}

TEST(commandLine, neverWritesTheFilesOfAnotherRun) {
    TestProgram test;
    test.write("m.gmt", square(3, "DT 1E-6:NT -1"));
    test.write("m.other.gmt", square(3, "DT 1E-6"));
    test.write("n.gmt", square(3, "DT 1E-6"));
    const pid_t first = startRun("m.gmt");
    waitFor(test, "m_out");
    const Outcome second = runProgram("run m.other.gmt");
    const Outcome neighbour = runProgram("run n.gmt");
    end(first);
    EXPECT_EQ(second.status, 4);
    EXPECT_THAT(second.out, HasSubstr("(process " + std::to_string(first) + ") is writing the files m_*"));
    EXPECT_EQ(neighbour.status, 0);
    EXPECT_THAT(neighbour.out, HasSubstr("the same stop file"));
    EXPECT_EQ(runProgram("run m.other.gmt").status, 0) << "the files are free again";
}

TEST(commandLine, keepsAStateThroughKillsAndLimits) {
    TestProgram test;
    test.write("m.gmt", square(40, "DT 1E-6:NT -1:ST 1:UT 0"));
    for (int kill = 0; kill < 20; ++kill) {
        const pid_t process = startRun("m.gmt");
        if (kill == 0) waitFor(test, "m_state");
        std::this_thread::sleep_for(std::chrono::microseconds(30000 + 1700 * kill));
        end(process);
        const Outcome recalled = runProgram("plot m.gmt --state -o x.bmp");
        ASSERT_EQ(recalled.status, 0) << "kill " << kill << ": " << recalled.out;
    }
    test.write("m.gmt", square(40, "DT 1E-6:NT 1:ST 1:UT 0"));
    runProgram("run m.gmt"); // ends what the last kill interrupted
    const std::string state = test.read("m_state");
    const Outcome limited = runProgram("run m.gmt", "ulimit -f 16;");
    EXPECT_EQ(limited.status, 4);
    EXPECT_THAT(limited.out, HasSubstr("File too large.\nThe state in memory is unchanged; the file is as it was"));
    EXPECT_TRUE(test.read("m_state") == state) << "the file has changed";
}

} // namespace
} // namespace norvane
