// A colour map shows one plane of cells as boxes in the colours of the scale, with a legend and the closed faces.

#include "display/field_plot.h"
#include "display/recording.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace norvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A built model whose plots are recorded.
struct PlotTest : testing::Test {
    TestProgram test;
    SimState& sim = test.sim;
    Drawing drawing;

    PlotTest() { recordOn(test.ui.NV_out.Picture1, drawing); }

    /// Draws anew and gives all that follows the legend.
    Drawing cells() {
        drawing.clear();
        plotField(sim, test.ui);
        return linesFrom(drawing, headLines);
    }
};

using ColourMap = PlotTest;

// Three columns and two rows of cells of 1 m. At 221.5 pixels a metre the last column does not fit any more.
const char* const threeByTwo = "DD 0;1:TT 700:SI 0:SA 600\t\t\n"
                               "L\t\t\n"
                               "WV 1;1\tTT 373.15\t\n"
                               "TT 100\t\t\n"
                               "L\t\t";

TEST_F(ColourMap, paintsCellsRowByRowAndMarksClosedFaces) {
    test.build(threeByTwo);
    EXPECT_THAT(cells(),
                ElementsAre("box 6 26 226 246 255,255,34", "line 227 25 227 247 2 0,0,255",
                            "box 228 26 447 246 127,0,0", "box 6 248 226 467 0,0,0", "line 5 468 227 468 2 0,0,255",
                            "box 228 248 447 467 255,255,34", "line 227 468 448 468 2 0,0,255"));
    EXPECT_TRUE(test.ui.NV_out.form.visible);
}

TEST_F(ColourMap, hasAHeadAndALegendFromTheBottomOfTheScaleDown) {
    test.build("SW 2:SD 2\t\nL\t\n\t\n\t\nL\t");
    sim.graphTitle = "two by two";
    plotField(sim, test.ui);
    ASSERT_GT(drawing.size(), headLines);
    EXPECT_EQ(drawing[0], "text 224 5 12 bold 0,0,128 two by two");
    EXPECT_EQ(drawing[1], "text 460 35.61538 10 bold 0,0,128 Velocity");
    EXPECT_EQ(drawing[2], "text 460 62.15385 10 bold 0,0,128 ( Y)");
    EXPECT_EQ(drawing[3], "box 472 104.6154 544 131.1538 0,0,0");
    EXPECT_EQ(drawing[4], "text 472 136.4615 8 plain 0,0,0 600");
    const char* const swatches[] = {"0,0,0 600",       "76,0,0 640",      "153,0,0 680",     "229,0,0 720",
                                    "255,51,0 760",    "255,127,0 800",   "255,204,0 840",   "255,255,25 880",
                                    "255,255,102 920", "255,255,178 960", "255,255,255 1000"};
    for (std::size_t row = 0; row < 11; ++row)
        EXPECT_THAT(drawing[4 + 2 * row], testing::EndsWith(std::string(" 8 plain ") + swatches[row]));
}

TEST_F(ColourMap, followsTheSizeOfItsWindow) {
    test.build(threeByTwo);
    test.ui.NV_out.form.width = 325; // 100 pixels a metre
    EXPECT_THAT(cells()[0], "box 6 26 104 124 255,255,34");
    EXPECT_EQ(test.ui.NV_out.Picture1.scaleWidth, 325);
    EXPECT_EQ(drawing[0], "text 102.5 5 12 bold 0,0,128 m");
}

TEST_F(ColourMap, stretchesByZoomAndLeavesOutWhatAnOffsetMovesAway) {
    test.build(threeByTwo);
    sim.zoom[1] = 2;
    sim.zoom[2] = std::numeric_limits<float>::quiet_NaN(); // no zoom at all
    sim.offset[1] = 1;
    // 110.75 pixels a metre, twice across. Column 0 begins left of the map, column 2 now fits.
    EXPECT_THAT(cells(), ElementsAre("box 6 26 226 135 127,0,0", "box 228 26 447 135 255,255,34",
                                     "line 448 25 448 136 2 0,0,255", "box 6 137 226 246 255,255,34",
                                     "line 5 247 227 247 2 0,0,255", "box 228 137 447 246 255,255,34",
                                     "line 448 136 448 247 2 0,0,255", "line 227 247 448 247 2 0,0,255"));
    EXPECT_EQ(sim.zoom[2], 1);
}

TEST_F(ColourMap, showsOneSliceOfTheOtherDimensions) {
    test.build("SI 0:SA 3:DD 0;1\t\nL\t\n\t\n\t\nL\t\n\t\n\t\nL\t\n\t\n\t\nL\t");
    sim.showWhat = 10;
    sim.showDims = 3;
    sim.sliceSel[3] = 2;
    const Drawing third = cells();
    EXPECT_EQ(linesFrom(drawing, headLines + 1), linesFrom(third, 1)); // the label of the component comes before
    EXPECT_EQ(third[1], "box 6 26 447 467 255,255,0");
    EXPECT_EQ(test.read("m_out"), "\r\n 2 \t 2 \r\n 2 \t 2 ");
    sim.axisPair[0] = 3;
    sim.sliceSel[1] = 1;
    cells();
    EXPECT_EQ(test.read("m_out"), "\r\n 0 \t 1 \t 2 \r\n 0 \t 1 \t 2 ");
    sim.axisPair[0] = 1;
    for (const int noSlice : {-3, -2, -1, 3, 32767}) {
        sim.sliceSel[3] = static_cast<std::int16_t>(noSlice);
        cells();
        EXPECT_EQ(test.read("m_out"), "\r\n 0 \t 0 \r\n 0 \t 0 ");
        EXPECT_EQ(sim.sliceSel[3], 0);
    }
}

TEST_F(ColourMap, ofAOneDimensionalGridIsABand) {
    test.build("SW 4:SI 101300:SA 101301:DD 0;1\t\t\nL\t\t\n\tWV 1;1\t\nL\t\t");
    ASSERT_EQ(sim.nDim, 1);
    EXPECT_THAT(cells(),
                ElementsAre("box 6 26 226 64 0,0,0", "box 228 26 447 64 0,0,0", "line 448 25 448 65 2 0,0,255"));
    EXPECT_EQ(test.read("m_out"), "\r\n 101300 \t 101300 \t 101300 ");
}

TEST_F(ColourMap, ofARowThatIsAlsoTheColumnStandsOnTheDiagonal) {
    test.build("SW 10:SI 0:SA 1:DD 0;1\t\t\nL\t\t\n\t\t\nL\t\t");
    sim.axisPair[1] = 1;
    const Drawing drawn = cells();
    EXPECT_EQ(sim.showDims, 1);
    ASSERT_EQ(drawn.size(), 6u); // each of the two cells that fit, three times
    EXPECT_EQ(drawn[2], "box 6 26 226 246 0,0,0");
    EXPECT_EQ(drawn[3], "box 228 248 447 467 255,255,255");
    EXPECT_EQ(test.read("m_out"), "\r\n 0 \r\n 0 \r\n 0 \t 1 \t 1 \t 1 \t 2 \t 2 \t 2 ");
}

TEST_F(ColourMap, isBlackForANumberThatIsNone) {
    test.build(threeByTwo);
    sim.temperature[1] = std::numeric_limits<float>::quiet_NaN();
    sim.temperature[2] = std::numeric_limits<float>::infinity();
    EXPECT_EQ(cells()[0], "box 6 26 226 246 0,0,0");
    EXPECT_EQ(drawing[headLines + 2], "box 228 26 447 246 255,255,255");
    EXPECT_THAT(test.read("m_out"), testing::StartsWith("\r\n nan \t inf \t"));
    const PlaneRange range = planeRange(sim);
    EXPECT_TRUE(range.found);
    EXPECT_FLOAT_EQ(range.low, -173.15f);
    EXPECT_FLOAT_EQ(range.high, 426.85f);
}

TEST_F(ColourMap, withoutAScaleIsWhiteAboveAndBlackElsewhere) {
    test.build(threeByTwo);
    sim.scaleMin = sim.scaleMax = 0;
    EXPECT_EQ(cells()[0], "box 6 26 226 246 255,255,255");
    EXPECT_EQ(drawing[headLines + 3], "box 6 248 226 467 0,0,0");
    EXPECT_EQ(drawing[23], "text 472 667.2308 8 plain 255,255,255 0");
}

TEST_F(ColourMap, needsAModelAndCells) {
    plotField(sim, test.ui);
    test.load(threeByTwo);
    plotField(sim, test.ui);
    EXPECT_THAT(drawing, IsEmpty());
    EXPECT_FALSE(test.exists("m_out"));
    EXPECT_FALSE(test.ui.NV_out.form.visible);
    // All low edges at 0: there is no scale that fits, but the table stands.
    test.build("DD 0;0:SW 5\t\nL\t\n\t\n\t\nL\t");
    sim.density[0] = 1;
    EXPECT_THAT(cells(), IsEmpty());
}

using VectorPlot = PlotTest;

TEST_F(VectorPlot, drawsArrowsThatAreCutAtTheTopOfTheScale) {
    test.build("DD 0;1:SW 11:SI 443:SA 30\t\t\nL\t\t\nVV 1;10 VV 2;-20\tVV 1;-60 VV 2;80\tVV 1;-9\n\t\t\nL\t\t");
    plotField(sim, test.ui);
    // The heads are wiped; half a pixel for each m/s; an arrow at rest is a point. The last column lies outside.
    EXPECT_THAT(linesFrom(drawing, 2),
                ElementsAre("cls", "line 116 136 121 126 1 0,255,255", "line 337.5 136 319.5 160 2 0,255,255",
                            "line 116 357.5 116 357.5 1 0,255,255", "line 5 468 227 468 2 0,0,255",
                            "line 337.5 357.5 337.5 357.5 1 0,255,255", "line 227 468 448 468 2 0,0,255"));
    EXPECT_EQ(test.read("m_out"), "\r\n 0 \t 0 \t 0 \r\n 0 \t 0 \t 0 ");
}

TEST_F(VectorPlot, raisesScalesThatAreNoneToOne) {
    test.build("SW 11:SI -5:SA 0\t\nL\t\n\t\n\t\nL\t");
    plotField(sim, test.ui);
    EXPECT_EQ(sim.scaleMin, 1);
    EXPECT_EQ(sim.scaleMax, 1);
    EXPECT_FALSE(planeRange(sim).found);
}

} // namespace
} // namespace norvane
