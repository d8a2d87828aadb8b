// The state file: its text, what a recall takes from it, and what it refuses.

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

/// 3 by 2 cells of 1 m3 with gas constant 1: each holds 1 kg at 300 K and, with a heat capacity of 2, 600 J.
const char* const plainTable = "DD 0;1:TT 300:PP 300:RH 1:CP 2\t\t\n"
                               "L\t\t\n"
                               "\tVV 1;2.5\tVV 2;-0.125\n"
                               "\t\tPP 600\n"
                               "L\t\t";

/// The state file of plainTable at its start, group by group.
const std::string plainHeader = " 6 \r\n 0 \r\n 0 \r\n 0 \r\n";
const std::string plainGroupA = " 0 \t 2.5 \t 0 \t\r\n 0 \t 0 \t 0 \t\r\n\r\n"
                                " 0 \t 0 \t-0.125 \t\r\n 0 \t 0 \t 0 \t\r\n\r\n";
const std::string plainGroupB = " 600 \t 600 \t 600 \t\r\n 600 \t 600 \t 1200 \t\r\n\r\n";
const std::string plainGroupC = " 1 \t 1 \t 1 \t\r\n 1 \t 1 \t 2 \t\r\n\r\n";
const std::string plainGroupD = plainGroupA;
const std::string plainGroupE = " 26.85 \t 26.85 \t 26.85 \t\r\n 26.85 \t 26.85 \t 26.85 \t\r\n\r\n";
const std::string plainGroupF = " 1 \t 1 \t 1 \t\r\n 1 \t 1 \t 1 \t\r\n\r\n";
const std::string plainConserved = plainHeader + plainGroupA + plainGroupB + plainGroupC;
const std::string plainFile = plainConserved + plainGroupD + plainGroupE + plainGroupF;

/// Cells of two species that a difference of pressure sets in motion.
std::string movingTable(int steps) {
    return "NS 1\tDT 1E-5:NT " + std::to_string(steps)
           + ":DD 1;0.01:DD 2;0.02:UT 0\t\t\n"
             "L\t\t\t\nDD -1;0.02\tTT 400\t\t\n\tPP 2E5\t\tCC 1;0.5\nWV 1;-1:VV 1;1\t\t\tDD -2;0.01\nL\t\t\t";
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

/// A program with the model of a table, to whose fields a recall is compared.
std::uint64_t freshHash(const std::string& table) {
    TestProgram test;
    test.build(table);
    return stateHash(test.sim);
}

// --- the text ------------------------------------------------------------------------------------------------------

TEST(stateFile, holdsTheGroupsInTheirOrder) {
    TestProgram test;
    test.build(plainTable);
    saveState(test.sim, test.ui);
    EXPECT_THAT(test.messages, IsEmpty());
    EXPECT_EQ(test.sim.openError, 0);
    EXPECT_EQ(test.read("m_state"), plainFile);
}

TEST(stateFile, writesSinglesWithSevenDigitsAndTemperaturesWithFifteen) {
    TestProgram test;
    test.build(plainTable);
    test.sim.temperature[1] = 298.15f; // 298.149993896484375 as a single
    test.sim.stageEnergy(0, 1) = 12345678.0f;
    test.sim.stageEnergy(0, 2) = 1.0f / 3;
    test.sim.stageEnergy(0, 3) = -1.25e-7f;
    saveState(test.sim, test.ui);
    EXPECT_THAT(test.read("m_state"), HasSubstr(" 1.234568E+07 \t 0.3333333 \t-1.25E-07 \t\r\n"));
    EXPECT_THAT(test.read("m_state"), HasSubstr(" 24.9999938964844 \t 26.85 \t 26.85 \t\r\n"));
}

TEST(stateFile, ofAGeometryThatWasNotBuiltHoldsZeros) {
    TestProgram test;
    test.load("DT 1\t\nL\t\n\t\nL\t");
    ASSERT_EQ(test.sim.nDim, 1);
    saveState(test.sim, test.ui);
    const std::string zeros = " 0 \t 0 \t\r\n\r\n";
    EXPECT_EQ(test.read("m_state"), " 2 \r\n 0 \r\n 0 \r\n 0 \r\n" + zeros + zeros + zeros + " nan \t nan \t\r\n\r\n"
                                        + "-273.15 \t-273.15 \t\r\n\r\n" + zeros);
}

TEST(stateFile, refersVelocitiesToTheDensityOfTheDefaultCell) {
    TestProgram test;
    test.build(plainTable);
    test.sim.velocity(6, 1) = 3;
    ASSERT_EQ(test.sim.density[6], 2);
    test.sim.density[0] = 8;
    saveState(test.sim, test.ui);
    EXPECT_THAT(test.read("m_state"), HasSubstr(" 0 \t 0.3125 \t 0 \t\r\n 0 \t 0 \t 0.75 \t\r\n\r\n"));
}

TEST(stateFile, replacesALongerOneWhole) {
    TestProgram test;
    test.build(plainTable);
    test.write("m_state", std::string(100000, 'x'));
    saveState(test.sim, test.ui);
    EXPECT_EQ(test.read("m_state"), plainFile);
}

TEST(stateFile, holdsTheStateBeforeTheStepThatItCounts) {
    TestProgram test;
    test.load(movingTable(1));
    test.click("NV_in.Command2");
    const std::vector<float> before = slotValues(test.sim, committedSlot);
    ASSERT_EQ(before, slotValues(test.sim, committedSlot));
    saveState(test.sim, test.ui);
    EXPECT_EQ(test.read("m_state").substr(0, 10), " 12 \r\n 1 \r");
    // The first step starts from the built state, so the file is that of the built state but for the counts.
    TestProgram fresh;
    fresh.build(movingTable(1));
    saveState(fresh.sim, fresh.ui);
    const std::size_t groups = std::string(" 12 \r\n 0 \r\n 0 \r\n 0 \r\n").size();
    const std::size_t length = test.read("m_state").size() / 3; // within groups A to C
    EXPECT_EQ(test.read("m_state").substr(groups, length), fresh.read("m_state").substr(groups, length));
}

TEST(stateFile, isAskedForWithoutAGeometry) {
    TestProgram test;
    saveState(test.sim, test.ui);
    recallState(test.sim, test.ui);
    EXPECT_THAT(test.messages, ElementsAre("select an input geometery first", "select an input geometry first"));
    EXPECT_TRUE(std::filesystem::is_empty(test.folder));
}

TEST(stateFile, thatCannotBeOpenedIsToldAndChangesNothing) {
    TestProgram test;
    test.load(movingTable(5));
    test.click("NV_in.Command2");
    const std::uint64_t before = stateHash(test.sim);
    recallState(test.sim, test.ui); // there is no file
    EXPECT_NE(test.sim.openError, 0);
    std::filesystem::create_directory(test.folder / "m_state");
    saveState(test.sim, test.ui);
    EXPECT_NE(test.sim.openError, 0);
    recallState(test.sim, test.ui);
    const char* const fault = "An error occured opening the file";
    EXPECT_THAT(test.messages, ElementsAre(fault, fault, fault));
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

// --- a recall ------------------------------------------------------------------------------------------------------

TEST(recall, fillsCommittedAndWorkSlotAndClearsTheSlopes) {
    TestProgram test;
    test.load(movingTable(5));
    test.click("NV_in.Command2");
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
    for (std::int32_t cell = 1; cell <= test.sim.nCells; ++cell)
        EXPECT_EQ(test.sim.cellMass[cell],
                  test.sim.stageSpecies(workSlot, 0, cell) + test.sim.stageSpecies(workSlot, 1, cell));
}

TEST(recall, givesTheSameBeforeAndAfterTheFirstRunOfAProgram) {
    TestProgram test;
    test.load(movingTable(7));
    test.click("NV_in.Command2");
    saveState(test.sim, test.ui);
    recallState(test.sim, test.ui);
    TestProgram later;
    later.load(movingTable(7));
    later.write("m_state", test.read("m_state"));
    recallState(later.sim, later.ui);
    ASSERT_EQ(later.sim.stageWork, 0);
    test.click("NV_in.Command5");
    later.click("NV_in.Command5");
    EXPECT_EQ(later.sim.stepCount, 14);
    EXPECT_EQ(stateHash(later.sim), stateHash(test.sim));
}

TEST(recall, takesTheThirdStepCountAndAnyLayout) {
    TestProgram test;
    test.load(plainTable);
    test.write("m_state",
               "+6,1.0\n2,\t 7.5E0 0,2.5,0\r0 0 0 \n\n\n0,0,-.125 0,0,0 6E2 600. +6.0e+2\t600,600,12E2\n1,1,1\n"
               "1,1,2");
    recallState(test.sim, test.ui);
    EXPECT_THAT(test.messages, IsEmpty());
    EXPECT_EQ(test.sim.stepCount, 8) << "halves go to the even number";
    test.sim.stepCount = 0;
    saveState(test.sim, test.ui);
    EXPECT_EQ(test.read("m_state"), plainFile);
}

TEST(recall, readsValuesThatAreNotFiniteBack) {
    TestProgram test;
    test.build(plainTable);
    constexpr float infinity = std::numeric_limits<float>::infinity();
    test.sim.stageEnergy(0, 2) = infinity;
    test.sim.stageMomentum(0, 3, 1) = -infinity;
    test.sim.stageEnergy(0, 5) = std::numeric_limits<float>::quiet_NaN();
    saveState(test.sim, test.ui);
    recallState(test.sim, test.ui);
    EXPECT_THAT(test.messages, IsEmpty());
    EXPECT_EQ(test.sim.stageEnergy(0, 2), infinity);
    EXPECT_EQ(test.sim.stageMomentum(5, 3, 1), -infinity);
    EXPECT_TRUE(std::isnan(test.sim.stageEnergy(5, 5)));
    EXPECT_TRUE(std::isnan(test.sim.temperature[5]));
}

TEST(recall, takesNumbersBeyondASingleToTheirLimit) {
    TestProgram test;
    test.load(plainTable);
    std::string text = plainFile;
    text.replace(text.find("600"), 3, "1E99999999999999999999");
    text.replace(text.find("600"), 3, "1E-99999999999999999999");
    text.replace(text.find("2.5"), 3, "-1E39");
    test.write("m_state", text);
    recallState(test.sim, test.ui);
    EXPECT_EQ(test.sim.stageEnergy(0, 1), std::numeric_limits<float>::infinity());
    EXPECT_EQ(test.sim.stageEnergy(0, 2), 0);
    EXPECT_EQ(test.sim.stageMomentum(0, 2, 1), -std::numeric_limits<float>::infinity());
}

TEST(recall, keepsTheLogAndReturnsTheDisplayToTheGeometry) {
    TestProgram test;
    test.load("UT 0:LT 1:SA 5\t\nL\t\n\t\nL\t");
    test.write("m_log", "kept");
    test.write("m_state", " 2 \r\n 9 \r\n 9 \r\n 9 \r\n 0 \t 0 \t\r\n\r\n 1 \t 1 \t\r\n\r\n 1 \t 1 \t\r\n\r\n");
    test.sim.scaleMax = 77;
    recallState(test.sim, test.ui);
    EXPECT_THAT(test.messages, IsEmpty());
    EXPECT_EQ(test.read("m_log"), "kept");
    EXPECT_EQ(test.sim.scaleMax, 5);
    EXPECT_EQ(test.sim.runMode, modeModelStands);
}

TEST(recall, ofAnotherNumberOfCellsLeavesTheBuiltModel) {
    TestProgram test;
    test.load(plainTable);
    test.write("m_state", " 7 \r\n 3 \r\n 3 \r\n 3 \r\n");
    test.sim.stepCount = 5;
    recallState(test.sim, test.ui);
    EXPECT_THAT(test.messages, ElementsAre("incorrect number of cells in saved state"));
    EXPECT_EQ(test.sim.stepCount, 0);
    EXPECT_EQ(stateHash(test.sim), freshHash(plainTable));
}

TEST(recall, doesNotKnowAFileOfOtherDimensions) {
    TestProgram test;
    // 6 cells in a row: its file lacks one group of momentum and one of velocity, but holds numbers enough.
    test.build("DD 0;1:TT 300:PP 300:RH 1:CP 2\t\t\t\t\t\nL\t\t\t\t\t\n\tVV 1;2.5\t\t\t\t\nL\t\t\t\t\t");
    ASSERT_EQ(test.sim.nDim, 1);
    saveState(test.sim, test.ui);
    const std::string file = test.read("m_state");
    test.load(plainTable);
    test.write("m_state", file);
    recallState(test.sim, test.ui);
    EXPECT_THAT(test.messages, IsEmpty());
    EXPECT_EQ(test.sim.stageMomentum(0, 2, 1), 2.5f);
    EXPECT_EQ(test.sim.stageMomentum(0, 1, 2), 600) << "the energies stand in the place of the second momentum";
}

TEST(recall, ofAFileCutAnywhereTakesAllOrNothing) {
    TestProgram test;
    test.load(plainTable);
    const std::uint64_t fresh = freshHash(plainTable);
    std::string file = plainFile;
    file.replace(file.find("2.5"), 3, "3.5"); // so that the recalled state is not the built one
    const std::size_t lastNumber = plainConserved.rfind('2');
    for (std::size_t length = 0; length < file.size(); ++length) {
        test.write("m_state", file.substr(0, length));
        test.sim.stepCount = 5;
        recallState(test.sim, test.ui);
        const std::vector<std::string> messages = test.takeMessages();
        if (length <= lastNumber) {
            ASSERT_THAT(messages,
                        ElementsAre(HasSubstr(length == 0 ? "m_state, line 1: the file ends before the number "
                                                            "of cells.\r\nNothing was recalled"
                                                          : "the file ends before the ")))
                << "cut at " << length;
            ASSERT_EQ(test.sim.stepCount, 0);
            ASSERT_EQ(stateHash(test.sim), fresh) << "cut at " << length;
        } else {
            ASSERT_THAT(messages, IsEmpty()) << "cut at " << length;
            ASSERT_NE(stateHash(test.sim), fresh);
        }
    }
}

TEST(recall, ofTextInThePlaceOfANumberTakesNothing) {
    TestProgram test;
    test.load(plainTable);
    const std::uint64_t fresh = freshHash(plainTable);
    for (const std::string& text :
         std::vector<std::string>{"x", "1x", "1e", "--1", "+-1", "0x1", "1.2.3", "nanx", "\"1\"", std::string("1\0", 2),
                                  "\xFF\xFE", "1;2", "e5", ".", "-"}) {
        for (const std::size_t at : {plainFile.find("6"), plainFile.find("2.5"), plainFile.find("1200")}) {
            std::string file = plainFile;
            file.replace(at, 1, text + " ");
            test.write("m_state", file);
            recallState(test.sim, test.ui);
            const std::vector<std::string> messages = test.takeMessages();
            ASSERT_THAT(messages, ElementsAre(HasSubstr("a text that is no number stands in the place of"))) << text;
            ASSERT_EQ(stateHash(test.sim), fresh) << text;
        }
    }
}

TEST(recall, namesTheLineAndTheValueThatItMisses) {
    TestProgram test;
    test.load(plainTable);
    std::string file = plainFile;
    file.replace(file.find("1200"), 4, "cold");
    test.write("m_state", file);
    recallState(test.sim, test.ui);
    EXPECT_THAT(test.messages,
                ElementsAre("m_state, line 12: a text that is no number stands in the place of the energy "
                            "of cell 6.\r\nNothing was recalled: the model stands as built from its "
                            "geometry."));
}

TEST(recall, insideARunReplacesItsStateAndTheRunGoesOn) {
    TestProgram test;
    test.load(movingTable(9));
    test.click("NV_in.Command2");
    saveState(test.sim, test.ui);
    int yields = 0;
    test.ui.yieldToInterface = [&] {
        if (++yields == 6) recallState(test.sim, test.ui); // in the second step
    };
    test.click("NV_in.Command2");
    EXPECT_THAT(test.messages, IsEmpty());
    EXPECT_EQ(test.sim.stepCount, 9) << "the stop step is that of the build, and the count that of the file";
    EXPECT_GT(test.sim.density[1], 0);
}

// --- continued runs ------------------------------------------------------------------------------------------------

TEST(continuedRun, equalsAnUninterruptedOneBitForBit) {
    TestProgram whole;
    whole.load(movingTable(40));
    whole.click("NV_in.Command2");
    TestProgram halves;
    halves.load(movingTable(20));
    halves.click("NV_in.Command2");
    saveState(halves.sim, halves.ui); // a save disturbs nothing
    halves.click("NV_in.Command5");
    EXPECT_EQ(halves.sim.stepCount, 40);
    EXPECT_EQ(stateHash(halves.sim), stateHash(whole.sim));
}

TEST(continuedRun, throughAFileIsOneStepBehindItsCountAndAsExactAsItsDigits) {
    // The file of step 20 holds the state from which step 20 started, and the first step of the continued run only
    // commits it: its 21 steps lead to where an uninterrupted run is after 40, while the count says 41.
    TestProgram whole;
    whole.load(movingTable(40));
    whole.click("NV_in.Command2");
    TestProgram first;
    first.load(movingTable(20));
    first.click("NV_in.Command2");
    saveState(first.sim, first.ui);
    TestProgram second;
    second.load(movingTable(21));
    second.write("m_state", first.read("m_state"));
    recallState(second.sim, second.ui);
    second.click("NV_in.Command5");
    EXPECT_EQ(second.sim.stepCount, 41);
    // Half a unit of the seventh digit, twice that after 20 steps of mixing.
    const double relative = 1e-6;
    // That of a pressure of 2E5 Pa acts on a face of 0.02 m2 for 20 steps.
    const double momentum = relative * 2e5 * 0.02 * 20e-5;
    for (std::int32_t cell = 1; cell <= whole.sim.nCells; ++cell) {
        const float energy = whole.sim.stageEnergy(0, cell);
        EXPECT_NEAR(second.sim.stageEnergy(0, cell), energy, relative * energy) << "cell " << cell;
        for (int species = 0; species <= 1; ++species)
            EXPECT_NEAR(second.sim.stageSpecies(0, species, cell), whole.sim.stageSpecies(0, species, cell),
                        relative * whole.sim.cellMass[cell])
                << "cell " << cell;
        for (int dim = 1; dim <= 2; ++dim)
            EXPECT_NEAR(second.sim.stageMomentum(0, cell, dim), whole.sim.stageMomentum(0, cell, dim), momentum)
                << "cell " << cell;
    }
    EXPECT_NE(slotValues(second.sim, 0), slotValues(whole.sim, 0))
        << "as many digits as a single has would make the runs equal";
}

} // namespace
} // namespace norvane
