// Wall codes hold a quantity of a cell, or close a face, and leave all others alone.

#include "core/primitive_update.h"
#include "support/fields.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace norvane {
namespace {

using testing::ElementsAre;

/// Runs a row of cells with these texts, for 50 steps unless the defaults tell otherwise.
void runRow(TestProgram& test, const std::string& cells, const std::string& defaults = "") {
    const std::string tabs(static_cast<std::size_t>(std::count(cells.begin(), cells.end(), '\t')), '\t');
    test.load("NS 1:DT 1E-5:NT 50:UT 0:" + defaults + tabs + "\nL" + tabs + "\n" + cells + "\nL" + tabs);
    test.click("NV_in.Command2");
}

TEST(closedFace, carriesNothingButHeatAndShear) {
    TestProgram test;
    runRow(test, "CC 1;1:PP 2E5\tWV 1;1:TT 500\t\t", "LA 50");
    EXPECT_EQ(test.sim.velocity(2, 1), 0);
    EXPECT_GT(test.sim.concentration(2, 1), 0);
    EXPECT_EQ(test.sim.concentration(3, 1), 0) << "species went through a closed face";
    EXPECT_GT(test.sim.temperature[3], 298.2f) << "heat has to pass";
}

TEST(imposedVelocity, keepsTheMassFlowWhateverTheDensity) {
    TestProgram test;
    runRow(test, "WP -1\tWV 1;-1:VV 1;10:PP 2E5\t\tWP -1");
    EXPECT_FLOAT_EQ(test.sim.velocity(2, 1) * test.sim.density[2], 10 * test.sim.density[0]);
}

TEST(imposedVelocity, risesAlongTheRamp) {
    for (const int steps : {25, 50, 75}) {
        TestProgram test;
        runRow(test, "WP 1:WT -1:WV 1;-2:VV 1;10\t\tWP -1", "TR 50:NT " + std::to_string(steps));
        EXPECT_FLOAT_EQ(test.sim.velocity(1, 1), 10 * std::fmin(1.0f, float(steps) / 50)) << steps;
    }
    TestProgram noRamp;
    runRow(noRamp, "WP 1:WT -1:WV 1;-2:VV 1;10\t\tWP -1", "TR 0");
    EXPECT_EQ(noRamp.sim.velocity(1, 1), 10);
}

TEST(heldPressure, staysAndMakesUpWhatTheFacesTake) {
    TestProgram test;
    runRow(test, "WP -1:PP 15E4\t\t\t");
    EXPECT_EQ(test.sim.pressure[1], 150000);
    EXPECT_GT(test.sim.velocity(1, 1), 0) << "the reservoir has to feed the row";
    EXPECT_NEAR(test.sim.temperature[1], 298.15, 0.01) << "make-up comes at the cell's own temperature";
    EXPECT_GT(totalMass(test.sim, 0), 4 * 1.0e-6);
}

TEST(heldMasses, areKeptExactly) {
    TestProgram test;
    test.build("DT 1E-5:NT 50:UT 0\t\t\nL\t\t\nWP 1:PP 2E5\t\t\nL\t\t");
    const float mass = test.sim.stageSpecies(committedSlot, 0, 1);
    test.click("NV_in.Command2");
    EXPECT_EQ(test.sim.stageSpecies(workSlot, 0, 1), mass);
    EXPECT_GT(test.sim.velocity(1, 1), 0);
}

TEST(heldTemperature, staysWhileItsNeighbourWarms) {
    TestProgram test;
    runRow(test, "WT -1:TT 500\t\t", "LA 10");
    EXPECT_EQ(test.sim.temperature[1], 500);
    EXPECT_GT(test.sim.temperature[2], 299);
}

TEST(heldConcentration, staysWhileTheMassesFlow) {
    TestProgram test;
    runRow(test, "PP 2E5\tWC -1:CC 1;0.25\t\t");
    EXPECT_EQ(test.sim.concentration(2, 1), 0.25f);
    EXPECT_FLOAT_EQ(test.sim.stageSpecies(workSlot, 1, 2), 0.25f * test.sim.cellMass[2]);
    EXPECT_GT(test.sim.density[2], test.sim.density[0]);
}

TEST(cellWideCode, alsoTakesDragAndGravityAway) {
    const auto velocityUnderGravity = [](const std::string& code) {
        TestProgram test;
        test.load("DT 1E-6:NT 1:UT 0:GG 2;9.81\t\nL\t\n" + code + "\t\n\t\nL\t");
        test.click("NV_in.Command2");
        return test.sim.velocity(1, 2);
    };
    EXPECT_GT(velocityUnderGravity("WV 1;1"), 0) << "a closed face in one dimension leaves the other";
    EXPECT_EQ(velocityUnderGravity("WV 0;1"), 0);
}

TEST(density, thatIsNegativeStopsTheRunWithAMessageForEachCell) {
    TestProgram test;
    runRow(test, "\tPP -1E5\t\tPP -2E5\t", "NT 5");
    const std::vector<std::string> messages = test.takeMessages();
    ASSERT_GE(messages.size(), 2u);
    EXPECT_EQ(messages[0], "Stopped because of negative density in point 2");
    EXPECT_EQ(messages[1], "Stopped because of negative density in point 4");
    EXPECT_EQ(test.sim.stepCount, 1) << "the step is finished, and no other begins";
}

TEST(density, ofZeroIsNoFault) {
    TestProgram test;
    test.build("L\t\nPP 0\t\nL\t");
    test.sim.stageWork = workSlot;
    updatePrimitives(test.sim, test.ui);
    EXPECT_EQ(test.sim.density[1], 0);
    EXPECT_THAT(test.takeMessages(), testing::IsEmpty());
}

} // namespace
} // namespace norvane
