// A compensated run keeps what the commits of its steps round away.

#include "core/remainders.h"
#include "support/fields.h"
#include "support/test_program.h"

#include <gtest/gtest.h>

#include <cmath>

namespace norvane {
namespace {

/// Two closed cells exchange heat, by less than half a unit in the last place of their temperatures in each step. Gives
/// what is left of the difference of 1 K, and what the exact solution leaves.
std::pair<double, double> differenceLeft(bool compensated) {
    constexpr int steps = 20000; // the state in slot 0 is one step older than the count
    TestProgram test;
    test.sim.compensated = compensated;
    test.load("DT 2.5E-9:NT 20001:UT 0:LA 200:CP 1000:TT 300\t\nL\t\n.WV 1;1\tTT 301\nL\t");
    test.click("NV_in.Command2");
    const auto capacity = [&](int cell) { return 1000 * double(test.sim.cellMass[cell]); };
    const double rate = double(test.sim.conductionCoef(1, 1)) * (1 / capacity(1) + 1 / capacity(2));
    const auto temperature = [&](int cell) {
        return double(test.sim.stageEnergy(committedSlot, cell)) / capacity(cell);
    };
    return {temperature(2) - temperature(1), std::exp(-rate * steps * double(test.sim.dt))};
}

TEST(compensatedRun, followsChangesBelowTheLastPlace) {
    const auto [left, exact] = differenceLeft(true);
    EXPECT_LT(exact, 0.83);
    EXPECT_NEAR(left, exact, 2e-4);
    EXPECT_NEAR(differenceLeft(false).first, 1, 1e-3) << "so the case needs what a compensated run keeps";
}

struct Drift {
    double mass;
    double energy;
};

/// Of the kept sums of a closed box in 2000 steps.
Drift driftOfBox(bool compensated) {
    TestProgram test;
    test.sim.compensated = compensated;
    test.load("DT 1E-5:NT 2000:UT 0:LA 0.5:DD 1;0.01:DD 2;0.02\t\t\t\t\nL\t\t\t\t\nDD -1;0.02\t\tTT 400\t\t\n"
              "\tPP 2E5\t\t\tPP 9E4\n\t\t\tDD -2;0.01\t\nL\t\t\t\t");
    test.program.operations.buildModel(test.sim);
    const Drift start{totalMass(test.sim, 0), totalEnergy(test.sim)};
    test.click("NV_in.Command2");
    EXPECT_GT(std::abs(test.sim.velocity(1, 1)), 0.1) << "nothing moved";
    return {totalMass(test.sim, 0) / start.mass - 1, totalEnergy(test.sim) / start.energy - 1};
}

TEST(compensatedRun, losesNothingInAClosedBox) {
    const Drift kept = driftOfBox(true);
    EXPECT_NEAR(kept.mass, 0, 2e-9);
    EXPECT_NEAR(kept.energy, 0, 2e-9);
    const Drift lost = driftOfBox(false);
    EXPECT_GT(std::abs(lost.mass) + std::abs(lost.energy), 2e-8);
}

double sumOfRemainders(const SimState& sim) {
    double sum = 0;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        sum += std::abs(double(sim.speciesRemainder(cell, 0))) + std::abs(double(sim.energyRemainder(cell, 0)));
        for (int dim = 1; dim <= sim.nDim; ++dim) sum += std::abs(double(sim.momentumRemainder(cell, dim)));
    }
    return sum;
}

TEST(compensatedRun, keepsRemaindersUntilAnotherStateComes) {
    const auto slosh = [](int steps) {
        return "DT 1E-5:UT 0:NT " + std::to_string(steps) + "\t\t\nL\t\t\nPP 2E5\t\tTT 400\n\tVV 1;3\t\n\t\t\nL\t\t";
    };
    TestProgram whole;
    whole.sim.compensated = true;
    whole.load(slosh(30));
    whole.click("NV_in.Command2");
    TestProgram test;
    test.sim.compensated = true;
    test.load(slosh(15));
    test.click("NV_in.Command2");
    test.click("NV_in.Command5"); // Cont
    EXPECT_EQ(stateHash(test.sim), stateHash(whole.sim));
    EXPECT_EQ(sumOfRemainders(test.sim), sumOfRemainders(whole.sim));
    EXPECT_GT(sumOfRemainders(test.sim), 0);
    test.click("NV_in.Command6");
    test.click("NV_in.Command7"); // Recall
    EXPECT_EQ(sumOfRemainders(test.sim), 0) << "those of another state";
    test.click("NV_in.Command2");
    test.click("NV_in.Command2");
    const std::uint64_t twice = stateHash(test.sim);
    TestProgram fresh;
    fresh.sim.compensated = true;
    fresh.load(slosh(15));
    fresh.click("NV_in.Command2");
    EXPECT_EQ(twice, stateHash(fresh.sim)) << "a build starts without any";
    fresh.sim.compensated = test.sim.compensated = false;
    test.click("NV_in.Command2");
    EXPECT_FALSE(hasRemainders(test.sim));
    EXPECT_NE(stateHash(test.sim), twice);
    fresh.load(slosh(15));
    EXPECT_FALSE(hasRemainders(fresh.sim)) << "of another grid";
}

} // namespace
} // namespace norvane
