// The state file: its text, what a recall takes from it, what it refuses, and how far a run goes on as if nothing had
// been.

#include "exchange/state_file.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace norvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr float infinity = std::numeric_limits<float>::infinity();

/// 3 by 2 cells of 1 m3 with gas constant 1: each holds 1 kg at 300 K and, with a heat capacity of 2, 600 J.
const char* const plainTable = "DD 0;1:TT 300:PP 300:RH 1:CP 2\t\t\nL\t\t\n\tVV 1;2.5\tVV 2;-0.125\n\t\tPP 600\nL\t\t";
const std::string plainVelocities = " 0 \t 2.5 \t 0 \t\r\n 0 \t 0 \t 0 \t\r\n\r\n"
                                    " 0 \t 0 \t-0.125 \t\r\n 0 \t 0 \t 0 \t\r\n\r\n";
const std::string plainConserved = " 6 \r\n 0 \r\n 0 \r\n 0 \r\n" + plainVelocities
                                   + " 600 \t 600 \t 600 \t\r\n 600 \t 600 \t 1200 \t\r\n\r\n"
                                     " 1 \t 1 \t 1 \t\r\n 1 \t 1 \t 2 \t\r\n\r\n";
const std::string plainFile = plainConserved + plainVelocities
                              + " 26.85 \t 26.85 \t 26.85 \t\r\n 26.85 \t 26.85 \t 26.85 \t\r\n\r\n"
                                " 1 \t 1 \t 1 \t\r\n 1 \t 1 \t 1 \t\r\n\r\n";

/// Cells of two species that a difference of pressure and an imposed velocity set in motion.
std::string movingTable(int steps) {
    return "NS 1\tDT 1E-5:DD 1;0.01:DD 2;0.02:UT 0:NT " + std::to_string(steps)
           + "\t\t\nL\t\t\t\nDD -1;0.02\tTT 400\t\t\n\tPP 2E5\t\tCC 1;0.5\nWV 1;-1:VV 1;1\t\t\tDD -2;0.01\nL\t\t\t";
}

/// Loads and runs a table to its stop step.
void run(TestProgram& test, const std::string& table) {
    test.load(table);
    test.click("NV_in.Command2");
    test.takeMessages();
}

/// Recalls a file of this content and gives the messages.
std::vector<std::string> recall(TestProgram& test, const std::string& content) {
    test.write("m_state", content);
    recallState(test.sim, test.ui);
    return test.takeMessages();
}

/// All values of a slot, in the order of the file.
std::vector<float> slotValues(const SimState& sim, int slot) {
    std::vector<float> values;
    for (int dim = 1; dim <= sim.nDim; ++dim)
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) values.push_back(sim.stageMomentum(slot, cell, dim));
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) values.push_back(sim.stageEnergy(slot, cell));
    for (int species = 0; species <= sim.nsMax; ++species)
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) values.push_back(sim.stageSpecies(slot, species, cell));
    return values;
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    return text.replace(text.find(what), what.size(), by);
}

// --- the text --------------------------------------------------------------------------------------------------------

TEST(stateFile, holdsTheGroupsInTheirOrderAndReplacesALongerFile) {
    TestProgram test;
    test.build(plainTable);
    test.write("m_state", std::string(100000, 'x'));
    saveState(test.sim, test.ui);
    EXPECT_THAT(test.messages, IsEmpty());
    EXPECT_EQ(test.sim.openError, 0);
    EXPECT_EQ(test.read("m_state"), plainFile);
}

TEST(stateFile, ofAGeometryThatWasNotBuiltHoldsZeros) {
    TestProgram test;
    test.load("DT 1\t\nL\t\n\t\nL\t");
    saveState(test.sim, test.ui);
    const std::string zeros = " 0 \t 0 \t\r\n\r\n";
    EXPECT_EQ(test.read("m_state"), " 2 \r\n 0 \r\n 0 \r\n 0 \r\n" + zeros + zeros + zeros
                                        + " nan \t nan \t\r\n\r\n-273.15 \t-273.15 \t\r\n\r\n" + zeros);
}

TEST(stateFile, writesSinglesWithSevenDigitsAndTemperaturesWithFifteen) {
    TestProgram test;
    test.build(plainTable);
    test.sim.temperature[1] = 298.15f; // 298.149993896484375 as a single
    test.sim.stageEnergy(0, 1) = 12345678.0f;
    test.sim.stageEnergy(0, 2) = 1.0f / 3;
    test.sim.stageEnergy(0, 3) = -1.25e-7f;
    test.sim.density[0] = 8;     // to which velocities are referred
    test.sim.velocity(6, 1) = 3; // at a density of 2
    saveState(test.sim, test.ui);
    const std::string text = test.read("m_state");
    EXPECT_THAT(text, HasSubstr(" 1.234568E+07 \t 0.3333333 \t-1.25E-07 \t\r\n"));
    EXPECT_THAT(text, HasSubstr(" 24.9999938964844 \t 26.85 \t 26.85 \t\r\n"));
    EXPECT_THAT(text, HasSubstr(" 0 \t 0.3125 \t 0 \t\r\n 0 \t 0 \t 0.75 \t\r\n\r\n"));
}

TEST(stateFile, thatCannotBeOpenedIsToldAndChangesNothing) {
    TestProgram test;
    run(test, movingTable(5));
    const std::uint64_t before = stateHash(test.sim);
    recallState(test.sim, test.ui); // there is no file
    std::filesystem::create_directory(test.folder / "m_state");
    saveState(test.sim, test.ui);
    EXPECT_NE(test.sim.openError, 0);
    const char* const fault = "An error occured opening the file";
    EXPECT_THAT(test.messages, ElementsAre(fault, fault));
    EXPECT_EQ(stateHash(test.sim), before);
    EXPECT_EQ(test.sim.stepCount, 5);
}

#ifdef __linux__
TEST(stateFile, thatMeetsAFullDiscIsTold) {
    TestProgram test;
    test.build(movingTable(5));
    std::filesystem::create_symlink("/dev/full", test.folder / "m_state");
    saveState(test.sim, test.ui);
    EXPECT_EQ(test.sim.openError, 0);
    EXPECT_THAT(test.messages, ElementsAre(HasSubstr("m_state can't be written: No space left on device")));
}
#endif

// --- a recall --------------------------------------------------------------------------------------------------------

TEST(recall, fillsCommittedAndWorkSlotToTheDigitsOfTheFileAndClearsTheSlopes) {
    TestProgram test;
    run(test, movingTable(5));
    saveState(test.sim, test.ui);
    const std::vector<float> saved = slotValues(test.sim, committedSlot);
    recallState(test.sim, test.ui);
    EXPECT_THAT(test.messages, IsEmpty());
    EXPECT_EQ(test.sim.stepCount, 5);
    const std::vector<float> recalled = slotValues(test.sim, committedSlot);
    ASSERT_EQ(recalled.size(), saved.size());
    for (std::size_t k = 0; k < saved.size(); ++k)
        EXPECT_NEAR(recalled[k], saved[k], 5.1e-7 * std::abs(saved[k])) << k; // half a unit of the seventh digit
    for (int slot = 1; slot <= 4; ++slot)
        EXPECT_EQ(slotValues(test.sim, slot), std::vector<float>(saved.size(), 0.0f)) << slot;
}

TEST(recall, givesTheSameBeforeAndAfterTheFirstRunOfAProgram) {
    TestProgram test;
    run(test, movingTable(7));
    saveState(test.sim, test.ui);
    recallState(test.sim, test.ui);
    TestProgram later;
    later.load(movingTable(7));
    recall(later, test.read("m_state"));
    ASSERT_EQ(later.sim.stageWork, 0);
    test.click("NV_in.Command5");
    later.click("NV_in.Command5");
    EXPECT_EQ(later.sim.stepCount, 14);
    EXPECT_EQ(stateHash(later.sim), stateHash(test.sim));
}

TEST(recall, takesTheThirdStepCountAndAnyLayoutOfTheNumbers) {
    TestProgram test;
    test.load(plainTable);
    EXPECT_THAT(recall(test, "+6,1.0\n2,\t 7.5E0 0,2.5,0\r0 0 0 \n\n\n0,0,-.125 0,0,0 6E2 600. +6.0e+2\t600,600,12E2\n"
                             "1,1,1\n1,1,2"),
                IsEmpty());
    EXPECT_EQ(test.sim.stepCount, 8) << "halves go to the even number";
    test.sim.stepCount = 0;
    saveState(test.sim, test.ui);
    EXPECT_EQ(test.read("m_state"), plainFile);
}

TEST(recall, readsValuesBackThatAreNotFiniteOrBeyondASingle) {
    TestProgram test;
    test.build(plainTable);
    test.sim.stageMomentum(0, 3, 1) = -infinity;
    test.sim.stageEnergy(0, 5) = std::numeric_limits<float>::quiet_NaN();
    saveState(test.sim, test.ui);
    std::string text = replaced(test.read("m_state"), "600", "1E99999999999999999999");
    text = replaced(text, "600", "1E-99999999999999999999");
    recall(test, replaced(text, "2.5", "-1E39"));
    EXPECT_EQ(test.sim.stageMomentum(5, 3, 1), -infinity);
    EXPECT_TRUE(std::isnan(test.sim.stageEnergy(0, 5)) && std::isnan(test.sim.temperature[5]));
    EXPECT_EQ(test.sim.stageEnergy(0, 1), infinity);
    EXPECT_EQ(test.sim.stageEnergy(0, 2), 0);
    EXPECT_EQ(test.sim.stageMomentum(0, 2, 1), -infinity);
}

TEST(recall, keepsTheLogAndReturnsTheDisplayToTheGeometry) {
    TestProgram test;
    test.load("UT 0:LT 1:SA 5\t\nL\t\n\t\nL\t");
    test.write("m_log", "kept");
    test.sim.scaleMax = 77;
    EXPECT_THAT(recall(test, " 2 \r\n 9 \r\n 9 \r\n 9 \r\n 0 \t 0 \t\r\n\r\n 1 \t 1 \t\r\n\r\n 1 \t 1 \t"), IsEmpty());
    EXPECT_EQ(test.read("m_log"), "kept");
    EXPECT_EQ(test.sim.scaleMax, 5);
}

TEST(recall, doesNotKnowAFileOfOtherDimensions) {
    TestProgram test;
    test.load("DD 0;1:TT 300:PP 300:RH 1:CP 2\t\t\t\t\t\nL\t\t\t\t\t\n\t\t\t\t\t\nL\t\t\t\t\t");
    ASSERT_EQ(test.sim.nDim, 1);
    EXPECT_THAT(recall(test, plainFile), IsEmpty());
    EXPECT_EQ(test.sim.stageMomentum(0, 2, 1), 2.5f);
    EXPECT_EQ(test.sim.stageEnergy(0, 3), -0.125f) << "the second momentum stands in the place of the energy";
}

TEST(recall, ofAFileThatIsCutTakesAllOrNothing) {
    TestProgram test;
    test.build(plainTable);
    const std::uint64_t fresh = stateHash(test.sim);
    const std::string file = replaced(plainFile, "2.5", "3.5");
    for (std::size_t length = 0; length < file.size(); ++length) {
        test.sim.stepCount = 5;
        const std::vector<std::string> messages = recall(test, file.substr(0, length));
        const bool isWhole = length > plainConserved.rfind('2');
        ASSERT_EQ(messages.size(), isWhole ? 0u : 1u) << "cut at " << length;
        ASSERT_EQ(stateHash(test.sim) == fresh, !isWhole) << "cut at " << length;
        ASSERT_EQ(test.sim.stepCount, 0);
    }
}

TEST(recall, withAFaultInTheFileNamesItsPlaceAndTakesNothing) {
    TestProgram test;
    test.build(plainTable);
    const std::uint64_t fresh = stateHash(test.sim);
    const std::string nothing = ".\r\nNothing was recalled: the model stands as built from its geometry.";
    EXPECT_THAT(recall(test, ""), ElementsAre("m_state, line 1: the file ends before the number of cells" + nothing));
    EXPECT_THAT(recall(test, "6\r0"), ElementsAre("m_state, line 2: the file ends before the step count" + nothing));
    EXPECT_THAT(recall(test, "7 3 3 3"), ElementsAre("incorrect number of cells in saved state"));
    for (const std::string& text : {std::string("x"), std::string("1e"), std::string("+-1"), std::string("1.2.3"),
                                    std::string("nanx"), std::string("1\0", 2), std::string("\xFF\xFE")}) {
        EXPECT_THAT(recall(test, replaced(plainFile, "1200", text)),
                    ElementsAre("m_state, line 12: a text that is no number stands in the place of the energy of cell 6"
                                + nothing));
        EXPECT_EQ(stateHash(test.sim), fresh) << text;
    }
    EXPECT_EQ(test.sim.stepCount, 0);
}

TEST(recall, ofAFileBeyondTheSizeOfAPieceTakesItAndNamesItsFaults) {
    TestProgram test;
    const std::string tabs(199, '\t');
    std::string rows;
    for (int row = 0; row < 100; ++row) rows += tabs + "\n";
    test.build("DD 0;1:TT 300:PP 300:RH 1:CP 2" + tabs + "\nL" + tabs + "\n" + rows + "L" + tabs);
    for (std::int32_t cell = 1; cell <= test.sim.nCells; ++cell)
        test.sim.stageMomentum(0, cell, 1) = 0.125f * static_cast<float>(cell % 7777);
    saveState(test.sim, test.ui);
    const std::string file = test.read("m_state");
    ASSERT_GT(file.size(), 500000u);
    const std::vector<float> saved = slotValues(test.sim, committedSlot);
    for (std::size_t shift = 0; shift < 16; ++shift) { // so that pieces end anywhere in a number
        ASSERT_THAT(recall(test, std::string(shift, ' ') + file), IsEmpty());
        ASSERT_EQ(slotValues(test.sim, committedSlot), saved);
    }
    EXPECT_THAT(recall(test, file.substr(0, 400000)),
                ElementsAre(HasSubstr("line 335: the file ends before the mass of species 0 of cell 5491")));
    EXPECT_THAT(recall(test, replaced(file, " 961 ", " x961 ")),
                ElementsAre(HasSubstr("the momentum along dimension 1 of cell 7688")));
    EXPECT_THAT(recall(test, std::string(300000, 'x')), ElementsAre(HasSubstr("line 1: a text that is no number")));
    EXPECT_THAT(recall(test, std::string(300000, '\n')),
                ElementsAre(HasSubstr("line 300001: the file ends before the number of cells")));
}

TEST(recall, insideARunReplacesItsStateAndTheRunGoesOn) {
    TestProgram test;
    run(test, movingTable(9));
    saveState(test.sim, test.ui);
    int yields = 0;
    test.ui.yieldToInterface = [&] {
        if (++yields == 7) recallState(test.sim, test.ui); // in the second step
    };
    test.click("NV_in.Command2");
    EXPECT_THAT(test.messages, IsEmpty());
    EXPECT_EQ(test.sim.stepCount, 9) << "the count of the file meets the stop step of the build";
    EXPECT_LT(yields, 2 * 7) << "the run ends with the step in hand";
}

// --- continued runs --------------------------------------------------------------------------------------------------

TEST(continuedRun, throughAFileIsOneStepBehindItsCountAndAsExactAsItsDigits) {
    // The file of step 20 holds the state from which step 20 started, and the first step of the continued run only
    // commits it: its 21 steps lead to where an uninterrupted run is after 40, while the count says 41.
    TestProgram whole;
    run(whole, movingTable(40));
    TestProgram first;
    run(first, movingTable(20));
    saveState(first.sim, first.ui);
    TestProgram second;
    second.load(movingTable(21));
    recall(second, first.read("m_state"));
    second.click("NV_in.Command5");
    EXPECT_EQ(second.sim.stepCount, 41);
    const double relative = 1e-6;                          // half a unit of the seventh digit, doubled by 20 steps
    const double momentum = relative * 2e5 * 0.02 * 20e-5; // that of 2E5 Pa on a face of 0.02 m2 for 20 steps
    for (std::int32_t cell = 1; cell <= whole.sim.nCells; ++cell) {
        const float energy = whole.sim.stageEnergy(0, cell);
        EXPECT_NEAR(second.sim.stageEnergy(0, cell), energy, relative * energy) << "cell " << cell;
        for (int k = 0; k <= 1; ++k) {
            EXPECT_NEAR(second.sim.stageSpecies(0, k, cell), whole.sim.stageSpecies(0, k, cell),
                        relative * whole.sim.cellMass[cell]);
            EXPECT_NEAR(second.sim.stageMomentum(0, cell, k + 1), whole.sim.stageMomentum(0, cell, k + 1), momentum);
        }
    }
    EXPECT_NE(slotValues(second.sim, 0), slotValues(whole.sim, 0)) << "more digits would make the runs equal";
}

} // namespace
} // namespace norvane
