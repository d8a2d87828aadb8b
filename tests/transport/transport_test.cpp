// Laws of what passes through a face, on cells of unequal sizes so that a missing length would show.

#include "support/test_program.h"

#include <gtest/gtest.h>

#include <cmath>

namespace norvane {
namespace {

/// Cells of 1 cm and 3 cm at rest, hot beside cold.
const char* const twoCells = "DT 1E-5:LA 5:UT 0\t\nL\t\nDD 1;0.01:TT 300\tDD 1;0.03:TT 400\nL\t";

TEST(conduction, gainOfOneCellIsLossOfTheOther) {
    TestProgram test;
    test.build(twoCells);
    computeSlopes(test.sim, 1);
    EXPECT_GT(test.sim.stageEnergy(1, 1), 0);
    EXPECT_EQ(test.sim.stageEnergy(1, 1), -test.sim.stageEnergy(1, 2));
    // Coefficient of the lower cell: conductivity * volume / size^2 = 5 * 0.01 / 0.0001
    EXPECT_FLOAT_EQ(test.sim.stageEnergy(1, 1), 100 * 500);
}

TEST(conduction, differenceDecaysAsAnExponential) {
    // Equal solid cells: closed face, no flow. d(T2-T1)/dt = -2 coef/(cp m) (T2-T1).
    TestProgram test;
    test.load("DT 1E-3:NT 101:LA 5:UT 0:CP 1000:RH 1:TT 300:PP 1E5\t\nL\t\nWV 1;1:TT 300\tTT 400\nL\t");
    test.click("NV_in.Command2");
    const double mass[] = {test.sim.cellMass[1], test.sim.cellMass[2]};
    const double coefficient = test.sim.conductionCoef(1, 1);
    const double rate = coefficient / (1000 * mass[0]) + coefficient / (1000 * mass[1]);
    // 100 whole steps stand in the committed state of step 101.
    const double difference =
        double(test.sim.stageEnergy(0, 2)) / (1000 * mass[1]) - double(test.sim.stageEnergy(0, 1)) / (1000 * mass[0]);
    const double expected = 100 * std::exp(-rate * 0.1);
    EXPECT_LT(expected, 60);
    EXPECT_NEAR(difference, expected, 0.01) << "rounding of 100 steps at 400 K is below 100 * 400 * 2^-24 = 0.0024";
}

TEST(advection, carriesTheDonorsValuesAndBothCellsUseTheSameFlow) {
    for (const char* velocity : {"VV 1;5", "VV 1;-5"}) {
        TestProgram test;
        test.build("NS 1:DT 1E-5:LA 0:ET 0\t\t\nL\t\t\nCC 1;0.25:" + std::string(velocity)
                   + ":TT 300\tDD 1;0.03:TT 400:CC 1;0.75\tWV 1;1\nL\t\t");
        SimState& sim = test.sim;
        sim.velocity(2, 1) = 0; // only the first face flows
        sim.stageMomentum(workSlot, 2, 1) = 0;
        computeSlopes(sim, 1);
        const std::int32_t donor = sim.velocity(1, 1) > 0 ? 1 : 2;
        const double flow = double(sim.stageMomentum(workSlot, 1, 1)) * double(sim.inverseSize(1, 1));
        EXPECT_FLOAT_EQ(sim.stageSpecies(1, 1, 2), float(flow * double(sim.concentration(donor, 1))));
        EXPECT_EQ(sim.stageSpecies(1, 1, 1), -sim.stageSpecies(1, 1, 2));
        EXPECT_FLOAT_EQ(sim.stageEnergy(1, 2), float(flow * 1000 * double(sim.temperature[donor])));
        EXPECT_EQ(sim.stageEnergy(1, 1), -sim.stageEnergy(1, 2));
    }
}

TEST(advection, needsADonorThatIsNotEmpty) {
    TestProgram test;
    test.build("DT 1E-5:LA 0\t\nL\t\nVV 1;5\t\nL\t");
    test.sim.density[1] = test.sim.rhoFloor;
    computeSlopes(test.sim, 1);
    EXPECT_EQ(test.sim.stageSpecies(1, 0, 2), 0);
    test.sim.density[1] = std::nextafter(test.sim.rhoFloor, 1.0f);
    computeSlopes(test.sim, 1);
    EXPECT_GT(test.sim.stageSpecies(1, 0, 2), 0);
}

TEST(pressure, pushesTheFaceOfTheLowerCellOnly) {
    TestProgram test;
    test.build("DT 1E-5\t\nL\t\nDD 1;0.01:PP 2E5\tDD 1;0.03:PP 1E5:WV 1;0\nL\t");
    computeSlopes(test.sim, 1);
    EXPECT_FLOAT_EQ(test.sim.stageMomentum(1, 1, 1), 100000); // face area: volume / size = height 1
    EXPECT_EQ(test.sim.stageMomentum(1, 2, 1), 0) << "an open face at the end of a row has nobody across it";
}

TEST(viscosity, dragsAllComponentsAcrossEveryFace) {
    TestProgram test;
    test.build("DT 1E-5:ET 2\t\nL\t\nDD 1;0.02:VV 2;3\t\n\t\nL\t");
    test.sim.stageMomentum(workSlot, 1, 2) = 0; // shear alone
    computeSlopes(test.sim, 1);
    const double coefficient = test.sim.viscousCoef(1, 1);
    EXPECT_FLOAT_EQ(test.sim.stageMomentum(1, 2, 2), float(3 * coefficient));
}

TEST(shockTube, reachesTheStatesOfTheIsothermalRiemannProblem) {
    // The exact solution for pL/pR = 2 at one temperature: c ln(pL/p*) = c (p*/pR - 1) / sqrt(p*/pR).
    TestProgram test;
    test.loadExample("shock_tube");
    test.click("NV_in.Command2");
    const double sound = std::sqrt(double(test.sim.gasFactor) * 300);
    double plateau = 1e5;
    for (int turn = 0; turn < 60; ++turn) {
        const double ratio = plateau / 1e5;
        const double shock = (ratio - 1) / std::sqrt(ratio);
        plateau *= std::exp(0.5 * (std::log(2e5 / plateau) - shock));
    }
    const double velocity = sound * std::log(2e5 / plateau);
    EXPECT_NEAR(test.sim.pressure[110], plateau, 0.002 * plateau);
    EXPECT_NEAR(test.sim.velocity(110, 1), velocity, 0.005 * velocity);
}

} // namespace
} // namespace norvane
