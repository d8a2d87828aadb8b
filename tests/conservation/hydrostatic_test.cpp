// Law: a gas at rest carries its own weight.

#include "support/test_program.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

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
