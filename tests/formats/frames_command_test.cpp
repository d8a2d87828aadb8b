// Frames on the command line: bad use is told before the run, nothing of others is lost, and runs are continued.

#include "formats/frame_file.h"
#include "support/run_program.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

namespace norvane {
namespace {

using testing::HasSubstr;

constexpr const char* table = "DT 1E-6:NT 20:ST 10:UT 10\t\t\nL\t\t\nTT 400\t\t\n\t\t\nL\t\t\n";

std::vector<std::int32_t> stepsOf(const std::string& name) {
    FrameFileInfo info;
    EXPECT_EQ(readFrameFile(name, info), "");
    return info.times.steps;
}

TEST(framesCommand, tellsBadUseBeforeTheRunAndLosesNothing) {
    TestProgram test;
    test.write("m.gmt", table);
    test.write("foreign.gmt", table);
    test.write("foreign_frames.nc", "mine");
    test.write("mesh.gmt", table);
    test.write("mesh_frames.xdmf", "<Xdmf>mine</Xdmf>");
    ASSERT_EQ(::mkdir("taken_frames.nc", 0755), 0);
    test.write("taken.gmt", table);
    const std::vector<std::array<std::string, 2>> cases = {
        {"run m.gmt --frames 0", "not in range"},
        {"run m.gmt --frames-fields T", "--frames"},
        {"run m.gmt --frames 1 --frames-fields T,rhoo",
         "\"rhoo\" is no quantity of this geometry, which has T, p, rho, u, v, speed"},
        {"run m.gmt --frames 1 --frames-fields rhoo", "Did you mean \"rho\"?"},
        {"run m.gmt --frames 1 --frames-fields volume", "does not change in a run"},
        {"run m.gmt --frames 1 --frames-fields T,", "\"\" is no quantity"},
        {"run foreign.gmt --frames 1", "foreign_frames.nc holds something else, which would be lost"},
        {"run mesh.gmt --frames 1", "mesh_frames.xdmf holds something else"},
        {"run taken.gmt --frames 1", "taken_frames.nc can't be read"},
        {"run m.gmt --frames 1 --summary m_frames.nc", "m_frames.nc is an output of the run"},
        {"export foreign.gmt", "foreign_frames.nc holds something else"},
        {"export m.gmt -o /none/m.nc", "m.nc can't be written: No such file or directory"},
        {"export m.gmt -o -", "-o: a file of frames can't go to standard output"},
    };
    for (const auto& [arguments, message] : cases) {
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments << outcome.out;
        EXPECT_THAT(outcome.out, HasSubstr(message)) << arguments;
    }
    EXPECT_EQ(test.read("foreign_frames.nc"), "mine");
    EXPECT_EQ(test.read("mesh_frames.xdmf"), "<Xdmf>mine</Xdmf>");
    EXPECT_FALSE(test.exists("m_out"));
    EXPECT_FALSE(test.exists("m_frames.nc"));
}

TEST(framesCommand, goesOnWithTheFramesOfAnEarlierRun) {
    TestProgram test;
    test.write("m.gmt", table);
    const std::string more = "run m.gmt --frames 8 --append";
    EXPECT_EQ(runProgram(more + " --save").status, 0); // there is nothing to go on with yet
    EXPECT_EQ(stepsOf("m_frames.nc"), (std::vector<std::int32_t>{0, 8, 16, 20}));
    const std::string bytes = test.read("m_frames.nc");
    const std::vector<std::array<std::string, 2>> cases = {
        {more, "this run begins anew"},
        {more + " --recall --set TT=310", "holds frames of another table"},
        {more + " --recall --frames-fields T", "go on with --frames-fields T,p,rho,u,v,velocity_centre"},
        {"export m.gmt", "holds the 4 frames of a run; name another file with -o"},
    };
    for (const auto& [arguments, message] : cases) {
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_THAT(outcome.out, HasSubstr(message)) << arguments;
        EXPECT_EQ(test.read("m_frames.nc"), bytes) << arguments;
    }
    const Outcome goesOn = runProgram(more + " --recall --save --summary s.json");
    EXPECT_EQ(goesOn.status, 0) << goesOn.out;
    EXPECT_THAT(goesOn.out, HasSubstr("Frames: 7, steps 0 to 40"));
    EXPECT_EQ(stepsOf("m_frames.nc"), (std::vector<std::int32_t>{0, 8, 16, 20, 24, 32, 40}));
    EXPECT_THAT(test.read("s.json"), HasSubstr("\"frames\": 7"));
    EXPECT_THAT(test.read("s.json"), HasSubstr("\"m_frames.nc\", \"m_frames.xdmf\""));
    // The state of step 40 with the frames of step 48: they are later than what the run goes on from.
    const std::string state = test.read("m_state");
    EXPECT_EQ(runProgram(more + " --recall --time 8e-6 --set ST=0", "").status, 2);
    EXPECT_EQ(runProgram(more + " --recall --time 8e-6").status, 0);
    test.write("m_state", state);
    const Outcome later = runProgram(more + " --recall");
    EXPECT_EQ(later.status, 2);
    EXPECT_THAT(later.out, HasSubstr("has frames up to step 48, and the saved state is that of step 40"));
    EXPECT_EQ(runProgram("run m.gmt --frames 20 --frames-fields T").status, 0); // replaces them
    EXPECT_EQ(stepsOf("m_frames.nc"), (std::vector<std::int32_t>{0, 20}));
}

/// Starts a run in the folder `out`, and ends it when its first checkpoint is there.
void interrupt(const TestProgram& test, int signal) {
    const pid_t process = ::fork();
    if (process == 0) {
        ::execl(NORVANE_PROGRAM, NORVANE_PROGRAM, "run", "-q", "m.gmt", "-o", "out", "--frames", "150",
                "--checkpoint-every", "100", nullptr);
        ::_exit(127);
    }
    for (int turn = 0; turn < 2000 && !test.exists("out/m_checkpoint.nc"); ++turn)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    ::kill(process, signal);
    ::waitpid(process, nullptr, 0);
}

TEST(framesCommand, areTheSameBytesAfterAResume) {
    TestProgram test;
    test.write("m.gmt", "DT 1E-6:NT 3000:UT 0\t\t\nL\t\t\nTT 400\t\t\n\t\t\nL\t\t\n");
    const std::string options = " --frames 150 --checkpoint-every 100";
    ASSERT_EQ(runProgram("run m.gmt -o whole" + options).status, 0);
    EXPECT_EQ(stepsOf("whole/m_frames.nc").size(), 21U);
    for (const int signal : {SIGKILL, SIGINT}) {
        std::filesystem::remove_all("out");
        interrupt(test, signal);
        EXPECT_LT(stepsOf("out/m_frames.nc").size(), 21U) << "the run came to its end";
        const Outcome resumed = runProgram("run m.gmt -o out --resume" + options);
        EXPECT_EQ(resumed.status, 0) << resumed.out;
        EXPECT_TRUE(test.read("out/m_frames.nc") == test.read("whole/m_frames.nc")) << signal;
        EXPECT_TRUE(test.read("out/m_frames.xdmf") == test.read("whole/m_frames.xdmf")) << signal;
    }
}

TEST(framesCommand, outlivesADiscWithoutRoom) {
    TestProgram test;
    test.write("m.gmt", "DT 1E-6:NT 2000:UT 0" + std::string(39, '\t') + "\nL" + std::string(39, '\t') + "\nTT 400"
                            + std::string(39, '\t') + "\n" + std::string(39, '\t') + "\nL" + std::string(39, '\t')
                            + "\n");
    const Outcome none = runProgram("run m.gmt --frames 1", "ulimit -f 8;");
    EXPECT_EQ(none.status, 4);
    EXPECT_THAT(none.out, HasSubstr("The frame of step 0 can't be written to m_frames.nc: File too large"));
    EXPECT_FALSE(test.exists("m_frames.nc"));
    const Outcome some = runProgram("run m.gmt --frames 1", "ulimit -f 1400;");
    EXPECT_EQ(some.status, 4) << some.out;
    EXPECT_THAT(some.out, HasSubstr("can't be written to m_frames.nc: File too large. The run goes on without it."));
    EXPECT_THAT(some.out, HasSubstr("frames in all could not be written"));
    const std::size_t frames = stepsOf("m_frames.nc").size();
    EXPECT_GT(frames, 20U);
    EXPECT_LT(frames, 2000U);
    for (const auto& entry : std::filesystem::directory_iterator(test.folder))
        EXPECT_NE(entry.path().filename().string()[0], '.') << entry.path();
}

} // namespace
} // namespace norvane
