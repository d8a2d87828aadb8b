// Law: in a closed box nothing is lost, and a gas of one temperature keeps it.

#include "support/fields.h"
#include "support/test_program.h"

#include <gtest/gtest.h>

#include <cmath>

namespace norvane {
namespace {

/// A closed box of unequal cells with a blob of high pressure, a hot spot and a spot of species 1.
const char* const blob = "NS 1\tDT 1E-5:NT 200:DD 1;0.01:DD 2;0.02:UT 0\t\t\t\n"
                         "L\t\t\t\t\n"
                         "DD -1;0.02\t\tTT 400\t\t\n"
                         "\tPP 2E5\t\t\tCC 1;0.5\n"
                         "\t\t\tDD -2;0.01\t\n"
                         "L\t\t\t\t";

TEST(closedBox, keepsTheMassOfEverySpeciesAndTheEnergy) {
    TestProgram test;
    test.build(blob);
    const double mass[] = {totalMass(test.sim, 0), totalMass(test.sim, 1)};
    const double energy = totalEnergy(test.sim);
    test.click("NV_in.Command2");
    ASSERT_EQ(test.sim.stepCount, 200);
    ASSERT_GT(std::abs(test.sim.velocity(1, 1)), 0.1) << "nothing moved";
    // Each of 15 cells is rounded to single once a step: 200 * 2^-24 if all errors had one sign.
    const double tolerance = 200 * std::ldexp(1.0, -24);
    EXPECT_NEAR(totalMass(test.sim, 0) / mass[0], 1, tolerance);
    EXPECT_NEAR(totalMass(test.sim, 1) / mass[1], 1, tolerance);
    EXPECT_NEAR(totalEnergy(test.sim) / energy, 1, tolerance);
}

TEST(closedBox, keepsAGasIsothermal) {
    TestProgram test;
    test.load("DT 1E-5:NT 200:TT 350:UT 0\t\t\t\nL\t\t\t\n\tPP 2E5\t\t\n\t\tPP 15E4\t\n\t\t\t\nL\t\t\t");
    test.click("NV_in.Command2");
    ASSERT_GT(std::abs(test.sim.velocity(1, 1)), 0.1) << "nothing moved";
    for (std::int32_t cell = 1; cell <= test.sim.nCells; ++cell)
        EXPECT_NEAR(test.sim.temperature[cell], 350, 350 * 200 * std::ldexp(1.0, -24)) << "cell " << cell;
}

TEST(closedBox, comesToHydrostaticBalance) {
    TestProgram test;
    // A column of 10 cells of 0.1 m under gravity, with viscosity and drag to bring it to rest.
    test.load("DT 1E-4:NT 60000:UT 0:DD 2;0.1:DD 1;0.1:TT 300:PP 1000:RH 1:RR 20\nGG 2;9.81\nL\n"
              + std::string(10, '\n') + "L");
    ASSERT_EQ(test.sim.nDim, 2);
    test.click("NV_in.Command2");
    for (std::int32_t cell = 1; cell < 10; ++cell) {
        // At rest the pressure force on a face balances the weight of the cell that owns it: dp = rho g dx.
        const double step = double(test.sim.pressure[cell + 1]) - double(test.sim.pressure[cell]);
        const double weight = double(test.sim.density[cell]) * 9.81 * 0.1;
        EXPECT_NEAR(step, weight, 2e-3 * weight) << "cell " << cell;
        EXPECT_NEAR(test.sim.velocity(cell, 2), 0, 1e-4);
    }
}

} // namespace
} // namespace norvane
