// The plot file is a table of the values of the plane, with every quantity in its own unit and component.

#include "display/field_plot.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace norvane {
namespace {

/// Two rows of two cells, each value different.
struct PlotFile : testing::Test {
    TestProgram test;
    SimState& sim = test.sim;

    PlotFile() {
        test.build("NS 1:DD 1;2:DD 2;3:LA 2000\t\nL\t\n\t\n\t\nL\t");
        for (std::int32_t cell = 1; cell <= 4; ++cell) {
            const auto number = static_cast<float>(cell);
            sim.temperature[cell] = 300 + number * number;
            sim.pressure[cell] = 1e5f * number;
            sim.density[cell] = number;
            sim.cellHeight[cell] = 0.5f;
            sim.concentration(cell, 1) = number / 8;
            sim.velocity(cell, 1) = 3 * number;
            sim.velocity(cell, 2) = -4 * number;
        }
        sim.density[0] = 2;
        sim.wallTemperature[1] = 1;
    }

    /// The table of a quantity, its component as the plot corrected it, and the tabs and line ends made visible.
    std::string table(int showWhat, int showDims = 0) {
        sim.showWhat = static_cast<std::int16_t>(showWhat);
        sim.showDims = static_cast<std::int16_t>(showDims);
        plotField(sim, test.ui);
        std::string text = std::to_string(sim.showDims) + ":";
        for (const char c : test.read("m_out"))
            text += c == '\r' ? "" : c == '\n' ? "/" : c == '\t' ? "," : std::string(1, c);
        return text;
    }
};

TEST_F(PlotFile, holdsRowsOfFramedNumbersBehindAnEmptyLine) {
    sim.showWhat = 4;
    plotField(sim, test.ui);
    EXPECT_EQ(test.read("m_out"), "\r\n 100000 \t 200000 \r\n 300000 \t 400000 ");
}

TEST_F(PlotFile, showsQuantitiesWithoutComponents) {
    EXPECT_EQ(table(1, 7), "7:/ 27.85 , 30.85 / 35.85 , 42.85 ");
    EXPECT_EQ(table(4, -7), "-7:/ 100000 , 200000 / 300000 , 400000 ");
    EXPECT_EQ(table(5), "0:/ 1 , 2 / 3 , 4 ");
    EXPECT_EQ(table(9), "0:/ 0.5 , 0.5 / 0.5 , 0.5 ");
    EXPECT_EQ(table(11), "0:/ 0 , 0 / 0 , 0 ");
}

TEST_F(PlotFile, showsComponentsAndCorrectsThem) {
    EXPECT_EQ(table(2, -1), "0:/ 5 , 10 / 15 , 20 ");
    EXPECT_EQ(table(2, 1), "1:/ 3 , 6 / 9 , 12 ");
    EXPECT_EQ(table(2, 9), "2:/-4 ,-8 /-12 ,-16 ");
    EXPECT_EQ(table(3, 0), "0:/ 2.5 , 10 / 22.5 , 40 ");
    EXPECT_EQ(table(6, 5), "1:/ 0.125 , 0.25 / 0.375 , 0.5 ");
    EXPECT_EQ(table(6, -3), "0:/ 1 , 1 / 1 , 1 ");
    EXPECT_EQ(table(8, 0), "1:/ 2 , 2 / 2 , 2 ");
    EXPECT_EQ(table(8, 3), "2:/ 3 , 3 / 3 , 3 ");
    EXPECT_EQ(table(10, -2), "1:/ 0 , 1 / 0 , 1 ");
    EXPECT_EQ(table(10, 2), "2:/ 0 , 0 / 1 , 1 ");
}

TEST_F(PlotFile, showsConductionToTheUpperNeighbour) {
    EXPECT_EQ(table(7, 2), "2:/ 0 ,-24 / 0 , 0 "); // cell 1 holds its energy
    EXPECT_EQ(table(7, 5), "2:/ 0 ,-24 / 0 , 0 ");
    EXPECT_EQ(table(7, 1), "1:/ 0 , 0 /-14 , 0 ");
    EXPECT_EQ(table(7, -4), "-4:/ 17.08801 , 24 / 14 , 0 "); // the total looks at no wall code
}

TEST_F(PlotFile, takesQuantitiesBeyondTheListAsTheyCome) {
    EXPECT_EQ(table(0), "0:/ 27.85 , 30.85 / 35.85 , 42.85 ");
    EXPECT_EQ(table(-300), "0:/ 27.85 , 30.85 / 35.85 , 42.85 ");
    EXPECT_EQ(sim.showWhat, -300);
    EXPECT_EQ(table(12), "0:/ 1000 , 1000 / 1000 , 1000 "); // the top of the scale
}

TEST_F(PlotFile, thatCannotBeWrittenIsToldOnce) {
    std::filesystem::create_directory(test.folder / "m_out");
    test.takeMessages();
    plotField(sim, test.ui);
    plotField(sim, test.ui);
    EXPECT_THAT(test.takeMessages(), testing::ElementsAre("The plot file m_out can't be written: Is a directory.\r\n"
                                                          "The plot is shown without it."));
    EXPECT_TRUE(test.ui.NV_out.form.visible);
}

} // namespace
} // namespace norvane
