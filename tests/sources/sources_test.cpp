// Terms that do not pass through a face: drag and exchange of species. The sink is a wall code's.

#include "support/fields.h"
#include "support/test_program.h"

#include <gtest/gtest.h>

#include <cmath>

namespace norvane {
namespace {

TEST(drag, slowsAGasExponentially) {
    // One long closed channel of one cell across: the component along it feels drag alone.
    TestProgram test;
    test.load("DT 1E-3:NT 101:UT 0:RR 2:ET 0:DD 0;1\nL\nWV 1;0:VV 1;3\nL");
    test.click("NV_in.Command2");
    const double velocity = double(test.sim.stageMomentum(committedSlot, 1, 1)) / double(test.sim.cellMass[1]);
    EXPECT_NEAR(velocity, 3 * std::exp(-2 / double(test.sim.density[1]) * 0.1), 1e-4);
}

const char* const reactor = "NS 1:DT 1E-3:NT 101:UT 0:TT 973:CP 1E12:CC 1;0.5\n"
                            "GP 11;1E-6:GP 12;14000:GP 13;0.2:GP 14;10000:GP 15;0.5\nL\nWC 1\nL";

TEST(exchange, relaxesSpeciesOneTowardsItsBalance) {
    TestProgram test;
    test.load(reactor);
    test.click("NV_in.Command2");
    // At 973 K the rate is 1 / GP15; the huge heat capacity keeps the temperature.
    const double growth = 1e-6 * std::exp(14000.0 / 973);
    const double balance = growth * 0.2 / (growth + 1);
    const double fraction = totalMass(test.sim, 1) / (totalMass(test.sim, 0) + totalMass(test.sim, 1));
    EXPECT_NEAR(fraction, balance + (0.5 - balance) * std::exp(-0.1 / 0.5), 1e-5);
}

TEST(exchange, takesHeatWithWhatLeavesSpeciesOne) {
    TestProgram test;
    test.build(reactor);
    computeSlopes(test.sim, 1);
    EXPECT_LT(test.sim.stageSpecies(1, 1, 1), 0);
    EXPECT_EQ(test.sim.stageSpecies(1, 0, 1), -test.sim.stageSpecies(1, 1, 1));
    EXPECT_FLOAT_EQ(test.sim.stageEnergy(1, 1), test.sim.stageSpecies(1, 1, 1) * 13e6f);
}

TEST(exchange, isCappedAtHalfTheMassInAStepAndNeedsTwoSpecies) {
    TestProgram test;
    test.build("NS 1:DT 0.5:CC 1;0.5\nL\nWC 1\nL"); // all parameters 0
    computeSlopes(test.sim, 1);
    EXPECT_FLOAT_EQ(test.sim.stageSpecies(1, 1, 1), -0.5f * test.sim.cellMass[1]);
    TestProgram alone;
    alone.build("DT 0.5\nL\nWC 1\nL");
    computeSlopes(alone.sim, 1);
    EXPECT_EQ(alone.sim.stageEnergy(1, 1), 0);
}

} // namespace
} // namespace norvane
