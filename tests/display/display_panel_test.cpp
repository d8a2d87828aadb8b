// The display panel shows the settings when it opens and stores them on OK; a plot corrects what makes no sense.

#include "display/display_panel.h"
#include "display/field_plot.h"
#include "display/recording.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct DisplayPanel : testing::Test {
    TestProgram test;
    SimState& sim = test.sim;
    DisplayWindow& panel = test.ui.NV_dsp;
    Drawing drawing;

    DisplayPanel() { recordOn(test.ui.NV_out.Picture1, drawing); }

    void open() { showDisplayPanel(sim, test.ui); }

    void choose(int quantity) {
        panel.Combo1.select(quantity - 1);
        chooseQuantity(sim, test.ui);
    }
};

const char* const twoLayers = "NS 1\t\t\nL\t\t\n\t\t\n\t\t\nL\t\t\n\t\t\n\t\t\nL\t\t"; // 3 by 2 by 2 cells

TEST_F(DisplayPanel, opensAndClosesWithoutAGeometry) {
    open();
    EXPECT_TRUE(panel.form.visible);
    EXPECT_EQ(panel.mMinscale.text, "0");
    EXPECT_EQ(panel.mMaxScale.text, "0");
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(panel.zzoom[k].text, "---");
        EXPECT_EQ(panel.Offset[k].text, "---");
        EXPECT_THAT(panel.ComboSlice[k].entries, ElementsAre("---"));
        EXPECT_EQ(panel.ComboSlice[k].listIndex, 0);
    }
    EXPECT_EQ(panel.Combo1.text, "Combo1");
    EXPECT_FALSE(panel.Dimen.visible);
    panel.mMinscale.text = "-2.5e1x";
    panel.mMaxScale.text = "1,5";
    clickOk(sim, test.ui);
    EXPECT_EQ(sim.scaleMin, -25);
    EXPECT_EQ(sim.scaleMax, 1); // a comma ends the number
    EXPECT_EQ(sim.showWhat, 0);
    EXPECT_THAT(drawing, IsEmpty());
    EXPECT_THAT(test.events, ElementsAre("shown: NV_dsp", "hidden: NV_dsp"));
}

TEST_F(DisplayPanel, ofAGeometryWithoutAModelClearsTheSurfaceOnly) {
    test.load(twoLayers);
    open();
    EXPECT_EQ(panel.ComboSlice[2].text, "Slice 0");
    EXPECT_EQ(panel.zzoom[0].text, "0");
    clickOk(sim, test.ui);
    EXPECT_THAT(drawing, ElementsAre("cls"));
    EXPECT_FALSE(test.ui.NV_out.form.visible);
}

TEST_F(DisplayPanel, showsTheSettings) {
    test.build(twoLayers);
    sim.zoom[2] = 0.1f;
    sim.offset[1] = -1234567.9f;
    sim.sliceSel[3] = 1;
    open();
    EXPECT_EQ(panel.mMinscale.text, "600");
    EXPECT_EQ(panel.mMaxScale.text, "1000");
    EXPECT_EQ(panel.zzoom[1].text, "0.1");
    EXPECT_EQ(panel.Offset[0].text, "-1234568");
    EXPECT_THAT(panel.ComboSlice[0].entries, ElementsAre("Columns", "Rows", "Slice 0", "Slice 1", "Slice 2"));
    EXPECT_EQ(panel.ComboSlice[0].text, "Columns");
    EXPECT_EQ(panel.ComboSlice[1].text, "Rows");
    EXPECT_EQ(panel.ComboSlice[2].text, "Slice 1");
    EXPECT_EQ(panel.ComboSlice[3].text, "---");
    EXPECT_EQ(panel.Combo1.text, "Temperature");
    sim.showWhat = 12; // no entry of the list
    open();
    EXPECT_EQ(panel.Combo1.listIndex, -1);
    EXPECT_EQ(sim.showWhat, 12);
}

TEST_F(DisplayPanel, listsTheComponentsOfTheQuantityThatIsChosen) {
    test.build(twoLayers);
    sim.showDims = 2;
    open();
    for (const int quantity : {1, 4, 5, 9, 11}) {
        choose(quantity);
        EXPECT_FALSE(panel.Dimen.visible);
        EXPECT_THAT(panel.Dimen.entries, IsEmpty());
    }
    for (const int quantity : {2, 3, 7, 8, 10}) {
        choose(quantity);
        EXPECT_EQ(sim.showWhat, quantity);
        EXPECT_TRUE(panel.Dimen.visible);
        EXPECT_THAT(panel.Dimen.entries, ElementsAre("Total", " X", " Y", " Z"));
        EXPECT_EQ(panel.Dimen.text, " Y");
    }
    choose(6);
    EXPECT_THAT(panel.Dimen.entries, ElementsAre("Species 1", "Species 2"));
    EXPECT_EQ(panel.Dimen.listIndex, -1); // there is no third species
    clickOk(sim, test.ui);
    EXPECT_EQ(sim.showDims, 0); // -1 was stored, and the plot made it the first species
}

TEST_F(DisplayPanel, storesEverythingOnOkAndPlots) {
    test.build(twoLayers);
    open();
    panel.mMinscale.text = "250";
    panel.mMaxScale.text = " 3.5E2";
    panel.zzoom[0].text = "two";
    panel.zzoom[1].text = "-3";
    panel.zzoom[2].text = "";
    panel.Offset[2].text = ".5";
    panel.ComboSlice[0].select(2 + 1);
    panel.ComboSlice[2].select(0);
    choose(10);
    panel.Dimen.select(3);
    clickOk(sim, test.ui);
    EXPECT_EQ(sim.scaleMin, 250);
    EXPECT_EQ(sim.scaleMax, 350);
    EXPECT_EQ(sim.zoom[1], 0); // no axis any more: nothing corrects it
    EXPECT_EQ(sim.zoom[2], 1);
    EXPECT_EQ(sim.zoom[3], 1);
    EXPECT_EQ(sim.offset[3], 0.5f);
    EXPECT_EQ(sim.sliceSel[1], 1);
    EXPECT_EQ(sim.axisPair[0], 3);
    EXPECT_EQ(sim.axisPair[1], 2);
    EXPECT_EQ(drawing[0], "cls");
    EXPECT_EQ(test.read("m_out"), "\r\n 0 \t 1 \r\n 0 \t 1 ");
    EXPECT_FALSE(panel.form.visible);
}

TEST_F(DisplayPanel, takesSelectionsThatMakeNoPlane) {
    test.build(twoLayers);
    open();
    for (Selector& role : panel.ComboSlice) role.select(0);
    clickOk(sim, test.ui);
    EXPECT_EQ(sim.axisPair[0], 3); // the highest wins
    EXPECT_EQ(sim.axisPair[1], 2);
    EXPECT_EQ(sim.sliceSel[1], 0); // left without an axis and without a slice
    EXPECT_EQ(test.read("m_out"), "\r\n 24.99999 \t 24.99999 \r\n 24.99999 \t 24.99999 ");
    for (Selector& role : panel.ComboSlice) role.listIndex = -1; // typed text
    panel.Combo1.listIndex = -1;
    clickOk(sim, test.ui);
    EXPECT_EQ(sim.sliceSel[3], -3);
    EXPECT_EQ(sim.showWhat, 0);
    open();
    EXPECT_EQ(panel.ComboSlice[2].listIndex, -1);
    EXPECT_EQ(panel.Combo1.listIndex, -1);
}

TEST_F(DisplayPanel, filledForAnotherGridIsNoHarm) {
    test.build("\t\nL\t\n\t\nL\t");
    open();
    test.build(twoLayers);
    clickOk(sim, test.ui); // the columns that said "---" are now on the axes
    EXPECT_EQ(sim.axisPair[0], 3);
    EXPECT_EQ(sim.zoom[3], 1);
}

TEST_F(DisplayPanel, hasFourColumnsWhateverTheGrid) {
    test.build("L\t\n\t\nL4\t\n\t\nL5\t\n\t\nL4\t\n\t\nL5\t");
    ASSERT_GT(sim.nDim, 4);
    sim.sliceSel[5] = 1;
    open();
    choose(2);
    EXPECT_THAT(panel.Dimen.entries, ElementsAre("Total", " X", " Y", " Z", "d4", ""));
    clickOk(sim, test.ui);
    EXPECT_EQ(sim.sliceSel[5], 1);
}

TEST_F(DisplayPanel, asksForTheTitle) {
    test.build(twoLayers);
    test.answers = {"Nozzle", std::nullopt};
    clickTitle(sim, test.ui);
    EXPECT_EQ(sim.graphTitle, "Nozzle");
    clickTitle(sim, test.ui);
    EXPECT_EQ(sim.graphTitle, ""); // also a Cancel is an answer
    EXPECT_THAT(drawing, IsEmpty());
}

} // namespace
} // namespace norvane
