// A build makes the model that the texts of the table describe.

#include "geometry/cell_keywords.h"
#include "geometry/model_build.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace norvane {
namespace {

using testing::ElementsAre;

/// A grid of 3 by 2 cells with texts in the cells 1 to 6.
std::string table(const std::string& defaults, const std::vector<std::string>& cells) {
    std::string text = defaults + "\t\t\nL\t\t\n";
    for (std::size_t k = 0; k < 6; ++k) {
        if (k < cells.size()) text += cells[k];
        text += k % 3 == 2 ? '\n' : '\t';
    }
    return text + "L\t\t";
}

std::string inCell(std::size_t cell, const std::string& text) {
    std::vector<std::string> cells(6);
    cells[cell - 1] = text;
    return table("DD 0;0.01", cells);
}

std::vector<float> values(const SimState& sim, const Array<float>& field) {
    std::vector<float> result;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) result.push_back(field[cell]);
    return result;
}

template <class T>
std::vector<T> values(const SimState& sim, const CellTable<T>& field, int component) {
    std::vector<T> result;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) result.push_back(field(cell, component));
    return result;
}

TEST(build, withoutKeysMakesTheDefaultModel) {
    TestProgram test;
    test.build("L\n\nL");
    EXPECT_EQ(test.sim.dt, 0.01f);
    EXPECT_EQ(test.sim.stopStep, 0);
    EXPECT_NEAR(test.sim.gasFactor, 339.76, 0.01);
    EXPECT_EQ(test.sim.temperature[1], 298.15f);
    EXPECT_EQ(test.sim.pressure[1], 101300);
    EXPECT_EQ(test.sim.sliceSel[1], -2);
    EXPECT_EQ(test.sim.runMode, modeModelStands);
    EXPECT_EQ(test.read("checkstop"), " 0 \r\n");
}

TEST(build, readsKeysAsLettersAnywhereInAnItem) {
    TestProgram test;
    test.build(table("dt 0,001:UT10:st 2.5:FT 3.5:TT 300 PP 2E5 TT 1",
                     {"OUTLET ET 1E-5", "TT 300:TT 400", "TT", "CC 1;5:", "BOTTOM", "WT 1e9"}));
    EXPECT_EQ(test.sim.dt, 0.001f);
    EXPECT_EQ(test.sim.updateEvery, 10);
    EXPECT_EQ(test.sim.saveEvery, 2);
    EXPECT_EQ(test.sim.frameEvery, 4);
    EXPECT_EQ(test.sim.viscosity[1], 0);
    EXPECT_THAT(values(test.sim, test.sim.temperature), ElementsAre(300, 400, 0, 300, 0, 300));
    EXPECT_EQ(test.sim.wallTemperature[6], 32767);
}

TEST(build, takesOnlyTheRowsWithDefaultsForTheModel) {
    TestProgram test;
    test.build("x\tWP 1:GG 2;-9.81:GG 0;5:GG 3;1:GP 1001;4:GP 7;2\nL\tNT 5:SW 3\n\tDT 7\n\t\nL\tDT 8");
    EXPECT_EQ(test.sim.dt, 0.01f);
    EXPECT_EQ(test.sim.stopStep, 5);
    EXPECT_EQ(test.sim.showWhat, 3);
    EXPECT_EQ(test.sim.gravity[2], -9.81f);
    EXPECT_EQ(test.sim.gravity[0], 0);
    EXPECT_EQ(test.sim.paramGP[7], 2);
    EXPECT_EQ(test.sim.wallPressure[1], 0) << "a template's WP reaches no cell";
    test.load("L\n\nL");
    EXPECT_EQ(test.sim.paramGP[7], 2) << "free parameters outlive a geometry";
}

TEST(build, dropsListEntriesThatTheArrayDoesNotHave) {
    TestProgram test;
    test.build("NS 3\t\nL\t\nCC 1;0,1 CC 2;0.2 CC 3;0.3 CC 4;0.4\tCC 1;.1:CC 2;.2:CC 3;.3:CC 4;.4\n"
               "VV 0;1:VV 2.4;5:VV 1.5;2\tWV 1.5;1:WV 1;2.5:WV 3;9\nL\t");
    EXPECT_EQ(test.sim.concentration(1, 3), 0.3f) << "three turns in two dimensions";
    EXPECT_FLOAT_EQ(test.sim.concentration(2, 0), 0.4f);
    EXPECT_EQ(test.sim.velocityInit(3, 1), 0);
    EXPECT_EQ(test.sim.velocityInit(3, 2), 2);
    EXPECT_EQ(test.sim.wallVelocity(4, 2), 1);
}

TEST(build, spreadsSizesForwardAndHeightsBothWays) {
    const auto sizes = [](std::size_t cell, const std::string& text, int dim) {
        TestProgram test;
        test.build(inCell(cell, text));
        return values(test.sim, test.sim.cellSize, dim);
    };
    const auto heights = [](std::size_t cell, const std::string& text) {
        TestProgram test;
        test.build(inCell(cell, text));
        return values(test.sim, test.sim.cellHeight);
    };
    EXPECT_THAT(sizes(2, "DD -1;0.05", 1), ElementsAre(0.01f, 0.05f, 0.01f, 0.01f, 0.05f, 0.01f));
    EXPECT_THAT(sizes(4, "DD -2;0.05", 2), ElementsAre(0.01f, 0.01f, 0.01f, 0.05f, 0.05f, 0.05f));
    EXPECT_THAT(sizes(5, "DD -2;0.05", 2), ElementsAre(0.01f, 0.01f, 0.01f, 0.01f, 0.05f, 0.05f));
    EXPECT_THAT(sizes(2, "DD 1;0.05", 1), ElementsAre(0.01f, 0.05f, 0.01f, 0.01f, 0.01f, 0.01f));
    EXPECT_THAT(sizes(2, "DD 1;-1:DD 3;5:DD -3;5", 1), ElementsAre(0.01f, 0.01f, 0.01f, 0.01f, 0.01f, 0.01f));
    EXPECT_THAT(sizes(2, "DD 1;-0.5", 1), ElementsAre(0.01f, -0.5f, 0.01f, 0.01f, 0.01f, 0.01f));
    EXPECT_THAT(heights(5, "HH 2;3"), ElementsAre(1, 1, 1, 3, 3, 3));
    EXPECT_THAT(heights(5, "HH 1;3"), ElementsAre(1, 3, 1, 1, 3, 1));
    EXPECT_THAT(heights(5, "HH -1;3"), ElementsAre(1, 1, 1, 1, 3, 1));
    EXPECT_THAT(heights(5, "HH 0;3:HH 3;7"), ElementsAre(1, 1, 1, 1, 3, 1));
}

TEST(build, takesTheLatestWhereSpreadSizesCross) {
    TestProgram test;
    test.build(table("DD 0;0.01", {"HH 1;2:DD -1;2", "HH 2;3:DD -1;3:DD 1;4", "HH 0;4:DD -1;6", "HH 2;5:HH 1;6:DD 1;5",
                                   "", "HH 0;7:HH 1;8:HH 0;9:DD 1;8:DD -1;7"}));
    EXPECT_THAT(values(test.sim, test.sim.cellHeight), ElementsAre(6, 3, 8, 6, 5, 9));
    EXPECT_THAT(values(test.sim, test.sim.cellSize, 1), ElementsAre(2, 4, 6, 5, 3, 7));
}

TEST(build, walksThePlanesOfAStackOfLayers) {
    TestProgram test;
    test.build("L\t\n\t\n\t\nL\t\nHH 3;2:DD -2;0.5\t\n\tHH 2;7\nL\t");
    EXPECT_THAT(values(test.sim, test.sim.cellHeight), ElementsAre(1, 1, 7, 7, 2, 2, 7, 7));
    EXPECT_THAT(values(test.sim, test.sim.cellSize, 2),
                ElementsAre(0.01f, 0.01f, 0.01f, 0.01f, 0.5f, 0.5f, 0.01f, 0.01f));
}

TEST(build, resolvesWallCodes) {
    TestProgram ends;
    ends.build(inCell(3, "WV 1;0"));
    EXPECT_THAT(values(ends.sim, ends.sim.wallVelocity, 1), ElementsAre(0, 0, 0, 0, 0, 1));
    EXPECT_THAT(values(ends.sim, ends.sim.wallVelocity, 2), ElementsAre(0, 0, 0, 1, 1, 1));
    TestProgram whole;
    whole.build(inCell(5, "WV 0;2"));
    EXPECT_THAT(values(whole.sim, whole.sim.wallVelocity, 0), ElementsAre(0, 0, 0, 0, 2, 0));
    EXPECT_THAT(values(whole.sim, whole.sim.wallVelocity, 1), ElementsAre(0, 0, 1, 1, 1, 1));
    EXPECT_THAT(values(whole.sim, whole.sim.wallVelocity, 2), ElementsAre(0, 1, 0, 1, 1, 1));
    TestProgram rowStart;
    rowStart.build(inCell(4, "WV 1;2"));
    EXPECT_THAT(values(rowStart.sim, rowStart.sim.wallVelocity, 1), ElementsAre(0, 0, 1, 1, 0, 1));
}

TEST(build, startsImposedVelocitiesAtTheMassFlowOfTheTemplate) {
    TestProgram test;
    test.build(table("TR 4:TT 300",
                     {"TT 600:VV 1;8:WV 1;-1", "TT 600:VV 1;8:WV 1;-2", "", "TT 600:VV 1;8", "TT 600:VV 1;8:WV 0;-1"}));
    EXPECT_FLOAT_EQ(test.sim.velocity(1, 1), 16);
    EXPECT_FLOAT_EQ(test.sim.velocity(2, 1), 4);
    EXPECT_EQ(test.sim.velocity(4, 1), 8);
    EXPECT_EQ(test.sim.velocity(5, 1), 8) << "the code of the whole cell is spread only afterwards";
}

TEST(build, derivesPositionsVolumesAndCoefficients) {
    TestProgram test;
    test.build(table("DD 1;0.5:DD 2;0.25:LA 2:ET 3:RR 4", {"HH 0;2", "DD 1;1"}));
    EXPECT_THAT(values(test.sim, test.sim.cellPos, 1), ElementsAre(0, 0.5f, 1.5f, 0, 0.5f, 1.0f));
    EXPECT_THAT(values(test.sim, test.sim.cellVolume), ElementsAre(0.25f, 0.25f, 0.125f, 0.125f, 0.125f, 0.125f));
    EXPECT_EQ(test.sim.conductionCoef(1, 1), 2.0f);
    EXPECT_EQ(test.sim.viscousCoef(2, 2), 12.0f);
    EXPECT_EQ(test.sim.faceArea(2, 2), 1.0f);
    EXPECT_EQ(test.sim.friction[3], 0.5f);
    test.program.operations.buildModel(test.sim);
    EXPECT_EQ(test.sim.friction[3], 0.5f) << "the factor must not pile up";
}

/// "source KEY cell.component = value from cell @ row,column+place" of each assignment of a build.
std::vector<std::string> tracedBuild(const std::string& text) {
    constexpr const char* sources[] = {"defaults", "text", "spread", "rowEnd", "wholeCell", "closedTwice"};
    TestProgram test;
    test.load(text);
    std::vector<std::string> lines;
    buildModel(test.sim, test.ui, [&](const Assignment& made) {
        std::ostringstream line;
        line << sources[static_cast<int>(made.source)] << ' ' << made.key->letters << ' ' << made.cell << '.'
             << made.component << " = " << made.value << " from " << made.origin << " @ " << made.row << ','
             << made.column << '+' << made.at;
        lines.push_back(line.str());
    });
    return lines;
}

TEST(build, tellsWhereEachValueComesFrom) {
    const auto lines = tracedBuild("TT 310:GG 2;-9\tDD 0;0.5:WV 7;1\nL\t\nDD -1;0.2: tt 280\tHH 2;3\n"
                                   "WV 0;-1\tWV 2;2 CC 9;1\nL\t");
    EXPECT_THAT(lines, ElementsAre("defaults TT 0.0 = 310 from 0 @ 1,1+0", "defaults GG 0.2 = -9 from 0 @ 1,1+7",
                                   "defaults DD 0.1 = 0.5 from 0 @ 1,2+0", "defaults DD 0.2 = 0.5 from 0 @ 1,2+0",
                                   "rowEnd WV 2.1 = 1 from 0 @ 0,0+0", "rowEnd WV 4.1 = 1 from 0 @ 0,0+0",
                                   "rowEnd WV 3.2 = 1 from 0 @ 0,0+0", "rowEnd WV 4.2 = 1 from 0 @ 0,0+0",
                                   "text DD 1.1 = 0.2 from 1 @ 3,1+0", "text TT 1.0 = 280 from 1 @ 3,1+11",
                                   "text HH 2.0 = 3 from 2 @ 3,2+0", "spread DD 3.1 = 0.2 from 1 @ 0,0+0",
                                   "text WV 3.0 = -1 from 3 @ 4,1+0", "text WV 4.2 = 2 from 4 @ 4,2+0",
                                   "spread HH 1.0 = 3 from 2 @ 0,0+0", "wholeCell WV 3.1 = -1 from 3 @ 0,0+0",
                                   "wholeCell WV 3.2 = -1 from 3 @ 0,0+0", "closedTwice WV 2.2 = 1 from 4 @ 0,0+0",
                                   "closedTwice WV 4.2 = 1 from 4 @ 0,0+0"));
}

} // namespace
} // namespace norvane
