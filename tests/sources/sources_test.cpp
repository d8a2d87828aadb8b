// Terms that do not pass through a face: drag, exchange of species, radiation. The sink is a wall code's.

#include "core/source_terms.h"
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

/// Three closed cells at 300, 500 and 400 K, with pairs of factor 2 between the given cells.
void setPairs(SimState& sim, const std::vector<std::pair<int, int>>& pairs) {
    sim.radActive = true;
    sim.sigmaRoot = std::pow(5.67e-8, 0.25);
    sim.radPairCount = static_cast<std::int32_t>(pairs.size());
    sim.radFactor.allocate(0, sim.radPairCount);
    for (auto& cells : sim.radPair) cells.allocate(0, sim.radPairCount);
    for (std::int32_t pair = 1; pair <= sim.radPairCount; ++pair) {
        sim.radPair[0][pair] = pairs[static_cast<std::size_t>(pair - 1)].first;
        sim.radPair[1][pair] = pairs[static_cast<std::size_t>(pair - 1)].second;
        sim.radFactor[pair] = 2;
    }
}

TEST(radiation, flowsFromTheFirstCellToTheSecondAndSkipsPairsBeyondTheGrid) {
    TestProgram test;
    test.build("TT 350:LA 0\t\t\nL\t\t\nTT 300\tTT 500\tTT 400\nL\t\t");
    const double flow = 5.67e-8 * (std::pow(500.0, 4) - std::pow(400.0, 4)) * 2;
    const double toSurroundings = 5.67e-8 * (std::pow(300.0, 4) - std::pow(350.0, 4)) * 2;
    setPairs(test.sim, {{2, -3}, {1, 0}, {0, 1}, {4, 1}, {1, 4}, {-1, 2}, {1, -2147483647 - 1}});
    radiationPairs(test.sim, 1);
    EXPECT_NEAR(test.sim.stageEnergy(1, 2), -flow, 1e-5 * flow);
    EXPECT_EQ(test.sim.stageEnergy(1, 3), -test.sim.stageEnergy(1, 2));
    EXPECT_NEAR(test.sim.stageEnergy(1, 1), -toSurroundings, 1e-5 * std::abs(toSurroundings));
    test.sim.wallTemperature[2] = 1;
    computeSlopes(test.sim, 2);
    EXPECT_EQ(test.sim.stageEnergy(2, 2), 0) << "held energy takes no term";
    EXPECT_GT(test.sim.stageEnergy(2, 3), 0) << "the other cell of the pair does";
}

} // namespace
} // namespace norvane
