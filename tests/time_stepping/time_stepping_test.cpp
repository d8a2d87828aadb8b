// A step is a classical Runge-Kutta step whose weighted sum is formed in the first stage of the next step.

#include "core/checkstop.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

namespace norvane {
namespace {

using testing::ElementsAre;

const char* const slosh = "DT 1E-5:NT 20:UT 0:LT 1\t\t\t\nL\t\t\t\nPP 2E5\t\tTT 400\t\n\tVV 1;3\t\t\n\t\t\t\nL\t\t\t";

TEST(run, leavesTheStartStateInTheFirstStage) {
    TestProgram test;
    test.load("DT 1E-5:NT 1:UT 0\t\nL\t\nPP 2E5\t\nL\t");
    test.click("NV_in.Command2");
    EXPECT_EQ(test.sim.stageSpecies(committedSlot, 0, 1), float(0.01f * 200000 / (test.sim.gasFactor * 298.15f)));
    EXPECT_NE(test.sim.stageMomentum(workSlot, 1, 1), test.sim.stageMomentum(committedSlot, 1, 1));
}

TEST(run, continuedAfterAStopEqualsAnUninterruptedOne) {
    TestProgram stopped;
    stopped.load(slosh);
    stopped.ui.stepBegan = [&] {
        if (stopped.sim.stepCount == 6) stopped.click("NV_in.Command4");
    };
    stopped.click("NV_in.Command2");
    EXPECT_EQ(stopped.sim.stepCount, 7);
    stopped.ui.stepBegan = [] {};
    stopped.click("NV_in.Command6"); // a save disturbs nothing
    stopped.click("NV_in.Command5"); // to 27
    TestProgram seven;
    seven.load(std::string(slosh).replace(std::string(slosh).find("NT 20"), 5, "NT 27"));
    seven.click("NV_in.Command2");
    EXPECT_EQ(stateHash(stopped.sim), stateHash(seven.sim));
}

TEST(run, convergesWithTheFourthOrderOfItsSteps) {
    // Exchange of heat between two closed cells, where the exact decay is known. Differences at halved steps fall
    // by 16.
    const auto difference = [](const char* steps) {
        TestProgram test;
        test.load(std::string(steps) + ":LA 200:UT 0:CP 1000:RH 1:PP 1E5:TT 300\t\nL\t\nWV 1;1:TT 100\tTT 900\nL\t");
        test.click("NV_in.Command2");
        return double(test.sim.stageEnergy(0, 2)) / (1000 * double(test.sim.cellMass[2]))
               - double(test.sim.stageEnergy(0, 1)) / (1000 * double(test.sim.cellMass[1]));
    };
    const double coarse = difference("DT 8E-5:NT 3");
    const double medium = difference("DT 4E-5:NT 5");
    const double fine = difference("DT 2E-5:NT 9");
    const double order = std::log2((coarse - medium) / (medium - fine));
    EXPECT_NEAR(order, 4, 0.5) << coarse << ' ' << medium << ' ' << fine;
}

TEST(schedule, goesOnWithoutAnOutputThatRunsOutOfMemory) {
    TestProgram test;
    test.program.operations.output("plot").write = [](SimState&) { throw std::bad_alloc(); };
    test.load("DT 1E-6:NT 5:UT 1:LT 1\nL\n\nL");
    test.click("NV_in.Command2");
    EXPECT_THAT(test.takeMessages(),
                ElementsAre("There is not enough memory for the plot.\r\nThe run goes on without it."));
    EXPECT_EQ(test.sim.stepCount, 5);
    const std::string log = test.read("m_log");
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 5);
}

TEST(schedule, plotsLogsAndSavesAtTheirSteps) {
    TestProgram test;
    std::vector<int> plots;
    std::vector<int> saves;
    std::vector<int> snaps;
    RunOperations& operations = test.program.operations;
    operations.output("plot").write = [&](SimState& sim) { plots.push_back(sim.stepCount); };
    operations.output("state").write = [&](SimState& sim) { saves.push_back(sim.stepCount); };
    operations.output("snapshot").write = [&](SimState& sim) { snaps.push_back(sim.stepCount); };
    const auto run = [&](const std::string& keys) {
        plots.clear();
        saves.clear();
        snaps.clear();
        test.load("DT 1E-6:" + keys + "\nL\n\nL");
        test.click("NV_in.Command2");
    };
    run("NT 60:UT 25:ST 20:FT 30");
    EXPECT_THAT(plots, ElementsAre(1, 26, 51, 60));
    EXPECT_THAT(saves, ElementsAre(20, 40, 60));
    EXPECT_THAT(snaps, ElementsAre(30, 60));
    run("NT 6:UT -2:ST -2:FT 1");
    EXPECT_THAT(plots, ElementsAre(1, 3, 5, 6));
    EXPECT_THAT(saves, ElementsAre());
    EXPECT_THAT(snaps, ElementsAre(1, 2, 3, 4, 5, 6));
    run("NT 3:UT 0:ST 0:FT 0");
    EXPECT_THAT(plots, ElementsAre(3)) << "switched off, but for the last step";
    EXPECT_THAT(saves, ElementsAre());
    EXPECT_THAT(snaps, ElementsAre());
}

TEST(schedule, writesTheFilesOfItsOutputs) {
    TestProgram test;
    test.write("m_log", "old");
    test.load("DT 1E-6:NT 5:ST 2\nL\n\nL");
    test.click("NV_in.Command2");
    EXPECT_EQ(test.read("m_state").substr(0, 9), " 1 \r\n 4 \r") << "of step 4";
    EXPECT_EQ(test.read("m_log"), "old") << "the interval of the log is 0";
    test.load("DT 1E-6:NT 5:LT 1\nL\n\nL");
    test.click("NV_in.Command2");
    const std::string log = test.read("m_log");
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 5);
    EXPECT_EQ(log.find("old"), std::string::npos);
}

TEST(schedule, aRunWithoutALimitMakesOneStepOrGoesOnUntilItIsStopped) {
    TestProgram test;
    test.load("DT 1E-6\nL\n\nL");
    test.click("NV_in.Command2");
    EXPECT_EQ(test.sim.stepCount, 1);
    test.load("DT 1E-6:NT -1\nL\n\nL");
    test.ui.stepBegan = [&] {
        if (test.sim.stepCount == 99) test.sim.stopFlag = true;
    };
    test.click("NV_in.Command2");
    EXPECT_EQ(test.sim.stepCount, 100);
    test.click("NV_in.Command5");
    EXPECT_EQ(test.sim.stepCount, 101) << "a continuation counts its limit from where it starts: 100 - 1";
}

TEST(log, holdsVelocityAndPressureOfItsCellAndStartsAnewOnlyWithANewGeometry) {
    TestProgram test;
    test.write("m_log", "old");
    test.load("DT 1E-5:NT 3:LT 2:UT 0\t\t\t\t\t\nL\t\t\t\t\t\nWT -1:TT 200\tWP -1\tWP -1\tWP -1\tPP 5E4:WP -1\tWP "
              "-1\nL\t\t\t\t\t");
    test.click("NV_in.Command2");
    const std::string log = test.read("m_log");
    EXPECT_THAT(log, testing::MatchesRegex("-[0-9.E-]+ \t 50000 \r\n-[0-9.E-]+ \t 50000 \r\n"));
    test.click("NV_in.Command2");
    EXPECT_EQ(test.read("m_log"), log + log);
    test.click("NV_in.Command1");
    test.click("NV_in.Command5");
    EXPECT_EQ(test.read("m_log"), log);
}

TEST(log, isOfTheCellThatItsPlaceCountsToWhereAGridOfThreeDimensionsHasSoMany) {
    // Two columns: column 4 counts on into the rows that follow, or is limited to the last one.
    const auto loggedPressure = [](int layers, int rows, int cell) {
        std::string table = "DT 1E-6:NT 1:LT 1\t\nL\t";
        int count = 0;
        for (int layer = 0; layer < layers; ++layer) {
            for (int row = 0; row < rows; ++row)
                for (int column = 0; column < 2; ++column)
                    table += (column == 0 ? "\n" : "\t") + std::string(++count == cell ? ".PP 2E5:WP -1" : "");
            table += "\nL\t";
        }
        TestProgram test;
        test.load(table);
        test.click("NV_in.Command2");
        const std::string log = test.read("m_log");
        return log.substr(log.find('\t') + 1);
    };
    EXPECT_EQ(loggedPressure(18, 17, 1 + 4 + 2 * 16 + 34 * 16), " 200000 \r\n");
    EXPECT_EQ(loggedPressure(1, 20, 1 + 1 + 2 * 16), " 200000 \r\n");
}

TEST(log, thatCannotBeWrittenIsToldOnceAndTheRunGoesOn) {
    TestProgram test;
    std::filesystem::create_directory(test.folder / "m_log");
    test.load("DT 1E-6:NT 5:LT 1\nL\n\nL");
    test.click("NV_in.Command2");
    EXPECT_THAT(test.takeMessages(), ElementsAre(testing::HasSubstr("The log file m_log can't be written")));
    EXPECT_EQ(test.sim.stepCount, 5);
}

TEST(stopFile, stopsARunWithTheExitQuestionAndIsClearedAgain) {
    TestProgram test;
    test.load("DT 1E-6:NT -1\nL\n\nL");
    test.write("checkstop", "1"); // from before the run: has no effect
    const auto putAtStep = [&](int step, const char* content) {
        test.ui.stepBegan = [&test, step, content] {
            if (test.sim.stepCount == step) test.write("checkstop", content);
            if (test.sim.stepCount == 30) test.sim.stopFlag = true;
        };
        test.click("NV_in.Command2");
        return test.sim.stepCount;
    };
    for (const char* content : {"2", "", "1x", "one", "-1", "\xff\xfe\x31"})
        EXPECT_EQ(putAtStep(10, content), 31) << content;
    EXPECT_THAT(test.events, ElementsAre("shown: NV_out"));
    for (const char* content : {"1", " 1 \r\n", "1\t0", "1,0"}) EXPECT_EQ(putAtStep(10, content), 11) << content;
    EXPECT_THAT(test.events, ElementsAre("shown: NV_out", "shown: NV_einde"));
    EXPECT_EQ(test.read("checkstop"), " 0 \r\n");
}

/// Polls the stop file, and takes the stop back again.
bool stops(TestProgram& test, StopFileWatch& watch) {
    test.sim.stopFlag = false;
    pollCheckstop(test.sim, test.ui, {}, watch);
    return test.sim.stopFlag;
}

TEST(stopFile, isSeenWhenItIsRewrittenRightAfterAPoll) {
    TestProgram test;
    StopFileWatch watch;
    for (int round = 0; round < 100; ++round) { // most of them within one tick of the file system's clock
        test.write("checkstop", " 0 \r\n");
        ASSERT_FALSE(stops(test, watch)) << round;
        test.write("checkstop", " 1 \r\n");
        ASSERT_TRUE(stops(test, watch)) << round;
    }
}

TEST(stopFile, isReadAgainAfterAnyChangeAndOnlyThen) {
    using namespace std::chrono_literals;
    TestProgram test;
    StopFileWatch watch;
    watch.settling = 20ms;
    watch.trusted = 1h;
    const auto settle = [&] {
        for (int poll = 0; poll < 2; ++poll) {
            EXPECT_FALSE(stops(test, watch));
            std::this_thread::sleep_for(2 * watch.settling);
        }
        EXPECT_FALSE(stops(test, watch));
    };
    test.write("checkstop", " 0 \r\n");
    settle();
    watch.value = 1; // what only a poll that reads would find wrong
    EXPECT_TRUE(stops(test, watch)) << "a file that nobody touches is not read again";
    settle();
    test.write("checkstop", " 1 \r\n");
    EXPECT_TRUE(stops(test, watch)) << "written over";
    settle();
    test.write("other", " 1 \r\n");
    std::filesystem::last_write_time("other", std::filesystem::last_write_time("checkstop"));
    std::filesystem::rename("other", "checkstop");
    EXPECT_TRUE(stops(test, watch)) << "replaced by a file of the same size and time";
    settle();
    std::filesystem::remove("checkstop");
    settle();
    test.write("checkstop", " 1 \r\n");
    EXPECT_TRUE(stops(test, watch)) << "made anew";
    settle();
    watch.trusted = 0s;
    watch.value = 1;
    EXPECT_FALSE(stops(test, watch)) << "a stamp is not trusted for ever";
}

} // namespace
} // namespace norvane
