#include "display/display_panel.h"

#include "core/number_text.h"
#include "core/quantities.h"
#include "display/field_plot.h"
#include "display/plot_layout.h"
#include "display/snapshot.h"

#include <algorithm>
#include <string>

namespace norvane {

namespace {

// The first two entries of a column's selector put its dimension on an axis; the slices follow. The marks of the axes
// in sliceSel, -2 and -1, and the slices from 0 are these places less two.
constexpr int columnsEntry = 0;
constexpr int rowsEntry = 1;
constexpr int firstSliceEntry = 2;

constexpr const char* noDimension = "---";

/// Dimensions that have a column on the panel.
int shownDimensions(const SimState& sim) { return std::min<int>(sim.nDim, DisplayWindow::columns); }

void fillColumn(const SimState& sim, DisplayWindow& panel, int dim) {
    const int k = dim - 1;
    panel.zzoom[k].text = generalText(sim.zoom[dim]);
    panel.Offset[k].text = generalText(sim.offset[dim]);
    Selector& role = panel.ComboSlice[k];
    role.clear();
    role.entries = {"Columns", "Rows"};
    for (int slice = 0; slice < sim.cellCount[dim]; ++slice) role.entries.push_back("Slice " + std::to_string(slice));
    role.select(sim.sliceSel[dim] + firstSliceEntry);
}

void blankColumn(DisplayWindow& panel, int dim) {
    const int k = dim - 1;
    panel.zzoom[k].text = noDimension;
    panel.Offset[k].text = noDimension;
    panel.ComboSlice[k].clear();
    panel.ComboSlice[k].entries = {noDimension};
    panel.ComboSlice[k].select(0);
}

float numberIn(const TextBox& box) { return static_cast<float>(numericPrefix(box.text)); }

void takeColumn(SimState& sim, const DisplayWindow& panel, int dim) {
    const int k = dim - 1;
    sim.zoom[dim] = numberIn(panel.zzoom[k]);
    sim.offset[dim] = numberIn(panel.Offset[k]);
    const int role = panel.ComboSlice[k].listIndex;
    sim.sliceSel[dim] = toInt16(role - firstSliceEntry);
    if (role == columnsEntry) sim.axisPair[0] = static_cast<std::int16_t>(dim);
    if (role == rowsEntry) sim.axisPair[1] = static_cast<std::int16_t>(dim);
}

} // namespace

void showDisplayPanel(SimState& sim, Interface& ui) {
    DisplayWindow& panel = ui.NV_dsp;
    panel.mMinscale.text = generalText(sim.scaleMin);
    panel.mMaxScale.text = generalText(sim.scaleMax);
    for (int dim = 1; dim <= shownDimensions(sim); ++dim) fillColumn(sim, panel, dim);
    for (int dim = shownDimensions(sim) + 1; dim <= DisplayWindow::columns; ++dim) blankColumn(panel, dim);
    // Selecting is a choice like a person's, but showWhat and the component list come out the same.
    if (sim.showWhat >= 1) panel.Combo1.select(sim.showWhat - 1);
    fillComponentList(sim, ui);
    showForm(ui, panel.form);
}

void fillComponentList(const SimState& sim, Interface& ui) {
    Selector& components = ui.NV_dsp.Dimen;
    components.clear();
    components.visible = hasDirections(sim.showWhat) || sim.showWhat == showConcentration;
    if (!components.visible) return;
    if (sim.showWhat == showConcentration) {
        for (int species = 0; species <= sim.nsMax; ++species)
            components.entries.push_back("Species " + std::to_string(species + 1));
    } else {
        components.entries.emplace_back("Total");
        for (int dim = 1; dim <= sim.nDim; ++dim) components.entries.push_back(dimensionMark(dim));
    }
    components.select(sim.showDims);
}

void chooseQuantity(SimState& sim, Interface& ui) {
    sim.showWhat = toInt16(ui.NV_dsp.Combo1.listIndex + 1);
    fillComponentList(sim, ui);
}

void clickOk(SimState& sim, Interface& ui) {
    DisplayWindow& panel = ui.NV_dsp;
    sim.scaleMin = numberIn(panel.mMinscale);
    sim.scaleMax = numberIn(panel.mMaxScale);
    for (int dim = 1; dim <= shownDimensions(sim); ++dim) takeColumn(sim, panel, dim);
    if (panel.Dimen.visible) sim.showDims = toInt16(panel.Dimen.listIndex);
    sim.showWhat = toInt16(panel.Combo1.listIndex + 1);
    if (sim.nDim > 0) {
        clearPlot(ui);
        plotField(sim, ui);
    }
    hideForm(ui, panel.form);
}

void clickToFile(SimState& sim, Interface& ui) { takeSnapshot(sim, ui, true); }

void clickTitle(SimState& sim, Interface& ui) {
    sim.graphTitle = ui.askText("Title graph", sim.graphTitle).value_or("");
}

} // namespace norvane
