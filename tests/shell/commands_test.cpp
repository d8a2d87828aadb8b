// Commands act at once, also inside the yields of a run, and each says in its own words that a geometry is missing.

#include "core/run_driver.h"
#include "shell/command_window.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(commands, withoutAGeometrySayWhatIsMissing) {
    TestProgram test;
    const auto messagesOf = [&](const char* button) {
        test.click(button);
        return test.takeMessages();
    };
    EXPECT_THAT(messagesOf("NV_in.Command2"), ElementsAre("select an input geometry first", "No geometry"));
    EXPECT_THAT(messagesOf("NV_in.Command5"), ElementsAre("load an input geometry first"));
    EXPECT_THAT(messagesOf("NV_in.Command6"), ElementsAre("select an input geometery first"));
    EXPECT_THAT(messagesOf("NV_in.Command7"), ElementsAre("select an input geometry first"));
    EXPECT_THAT(messagesOf("NV_in.Command8"), ElementsAre("select an inputrange first"));
    EXPECT_THAT(messagesOf("NV_einde.Command1"), ElementsAre("select an input geometery first"));
    EXPECT_THAT(test.events, ElementsAre("ended"));
}

/// Loads a run of 10 steps and performs `act` in yield `yield` of step 4, once.
template <class Act>
void runWith(TestProgram& test, int yield, const Act& act) {
    int count = 0;
    bool done = false;
    test.ui.stepBegan = [&] { count = 0; };
    test.ui.yieldToInterface = [&] {
        if (++count != yield || test.sim.stepCount != 4 || done) return;
        done = true;
        act();
    };
    test.load("DT 1E-5:NT 10:UT 0\t\t\nL\t\t\nPP 2E5\t\t\nL\t\t");
    test.click("NV_in.Command2");
    test.ui.stepBegan = [] {};
    test.ui.yieldToInterface = [] {};
    ASSERT_TRUE(done);
}

TEST(commandsDuringARun, thatOnlyLookLeaveItUntouched) {
    TestProgram plain;
    runWith(plain, 1, [] {});
    TestProgram saved;
    runWith(saved, 3, [&] {
        saved.click("NV_in.Command6");
        saved.click("NV_einde.Command3");
        setDirectory(saved.program, "/");
    });
    EXPECT_TRUE(saved.exists("m_state"));
    EXPECT_EQ(saved.sim.stepCount, 10);
    EXPECT_EQ(stateHash(saved.sim), stateHash(plain.sim));
}

TEST(commandsDuringARun, dispStopsItAtTheEndOfTheStepWithAPlot) {
    TestProgram test;
    runWith(test, 2, [&] { test.click("NV_in.Command4"); });
    EXPECT_EQ(test.sim.stepCount, 4);
    EXPECT_EQ(test.ui.NV_in.Text1.text, "4");
    EXPECT_THAT(test.events, ElementsAre("shown: NV_dsp", "shown: NV_out"));
    TestProgram late;
    runWith(late, 5, [&] { late.click("NV_in.Command4"); });
    EXPECT_EQ(late.sim.stepCount, 4);
    EXPECT_EQ(late.ui.NV_in.Text1.text, " rows: 4\r\n columns: 3") << "a stop in the last yield comes without a plot";
}

TEST(commandsDuringARun, aCloseRequestBringsTheQuestionAndStopsIt) {
    TestProgram test;
    runWith(test, 1, [&] { requestClose(test.program, test.ui.NV_out.form); });
    EXPECT_EQ(test.sim.stepCount, 4);
    EXPECT_TRUE(test.ui.NV_einde.form.visible);
    test.click("NV_einde.Command3");
    EXPECT_FALSE(test.ui.NV_einde.form.visible);
    requestClose(test.program, test.ui.NV_einde.form);
    requestClose(test.program, test.ui.NV_dsp.form);
    EXPECT_FALSE(test.ui.NV_einde.form.visible) << "the other forms refuse, and ask nothing";
    test.click("NV_in.Command5");
    EXPECT_EQ(test.sim.stepCount, 14);
}

TEST(commandsDuringARun, recalcStartsOverAndOneStopEndsBoth) {
    TestProgram test;
    int runs = 0;
    test.ui.runBegan = [&] { runs += 1; };
    runWith(test, 2, [&] { test.click("NV_in.Command2"); });
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(test.sim.stepCount, 10) << "the outer run finishes its step on the data of the inner one";
    EXPECT_EQ(test.sim.runDepth, 0);
}

TEST(commandsDuringARun, importIsRefusedAndChangesNothing) {
    TestProgram test;
    test.write("n.gmt", "L\n\nL");
    runWith(test, 2, [&] {
        selectGeometry(test.program, "n.gmt");
        test.click("NV_in.Command1");
        EXPECT_THAT(test.takeMessages(), ElementsAre(HasSubstr("A run is under way")));
    });
    EXPECT_EQ(test.sim.baseName, "m");
    EXPECT_EQ(test.sim.nCells, 3);
    EXPECT_EQ(test.sim.stepCount, 10);
}

TEST(commandsDuringARun, nestToADepthOfEight) {
    TestProgram test;
    int deepest = 0;
    test.ui.stepBegan = [&] {
        deepest = std::max(deepest, test.sim.runDepth);
        if (test.sim.stepCount == 0 || test.sim.runDepth < maxRunDepth)
            test.click(test.sim.runDepth % 2 == 0 ? "NV_in.Command2" : "NV_in.Command5");
    };
    test.load("DT 1E-6:NT 2\nL\n\nL");
    test.click("NV_in.Command2");
    EXPECT_EQ(deepest, maxRunDepth);
    EXPECT_EQ(test.sim.runDepth, 0);
    EXPECT_EQ(test.sim.runMode, modeModelStands);
}

TEST(commandsDuringALoad, findTheOldGridWhole) {
    TestProgram test;
    test.load("DT 1E-6:NT 2\t\nL\t\n\t\nL\t");
    test.write("n.gmt", "L\t\t\n\t\t\nL\t\t");
    selectGeometry(test.program, "n.gmt");
    int yields = 0;
    test.ui.yieldToInterface = [&] {
        if (++yields != 2) return;
        test.click("NV_in.Command2");
        EXPECT_EQ(test.sim.nCells, 2);
        EXPECT_EQ(test.sim.stepCount, 2);
        test.click("NV_in.Command1");
        EXPECT_THAT(test.takeMessages(), ElementsAre(HasSubstr("read already")));
    };
    test.click("NV_in.Command1");
    EXPECT_EQ(test.sim.nCells, 3);
}

TEST(batchStart, runsTheGeometryNamedOrTheOnlyOneThereIs) {
    TestProgram test;
    const ProgramStart start{test.folder.string(), "norvane_.exe", {}};
    startProgram(test.program, start);
    EXPECT_THAT(test.takeMessages(), ElementsAre(HasSubstr("There is no geometry (*.gmt) beside the program.")));
    test.write("one.gmt", "DT 1E-6:NT 3\nL\n\nL");
    startProgram(test.program, start);
    EXPECT_THAT(test.takeMessages(), IsEmpty());
    EXPECT_EQ(test.sim.stepCount, 3);
    test.write("two.GMT", "DT 1E-6:NT 4\nL\n\nL");
    startProgram(test.program, start);
    EXPECT_THAT(test.takeMessages(), ElementsAre(HasSubstr("There are 2 geometries")));
    startProgram(test.program, {test.folder.string(), "norvane_", "two.GMT"});
    EXPECT_EQ(test.sim.stepCount, 4);
    startProgram(test.program, {test.folder.string(), "nor_vane", {}});
    EXPECT_FALSE(test.sim.batchMode);
}

} // namespace
} // namespace norvane
