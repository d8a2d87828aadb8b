// A load takes the shape of the grid from the L rows, and tells what is wrong with a table that has none.

#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<int> shape(const SimState& sim) {
    std::vector<int> counts;
    for (int dim = 1; dim <= sim.nDim; ++dim) counts.push_back(sim.cellCount[dim]);
    return counts;
}

std::vector<int> shapeOf(const std::string& table) {
    TestProgram test;
    test.load(table);
    return shape(test.sim);
}

TEST(load, takesTheShapeFromTheLayerRows) {
    EXPECT_THAT(shapeOf("L\t\t\t\r\nTT 500\t\t\tTT 300\r\nL\t\t\t\r\n"), ElementsAre(4));
    EXPECT_THAT(shapeOf("DT 1\t\nL\t\n\t\nL\t\n"), ElementsAre(2));
    EXPECT_THAT(shapeOf("NS 1\tDT 0,001:UT 10\tNT 200\nL\t\t\nTT 400\t\t\n\tPP 2E5\tWV 0;2\nL\t\t"), ElementsAre(3, 2));
    EXPECT_THAT(shapeOf("DT 1\t\nL\t\n\t\n\t\nL\t\n\t\n\t\nL\t"), ElementsAre(2, 2, 2));
    EXPECT_THAT(shapeOf("L\t\n\t\n\t\nL\t\n\t\n\t\nl4\t\n\t\n\t\nLayer\t\n\t\n\t\nL4\t"), ElementsAre(2, 2, 2, 2));
}

TEST(load, countsOneDimensionLessOnceWhenTheHighestHasOneCell) {
    EXPECT_THAT(shapeOf("L\t\n\t\n\t\nL4\t"), ElementsAre(2, 2, 1));
    EXPECT_THAT(shapeOf("L\t\nx\t\nL\t\ny\t\nL\t"), ElementsAre(2, 1, 2));
}

TEST(load, readsTheSpeciesFromColumnOneOfAnyRow) {
    TestProgram test;
    test.load("NS 1\tNS 7\nL\t\nns 2\t\nL\t");
    EXPECT_EQ(test.sim.nsMax, 2);
    EXPECT_EQ(test.sim.concentration.lastComponent(), 2);
}

TEST(load, showsTheStructureAndNamesItsFiles) {
    TestProgram test;
    EXPECT_THAT(test.load("L\t\t\n\t\t\n\t\t\nL\t\t", "a.b.gmt"),
                ElementsAre("You have defined the cell structure: \r\nD=1 : 3 Cells\r\nD=2 : 2 Cells\r\n"));
    EXPECT_EQ(test.sim.baseName, "a");
    EXPECT_EQ(test.sim.outName, "a_out");
    EXPECT_EQ(test.sim.graphTitle, "a");
    EXPECT_EQ(test.sim.runMode, modeGeometryRead);
    EXPECT_EQ(test.ui.NV_in.Text1.text, " rows: 4\r\n columns: 3");
    test.sim.batchMode = true;
    EXPECT_THAT(test.load("L\n\nL"), IsEmpty());
}

/// The temperatures that the data cells of a table come to.
std::vector<float> temperatures(const std::string& table) {
    TestProgram test;
    test.build(table);
    std::vector<float> values;
    for (std::int32_t cell = 1; cell <= test.sim.nCells; ++cell) values.push_back(test.sim.temperature[cell]);
    return values;
}

TEST(load, readsEveryKindOfLineEndAndEncoding) {
    const auto expected = ElementsAre(400, 298.15f, 298.15f, 500);
    EXPECT_THAT(temperatures("L\t\r\nTT 400\t\r\n\tTT 500\r\nL\t\r\n"), expected);
    EXPECT_THAT(temperatures("L\t\nTT 400\t\r\tTT 500\r\nL\t"), expected);
    EXPECT_THAT(temperatures("\xEF\xBB\xBFL\t\nTT 400\n\tTT 500\tTT 1\nL"), expected);
    const std::string plain = "L\t\nTT 400\n\tTT 500\nL\n";
    std::string little = "\xFF\xFE";
    std::string bigWithoutMark;
    for (const char c : plain) {
        (little += c) += '\0';
        (bigWithoutMark += '\0') += c;
    }
    EXPECT_THAT(temperatures(little), expected);
    EXPECT_THAT(temperatures(bigWithoutMark), expected);
}

TEST(load, putsSurplusTabsIntoTheLastColumn) {
    EXPECT_THAT(temperatures("L\t\nTT 400\tx:\tTT 500\nL\t"), ElementsAre(400, 500));
}

/// Loads a table on top of a good one. Expects a single message with `text` and no geometry left.
void expectRefused(const std::string& table, const std::string& text) {
    TestProgram test;
    test.build("L\t\n\t\n\t\nL\t");
    const std::vector<std::string> messages = test.load(table, "bad.gmt");
    EXPECT_THAT(messages, ElementsAre(HasSubstr(text))) << table;
    EXPECT_EQ(test.sim.nDim, 0);
    EXPECT_EQ(test.sim.nCells, 0);
    test.click("NV_in.Command2");
    EXPECT_THAT(test.takeMessages(), ElementsAre("select an input geometry first", "No geometry"));
    test.click("NV_in.Command5");
    EXPECT_THAT(test.takeMessages(), ElementsAre("load an input geometry first"));
}

TEST(load, refusesATableWithoutALayer) {
    expectRefused("TT 1\nL", "You must define at least one layer by specifying a letter 'L' above and below the layer "
                             "geometry");
    const char* unterminated = "You must terminate a set of rows with an 'L' to specify end of layer.";
    expectRefused("x\ny\nz", unterminated);
    expectRefused("L\n\nL\n\n", unterminated);
    expectRefused("\n", unterminated);
    expectRefused("L\nL", "Layersize <= 1!");
    expectRefused("", "bad.gmt is empty: it has no row 1");
}

TEST(load, refusesNumbersAndGridsThatItCannotHold) {
    expectRefused("NS 40000\nL\n\nL", "bad.gmt, row 1: NS 40000");
    expectRefused("L\nNS -1\nL", "bad.gmt, row 2: NS -1");
    expectRefused("L\n\nL99999", "bad.gmt, row 3: the number behind the L is beyond 32767");
    expectRefused("L\n\nL70000\n\nL", "bad.gmt, row 3: the number behind the L is beyond 32767");
    expectRefused("L" + std::string(40000, '\t') + "\n\nL", "bad.gmt, row 1: 40001 columns");
    expectRefused("L\n" + std::string(33000, '\n') + "L", "bad.gmt, row 1: the layer has 33000 rows");
    expectRefused("NS 32000" + std::string(30000, '\t') + "\nL" + std::string(100, '\n') + "L", "of memory, and ");
}

TEST(load, refusesAMarkWithNoWayOn) {
    expectRefused("L\n\nL5\n\nL",
                  "Row :3\r\nA slice nr of 3 or4\r\n was not found at the correct spot.\r\nMend the mark");
}

TEST(load, refusesFilesThatItCannotRead) {
    TestProgram test;
    test.ui.NV_in.File1.selected = "none.gmt";
    test.click("NV_in.Command1");
    EXPECT_THAT(test.takeMessages(), ElementsAre(HasSubstr("none.gmt can't be read")));
    test.ui.NV_in.File1.selected = "";
    test.click("NV_in.Command1");
    EXPECT_THAT(test.takeMessages(), ElementsAre(HasSubstr("Select a geometry")));
}

TEST(load, tellsOfUnequalLayersAndGoesOn) {
    TestProgram test;
    const auto messages = test.load("L\n\n\nL\n\n\n\n\nL");
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0],
              "row :5\r\nThe layers are not of equal size.\r\nThe 'L' symbol of layer 0 was not found at the "
              "correct spot.\r\n-Remember the row with defaults at the top should also be selected\r\n"
              "-Remember the last row with 'L' should also be selected");
    EXPECT_THAT(shape(test.sim), ElementsAre(1, 3, 2));
}

TEST(load, aMisplacedLastMarkLeavesAGridWithoutCellsOnWhichEveryCommandIsSafe) {
    TestProgram test;
    const auto messages = test.load("DT 1:NT 3:LT 1\t\nL\t\n\t\n\t\nL5\t");
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0], "Row :5\r\nA slice nr of 3 or4\r\n was not found at the correct spot.");
    EXPECT_EQ(test.sim.nCells, 0);
    for (const char* button : {"NV_in.Command2", "NV_in.Command5", "NV_in.Command4"}) test.click(button);
    EXPECT_THAT(test.takeMessages(), IsEmpty());
    EXPECT_EQ(test.read("m_log"), "");
}

TEST(load, ofATableFullOfMisplacedMarksEnds) {
    TestProgram test;
    const auto messages = test.load("L\n\nL32000");
    EXPECT_EQ(messages.size(), 1001u);
    EXPECT_THAT(messages.back(), HasSubstr("too many rows are out of place"));
    EXPECT_EQ(test.sim.nDim, 0);
}

} // namespace
} // namespace norvane
