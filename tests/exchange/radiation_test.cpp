// Law: between two bodies heat flows as the difference of the fourth powers of their temperatures, by the factors that
// the view factor file gives for the pair.

#include "exchange/view_factors.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>

namespace norvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr double radiationConstant = 5.67E-08;

/// Two closed cells of 1 m3 at 1000 and 400 K between which nothing is conducted, in surroundings at 300 K. Each holds
/// 1 kg or so of a heat capacity of 1000.
std::string twoBodies(double dt, int steps) {
    return "UT 0:ET 0:LA 0:DD 0;1:RH 1:TT 300:DT " + std::to_string(dt) + ":NT " + std::to_string(steps)
           + "\t\nL\t\nWV 0;2:TT 1000:PP 1E5\tWV 0;2:TT 400:PP 4E4\nL\t";
}

std::string pairsText(int count) {
    std::string text = "0 0 " + std::to_string(count);
    for (int pair = 0; pair < count; ++pair) text += "\r\n1 2 0.5 0.25";
    return text;
}

TEST(radiation, betweenTwoGreyBodiesFollowsTheClosedForm) {
    TestProgram test;
    test.load(twoBodies(0.5, 401));
    // Two grey plates of 1 m2 that see nothing but each other: factor 1 / (1/e1 + 1/e2 - 1).
    const double grey = 1 / (1 / 0.8 + 1 / 0.5 - 1);
    test.write("m_rad", "0 0 1\n1 2 1 " + std::to_string(grey));
    importViewFactors(test.sim, test.ui);
    test.click("NV_in.Command2");

    // With D the difference of the temperatures and 2 M their sum, dD/dt = -2 k M D (4 M2 + D2), which u = D2 solves as
    // u / (u + 4 M2) = u0 / (u0 + 4 M2) exp(-16 k M3 t).
    const double capacity = double(test.sim.heatCapacity[1]) * double(test.sim.cellMass[1]);
    ASSERT_NEAR(capacity, double(test.sim.heatCapacity[2]) * double(test.sim.cellMass[2]), 1e-3);
    const double k = radiationConstant * double(test.sim.radFactor[1]) / capacity;
    const double mean = 700;
    const double time = 400 * 0.5; // the committed state is that before the last step
    const double start = 600.0 * 600.0 / (600.0 * 600.0 + 4 * mean * mean);
    const double share = start * std::exp(-16 * k * mean * mean * mean * time);
    const double difference = std::sqrt(4 * mean * mean * share / (1 - share));
    ASSERT_LT(difference, 300) << "hardly anything has flowed";
    // Each of 400 steps rounds a temperature once, by 2^-24 of it.
    const double tolerance = 1000 * 400 * std::ldexp(1.0, -24);
    EXPECT_NEAR(test.sim.stageEnergy(0, 1) / capacity, mean + difference / 2, tolerance);
    EXPECT_NEAR(test.sim.stageEnergy(0, 2) / capacity, mean - difference / 2, tolerance);
}

TEST(radiation, toCellZeroGoesToTheSurroundingsAndTheSignOfTheSecondCellHasNoMeaning) {
    TestProgram test;
    test.load(twoBodies(1e-3, 1));
    test.write("m_rad", "0 0 1\n1 0 2 0.5");
    importViewFactors(test.sim, test.ui);
    test.click("NV_in.Command2");
    const double flow = radiationConstant * (std::pow(1000.0, 4) - std::pow(300.0, 4));
    EXPECT_NEAR(test.sim.stageEnergy(1, 1), -flow, 1e-6 * flow);
    EXPECT_EQ(test.sim.stageEnergy(1, 2), 0);
    test.write("m_rad", "0 0 2\n1 2 1 1\n2 -1 1 1");
    importViewFactors(test.sim, test.ui);
    test.click("NV_in.Command2");
    EXPECT_EQ(test.sim.stageEnergy(1, 1) / test.sim.stageEnergy(1, 2), -1);
    EXPECT_NEAR(test.sim.stageEnergy(1, 2), 2 * radiationConstant * (std::pow(1000.0, 4) - std::pow(400.0, 4)), 0.1);
    test.sim.wallTemperature[1] = 1;
    computeSlopes(test.sim, 2);
    EXPECT_EQ(test.sim.stageEnergy(2, 1), 0) << "held energy takes no term";
    EXPECT_GT(test.sim.stageEnergy(2, 2), 0) << "the other cell of the pair does";
}

TEST(viewFactors, readAlikeInAnyLayout) {
    for (const char* text : {"7 9 2\r\n1 2 0.5 0.25\r\n2 0 1 3\r\n", "7,9,2,1,2,.5,2.5E-1,2,0,1,3",
                             "7\n9\n\n2\n1\n2\n+0.5\n0.25\n2\n0\n1\n3",
                             "\t7\t9\t2\t1, 2 ,,0.5\t0.25 2 0 1 3 anything behind the last record"}) {
        TestProgram test;
        test.load(twoBodies(1, 1));
        test.write("m_rad", text);
        importViewFactors(test.sim, test.ui);
        EXPECT_THAT(test.messages, ElementsAre("2 Viewfactors imported")) << text;
        ASSERT_EQ(test.sim.radPairCount, 2) << text;
        EXPECT_TRUE(test.sim.radActive);
        EXPECT_EQ(test.sim.radPair[0][1], 1);
        EXPECT_EQ(test.sim.radPair[1][1], 2);
        EXPECT_EQ(test.sim.radFactor[1], 0.125f);
        EXPECT_EQ(test.sim.radPair[0][2], 2);
        EXPECT_EQ(test.sim.radPair[1][2], 0);
        EXPECT_EQ(test.sim.radFactor[2], 3);
        EXPECT_NEAR(test.sim.sigmaRoot, 0.01543106, 1e-8);
    }
}

TEST(viewFactors, withoutARecordSwitchRadiationOnWithNoPairs) {
    TestProgram test;
    test.load(twoBodies(1, 1));
    test.write("m_rad", pairsText(3));
    importViewFactors(test.sim, test.ui);
    test.write("m_rad", "0 0 0");
    importViewFactors(test.sim, test.ui);
    EXPECT_THAT(test.messages, ElementsAre("3 Viewfactors imported", "0 Viewfactors imported"));
    EXPECT_TRUE(test.sim.radActive);
    EXPECT_EQ(test.sim.radPairCount, 0);
    EXPECT_FALSE(test.sim.radFactor.contains(1)) << "a trace of the earlier table";
}

TEST(viewFactors, withoutAFileAreToldToBeMissing) {
    TestProgram test;
    test.load(twoBodies(1, 1));
    importViewFactors(test.sim, test.ui);
    EXPECT_THAT(test.messages, ElementsAre("An error occured opening the file"));
    EXPECT_NE(test.sim.openError, 0);
    EXPECT_FALSE(test.sim.radActive);
}

TEST(viewFactors, withAFaultLeaveTheEarlierTableInForceAndNameTheRecord) {
    TestProgram test;
    test.load(twoBodies(1, 1));
    test.write("m_rad", pairsText(1));
    importViewFactors(test.sim, test.ui);
    test.takeMessages();

    const struct {
        std::string text;
        std::string message;
    } faults[] = {
        {"", "line 1: the file ends before the first number"},
        {"1 x 1", "line 1: a text that is no number stands in the place of the second number"},
        {"0\n0\n-1", "line 3: the number of records is negative"},
        {"0 0 1e99 1 2 1 1", "record 2 of 2147483647, line 1: the file ends before the first cell"},
        {"0 0 2147483647", "record 1 of 2147483647, line 1: the file ends before the first cell"},
        {"0 0 2\n1 2 1 1\n1 2 1", "record 2 of 2, line 3: the file ends before the second factor"},
        {"0 0 2\n1 2 1 1\n1 b 1 1",
         "record 2 of 2, line 3: a text that is no number stands in the place of the second cell"},
        {"0 0 1\n1 2 1 1;", "record 1 of 1, line 2: a text that is no number stands in the place of the second factor"},
        {"0 0 1\n0 2 1 1", "record 1 of 1, line 2: the first cell is 0, and the grid has cells 1 to 2"},
        {"0 0 1\n-1 2 1 1", "record 1 of 1, line 2: the first cell is -1, and the grid has cells 1 to 2"},
        {"0 0 1\n3 2 1 1", "record 1 of 1, line 2: the first cell is 3, and the grid has cells 1 to 2"},
        {"0 0 1\n1 -3 1 1", "record 1 of 1, line 2: the second cell is -3, and the grid has cells 1 to 2"},
        {"0 0 1\n1 -1E99 1 1", "record 1 of 1, line 2: the second cell is -2147483648, and the grid has cells 1 to 2"},
        {"0 0 1\nnan 2 1 1", "record 1 of 1, line 2: a text that is no number stands in the place of the first cell"},
        {std::string("0 0 1\0 1 2 1 1", 14),
         "line 1: a text that is no number stands in the place of the number of records"},
    };

    for (const auto& fault : faults) {
        test.write("m_rad", fault.text);
        importViewFactors(test.sim, test.ui);
        EXPECT_THAT(test.takeMessages(), ElementsAre("m_rad, " + fault.message
                                                     + ".\r\nNothing was imported: the earlier view factors, if any, "
                                                       "stay in force."));
        ASSERT_EQ(test.sim.radPairCount, 1);
        EXPECT_EQ(test.sim.radPair[0][1], 1);
        EXPECT_EQ(test.sim.radPair[1][1], 2);
        EXPECT_EQ(test.sim.radFactor[1], 0.125f);
    }
}

TEST(viewFactors, outliveANewGeometryWhoseRunTellsWhatItSkips) {
    TestProgram test;
    test.load("UT 0\t\t\nL\t\t\n\t\t\nL\t\t");
    test.write("m_rad", "0 0 3\n1 2 1 1\n1 3 1 1\n3 1 1 1");
    importViewFactors(test.sim, test.ui);
    test.load(twoBodies(1e-3, 1));
    test.click("NV_in.Command2");
    EXPECT_THAT(test.messages, ElementsAre(HasSubstr("2 of 3 radiation pairs")));
    EXPECT_LT(test.sim.stageEnergy(1, 1), 0) << "the other pair acts";
}

} // namespace
} // namespace norvane
