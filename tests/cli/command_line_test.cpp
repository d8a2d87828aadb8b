// The command line: it blames the right word, and a run keeps its results whatever happens around it.

#include "support/run_program.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
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
    test.write("b.bmp", square(3, ""));
    const std::vector<std::array<std::string, 2>> cases = {
        {"rnu m.gmt", "\"rnu\" is no command. Did you mean \"run\"?"},
        {"m.gmt", "Did you mean \"norvane run m.gmt\"?"},
        {"--verison", "there is no option \"--verison\". Did you mean \"--version\"?"},
        {"run --steps 5 m.gmt", "norvane run: there is no option \"--steps\"."},
        {"plot m.gmt -o x.png --slice 1=1", "dimension 1 is drawn"},
        {"plot m.gmt -o x.png --scale 5:1", "is not LOW:HIGH"},
        {"plot m.gmt -o x.png --quantity 6 --component 1", "a species of the table, 0 to 0"},
        {"run m.gmt --movie x.mp4 --snapshots 1", "ffmpeg is not installed"},
        {"run m.gmt \"$(printf '\\033[2J')\"", "not expected: \\x1b[2J"},
        {"plot b.bmp -o b.bmp", "b.bmp: this command writes a file of that name"},
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
    EXPECT_THAT(runProgram(film, path).out,
                testing::AllOf(HasSubstr("The film x.mp4 has 3 pictures."), HasSubstr("  Files: m_out, x.mp4\n")));
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

TEST(commandLine, writesThroughNoLinkOfAnotherUser) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a link away";
    TestProgram test;
    test.write("m.gmt", square(3, "DT 1E-6:ST 1\tLT 1"));
    for (const char* const output : {"m_out", "m_log", "m_state", "checkstop", "NV_spectrum", "x.png"}) {
        test.write("target", "precious");
        std::filesystem::remove(output);
        std::filesystem::create_symlink("target", output);
        ASSERT_EQ(::lchown(output, 65534, 65534), 0);
        for (const char* const arguments : {"run m.gmt", "spectrum m.gmt", "plot m.gmt -o x.png"})
            runProgram(arguments);
        EXPECT_EQ(test.read("target"), "precious") << output;
        EXPECT_TRUE(std::filesystem::is_symlink(output));
        ASSERT_EQ(::lchown(output, ::geteuid(), ::getegid()), 0);
        for (const char* const arguments : {"run m.gmt", "spectrum m.gmt", "plot m.gmt -o x.png"})
            runProgram(arguments);
        EXPECT_NE(test.read("target"), "precious") << output << " through the user's own link";
        std::filesystem::remove(output);
    }
}

TEST(commandLine, waitsForNoPipe) {
    TestProgram test;
    test.write("m.gmt", square(3, "DT 1E-6:ST 1:NT 3\tLT 1"));
    for (const char* const name : {"m_out", "m_log", "m_state", "m_rad", "checkstop", "NV_spectrum", "x.bmp", "p.gmt"})
        ASSERT_EQ(::mkfifo(name, 0600), 0);
    for (const char* const arguments : {"run m.gmt", "run m.gmt --recall", "run m.gmt --radiation", "spectrum m.gmt",
                                        "plot m.gmt -o x.bmp", "run p.gmt"}) {
        const Outcome outcome = runProgram(arguments, "timeout -s KILL 10");
        EXPECT_EQ(outcome.status, 4) << arguments;
        EXPECT_THAT(outcome.out, HasSubstr("it is not a file")) << arguments;
    }
}

TEST(commandLine, givesUpATextWithoutSeparatorsEarly) {
    TestProgram test;
    test.write("m.gmt", square(3, "DT 1E-6"));
    test.write("t.gmt", square(3, "DT 1E-6"));
    test.write("m_state", " 9 \r\n 0 \r\n 0 \r\n 0 \r\n");
    test.write("m_rad", "1\r\n1\r\n1\r\n");
    test.write("s.txt", "click NV_in.Command6\n");
    for (const char* const name : {"t.gmt", "m_state", "m_rad", "s.txt"})
        std::filesystem::resize_file(name, std::uintmax_t{1} << 30); // zeros that take no room on the disc
    EXPECT_THAT(runProgram("run t.gmt").out, HasSubstr("no tab and no line end in more than 1 MB of it"));
    EXPECT_THAT(runProgram("run m.gmt --recall").out, HasSubstr("m_state, line 5: a text that is no number"));
    EXPECT_THAT(runProgram("run m.gmt --radiation").out, HasSubstr("m_rad, record 1 of 1, line 4: a text that is no"));
    EXPECT_THAT(runProgram("script s.txt").out, HasSubstr("a line of it is longer than 64 MB"));

    struct rusage usage {};

    ::getrusage(RUSAGE_CHILDREN, &usage);
    EXPECT_LT(usage.ru_maxrss, 500000) << "KB";
}

TEST(commandLine, refusesADrawingThatNoRunCanComeOf) {
    TestProgram test;
    test.write("bad.gmt", square(3, "DT 1E-5:RH 0"));
    const Outcome refused = runProgram("run bad.gmt");
    EXPECT_EQ(refused.status, 3);
    EXPECT_THAT(refused.out, HasSubstr("bad.gmt:A1: error: \"RH 0\""));
    const Outcome forced = runProgram("run bad.gmt --force");
    EXPECT_EQ(forced.status, 1) << "a temperature that is no number ends the run";
    EXPECT_THAT(forced.out, HasSubstr("Step 1 after"));
    EXPECT_THAT(forced.out, HasSubstr("of cell A3 (point 1) is"));
    test.write("odd.gmt", square(3, "DT 1E-5:OUTLET"));
    EXPECT_EQ(runProgram("run odd.gmt").status, 0);
    EXPECT_EQ(runProgram("run odd.gmt --strict").status, 3);
    EXPECT_EQ(runProgram("check odd.gmt bad.gmt").status, 3);
    EXPECT_EQ(runProgram("check odd.gmt").status, 0);
    EXPECT_EQ(runProgram("check odd.gmt --strict").status, 3);
}

TEST(commandLine, namesTheTableCellOfAFaultyPointAndTheCause) {
    TestProgram test;
    test.write("m.gmt", "DT 1:NT 50\t\t\nL\t\t\nPP 2E5\t\t\n\t\t\nL\t\t");
    const Outcome outcome = runProgram("run m.gmt");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out,
                testing::ContainsRegex("Stopped because of negative density in point 1\npoint 1 is table cell A3: T "));
    EXPECT_THAT(outcome.out, testing::ContainsRegex("DT is [0-9]+.* times the largest stable step. Try DT 0.0000"));
}

TEST(commandLine, changesTheDrawingInMemoryAndTheNamesOfItsOutputs) {
    TestProgram test;
    const std::string table = square(3, "DT 1E-5:NT 50:UT 1");
    test.write("m.gmt", table);
    const Outcome outcome = runProgram("run m.gmt --set DT=2E-6 --set \"DD 0=0,02\" --set b4=\"TT 400\" --time 1E-5 "
                                       "-o runs/a --name hot --stop-file own --summary s.json");
    EXPECT_EQ(outcome.status, 0) << outcome.out;
    EXPECT_THAT(outcome.out, testing::StartsWith("m.gmt: 3 x 3 cells, 5 steps of 2E-06 s\n"));
    EXPECT_THAT(outcome.out, HasSubstr("(B4) \u00b0C"));
    EXPECT_THAT(test.read("runs/a/hot_out"), HasSubstr("126.8"));
    EXPECT_TRUE(test.exists("own"));
    EXPECT_FALSE(test.exists("m_out") || test.exists("checkstop"));
    EXPECT_EQ(test.read("m.gmt"), table);
    EXPECT_THAT(test.read("s.json"), HasSubstr("\"end\": \"stopStep\",\n  \"step\": 5,"));
    for (const char* option :
         {"--summary m.gmt", "--summary x.txt", "--stop-file x.txt", "--stop-file m.gmt", "--summary m_log"}) {
        test.write("x.txt", "notes");
        EXPECT_EQ(runProgram("run m.gmt " + std::string(option)).status, 2) << option;
        EXPECT_EQ(test.read("m.gmt") + test.read("x.txt"), table + "notes") << option;
    }
    EXPECT_EQ(runProgram("run m.gmt -q --summary s.json --stop-file own").status, 0) << "those of an earlier run";
    for (const char* change : {"DT", "DT=abc", "A1=TT 5", "D3=TT 5", "NS=2", "GG=9", "TT 1=5", "=5"})
        EXPECT_EQ(runProgram("run m.gmt --set \"" + std::string(change) + "\"").status, 2) << change;
    EXPECT_EQ(runProgram("run m.gmt --name a/b").status, 2);
    EXPECT_EQ(runProgram("run m.gmt -o m.gmt").status, 2);
    test.write("x_out", table);
    EXPECT_EQ(runProgram("run x_out --name x").status, 2) << "the outputs would replace the drawing";
}

TEST(commandLine, compensatesARunThatAsksForIt) {
    TestProgram test;
    test.write("m.gmt", "DT 2.5E-9:NT 9000:UT 0:LA 200:CP 1000\t\nL\t\n.WV 1;1\tTT 301\nL\t");
    EXPECT_EQ(runProgram("run m.gmt -q -o single").status, 0);
    EXPECT_EQ(runProgram("run m.gmt -q -o kept --compensated").status, 0);
    EXPECT_NE(test.read("kept/m_out"), test.read("single/m_out"));
}

TEST(commandLine, showsAndComparesDrawings) {
    TestProgram test;
    test.write("a.gmt", square(3, "DT 1E-5"));
    test.write("b.gmt", square(3, "TT 310:DT 1E-5"));
    EXPECT_THAT(runProgram("show a.gmt b4").out,
                HasSubstr("B4: cell 5, coordinates 1, 1, 0.01 to 0.02, 0.01 to 0.02 m\n"));
    EXPECT_THAT(runProgram("show a.gmt").out, HasSubstr("DT     0.00001 s"));
    EXPECT_EQ(runProgram("show b.gmt --key tt").out, "310\t310\t310\n310\t310\t310\n310\t310\t310\n");
    EXPECT_EQ(runProgram("show a.gmt Z9").status, 2);
    EXPECT_EQ(runProgram("show a.gmt --key XX").status, 2);
    EXPECT_EQ(runProgram("diff a.gmt a.gmt").status, 0);
    const Outcome outcome = runProgram("diff a.gmt b.gmt");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr("A3, B3, C3, A4, B4 and 4 more: TT 298.15 -> 310\n"));
    EXPECT_EQ(runProgram("check a.gmt --picture p.png").status, 0);
    EXPECT_EQ(test.read("p.png").substr(1, 3), "PNG");
    EXPECT_EQ(runProgram("check a.gmt --picture p.txt").status, 2);
    EXPECT_EQ(runProgram("show a.gmt --picture s.svg").status, 0);
    EXPECT_EQ(runProgram("diff a.gmt b.gmt --picture d.svg").status, 1);
    EXPECT_GT(test.read("d.svg").size(), test.read("s.svg").size()) << "frames of nine cells";
    test.write("slow.gmt", "DT 1E-6:VV 1;1:SI 0:SA 50\t\t\nL\t\t\nVV 1;0,5\t\t\n\t\t\nL\t\t");
    EXPECT_THAT(runProgram("check slow.gmt --suggest").out, HasSubstr("times slower than sound"));
}

} // namespace
} // namespace norvane
