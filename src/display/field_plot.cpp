#include "display/field_plot.h"

#include "core/addressing.h"
#include "core/number_text.h"
#include "core/quantities.h"
#include "core/wall_codes.h"
#include "display/plot_file.h"
#include "display/plot_layout.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

// Layout of the surface, in pixels.
constexpr double rowHeights = 13; // raster of names and legend

constexpr Color headColor{0, 0, 128};
constexpr Color arrowColor{0, 255, 255};
constexpr Color wallColor{0, 0, 255};

bool modelStands(const SimState& sim) { return sim.nDim > 0 && sim.density.contains(0) && sim.density[0] > 0; }

/// Puts what is no slice to slice 0: the mark of an axis stays on a dimension that is none where two dimensions were
/// chosen for one axis, and a panel may have been filled for another grid.
void correctSlices(SimState& sim) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const bool isAxis = dim == sim.axisPair[0] || dim == sim.axisPair[1];
        if (!isAxis && !(sim.sliceSel[dim] >= 0 && sim.sliceSel[dim] < sim.cellCount[dim])) sim.sliceSel[dim] = 0;
    }
}

/// One call of plotField.
struct Plot {
    SimState& sim;
    Surface& surface;
    PlotLayout layout;
    double width;        ///< W, of the surface
    double height;       ///< H, of the surface
    double windowHeight; ///< of the window
    float value = 0;     ///< of the cell in hand; a quantity without values keeps that of the last legend row
};

void sizeSurface(const Form& window, Surface& surface) {
    if (surface.scaleWidth == window.width && surface.scaleHeight == window.height) return;
    surface.scaleWidth = window.width;
    surface.scaleHeight = window.height;
    surface.resized();
}

void correctZoom(SimState& sim, int dim) {
    // "not above" and not "below or equal": a NaN is no zoom either.
    if (dim >= 1 && dim <= sim.nDim && !(sim.zoom[dim] > 0)) sim.zoom[dim] = 1;
}

void printAt(Surface& surface, double x, double y, const std::string& text) {
    surface.currentX = static_cast<float>(x);
    surface.currentY = static_cast<float>(y);
    surface.print(text);
}

void setFont(Surface& surface, float points, bool bold) {
    surface.fontSize = points;
    surface.fontBold = bold;
}

void drawBox(Surface& surface, double x0, double y0, double x1, double y1) {
    surface.box(static_cast<float>(x0), static_cast<float>(y0), static_cast<float>(x1), static_cast<float>(y1));
}

void drawLine(Surface& surface, double x0, double y0, double x1, double y1) {
    surface.line(static_cast<float>(x0), static_cast<float>(y0), static_cast<float>(x1), static_cast<float>(y1));
}

/// Title, name of the quantity and its component.
void printHeads(const Plot& plot, const Selector& quantities) {
    Surface& surface = plot.surface;
    setFont(surface, 12, true);
    printAt(surface, (plot.width - legendStrip) / 2, 5, plot.sim.graphTitle);

    const double x = plot.width - legendStrip + 12;
    const double y = (0.2 / rowHeights) * plot.windowHeight + plotTop;
    setFont(surface, 10, true);
    const bool hasName = plot.layout.quantity <= quantities.listCount();
    printAt(surface, x, y, hasName ? quantities.entries[static_cast<std::size_t>(plot.layout.quantity) - 1] : "");

    // The size of a cell is shown by dimension, too, but has no label.
    const bool hasLabel = hasDirections(plot.layout.quantity) && plot.layout.quantity != showCellSize;
    if (hasLabel && plot.sim.showDims > 0)
        printAt(surface, x, (0.5 / rowHeights) * plot.windowHeight + y, "(" + dimensionMark(plot.sim.showDims) + ")");
}

/// Limits a share of a colour and cuts it to a whole number.
std::uint8_t colorLevel(double level) {
    if (!(level >= 0)) return 0; // also a NaN
    return static_cast<std::uint8_t>(std::floor(std::min(level, 255.0)));
}

/// Black, red, yellow, white from the bottom of the scale to its top.
Color scaleColor(double v, double low, double high) {
    return {colorLevel((3 * v - 3 * low) / (high - low) * 255),
            colorLevel((3 * v - 2 * low - high) / (high - low) * 255),
            colorLevel((3 * v - low - 2 * high) / (high - low) * 255)};
}

/// The bottom of the scale is at the top.
void drawLegend(Plot& plot) {
    const SimState& sim = plot.sim;
    Surface& surface = plot.surface;
    const double x0 = plot.width - legendStrip + legendStrip * 0.2;
    const double x1 = plot.width - legendStrip + legendStrip * 0.8;
    setFont(surface, 8, false);
    for (int row = 0; row <= 10; ++row) {
        const double t = static_cast<float>(row / 10.0);
        const double y0 = ((row + 1.5) / rowHeights) * plot.height + plotTop;
        const double y1 = (0.5 / rowHeights) * plot.height + y0;
        surface.foreColor = {colorLevel((t * 3) * 255), colorLevel((t * 3 - 1) * 255), colorLevel((t * 3 - 2) * 255)};
        drawBox(surface, x0, y0, x1, y1);
        plot.value = static_cast<float>((double(sim.scaleMax) - double(sim.scaleMin)) * t + double(sim.scaleMin));
        printAt(surface, x0, (0.1 / rowHeights) * plot.height + y1, generalText(plot.value));
    }
}

void drawColor(const Plot& plot, const CellBox& box) {
    if (!box.inRange) return;
    Surface& surface = plot.surface;
    surface.drawWidth = 1;
    surface.foreColor = scaleColor(plot.value, plot.sim.scaleMin, plot.sim.scaleMax);
    surface.box(box.x.low, box.y.low, box.x.high, box.y.high);
}

float arrowAlong(const Plot& plot, const PlotAxis& axis, std::int32_t cell) {
    if (!axis.exists) return 0;
    const SimState& sim = plot.sim;
    return static_cast<float>(double(plot.layout.scale) * double(sim.velocity(cell, axis.dim))
                              * double(sim.zoom[axis.dim]) / double(sim.scaleMin));
}

/// One line without a head from the centre of the cell; the bottom of the scale is the speed that is drawn as long as a
/// length unit, its top the longest arrow in pixels, and an arrow cut to that is drawn thicker.
void drawArrow(const Plot& plot, const CellBox& box, std::int32_t cell) {
    Surface& surface = plot.surface;
    const double longest = plot.sim.scaleMax;
    float dx = arrowAlong(plot, plot.layout.across, cell);
    float dy = arrowAlong(plot, plot.layout.down, cell);
    const double length = std::sqrt(double(dy) * double(dy) + double(dx) * double(dx));
    const bool isCut = length > longest;
    if (isCut) {
        dx = static_cast<float>(longest * double(dx) / length);
        dy = static_cast<float>(longest * double(dy) / length);
    }
    surface.drawWidth = isCut ? 2 : 1;
    const double cx = (double(box.x.high) + double(box.x.low)) / 2;
    const double cy = (double(box.y.high) + double(box.y.low)) / 2;
    const double ex = cx + double(dx);
    const double ey = cy + double(dy);
    const bool fits =
        cx >= plotLeft && ex <= plot.width - legendStrip && cy >= plotTop && ey <= plot.height - plotBottom;
    if (!fits) return;
    surface.foreColor = arrowColor;
    drawLine(surface, cx, cy, ex, ey);
}

bool hasClosedFace(const SimState& sim, std::int32_t cell, const PlotAxis& axis) {
    return axis.exists && isClosed(sim.wallVelocity(cell, axis.dim));
}

/// Closed upper faces, in the seams at the right and at the bottom of the cell.
void drawWalls(const Plot& plot, const CellBox& box, std::int32_t cell) {
    if (!box.inRange) return;
    Surface& surface = plot.surface;
    const double left = double(box.x.low) - 1;
    const double right = double(box.x.high) + 1;
    const double top = double(box.y.low) - 1;
    const double bottom = double(box.y.high) + 1;
    const auto drawMark = [&](double x0, double y0) {
        surface.drawWidth = 2;
        surface.foreColor = wallColor;
        drawLine(surface, x0, y0, right, bottom);
    };
    if (hasClosedFace(plot.sim, cell, plot.layout.across)) drawMark(right, top);
    if (hasClosedFace(plot.sim, cell, plot.layout.down)) drawMark(left, bottom);
}

/// Corrects the settings that a cell uses; done only where there are cells to draw.
void correctSettings(const Plot& plot) {
    SimState& sim = plot.sim;
    sim.showDims = static_cast<std::int16_t>(correctedComponent(sim, plot.layout.quantity, sim.showDims));
    if (plot.layout.quantity != showVectors) return;
    if (!(sim.scaleMin > 0)) sim.scaleMin = 1;
    if (!(sim.scaleMax > 0)) sim.scaleMax = 1;
}

/// `file`: takes the value as well; may be null.
void drawCell(Plot& plot, PlotFile* file, std::int32_t cell) {
    const SimState& sim = plot.sim;
    const PlotAxis& across = plot.layout.across;
    if (hasValue(plot.layout.quantity)) plot.value = cellValue(sim, plot.layout.quantity, sim.showDims, cell);
    const bool startsLine = !across.exists || cellCoordinate(sim, cell, across.dim) == 0;
    if (file != nullptr) writePlotEntry(*file, startsLine, plot.value);

    const CellBox box = placeCell(plot.layout, sim, cell);
    if (plot.layout.quantity == showVectors)
        drawArrow(plot, box, cell);
    else
        drawColor(plot, box);
    drawWalls(plot, box, cell);
}

/// From the top row down, each from left to right.
void drawCells(Plot& plot, PlotFile* file) {
    const PlotLayout& layout = plot.layout;
    if (layout.across.count > 0 && layout.down.count > 0) correctSettings(plot);
    for (std::int64_t j = 0; j < layout.down.count; ++j)
        for (std::int64_t i = 0; i < layout.across.count; ++i) drawCell(plot, file, cellOfPlane(layout, i, j));
}

/// `file`: takes the values of the plane as well; may be null.
void drawPlane(SimState& sim, Interface& ui, PlotFile* file) {
    const Form& window = ui.NV_out.form;
    Surface& surface = ui.NV_out.Picture1;
    surface.foreColor = headColor;
    sizeSurface(window, surface);
    correctSlices(sim);
    for (const int dim : sim.axisPair) correctZoom(sim, dim);
    Plot plot{sim,
              surface,
              layOut(sim, surface.scaleWidth, surface.scaleHeight),
              surface.scaleWidth,
              surface.scaleHeight,
              window.height};
    const PlotLayout& layout = plot.layout;

    printHeads(plot, ui.NV_dsp.Combo1);
    if (plot.layout.quantity != showVectors) drawLegend(plot);
    if (file != nullptr) reserveEntries(*file, double(layout.across.count) * double(layout.down.count));
    // A colour map paints over the old picture; arrows can't, and take the heads with them.
    if (plot.layout.quantity == showVectors) surface.cls();
    drawCells(plot, file);
    ui.NV_out.layout = layout;
    showForm(ui, ui.NV_out.form);
}

} // namespace

void plotField(SimState& sim, Interface& ui) {
    if (!modelStands(sim)) return;
    PlotFile file = openPlotFile(sim);
    drawPlane(sim, ui, &file);
    closePlotFile(file, sim, ui);
}

void drawField(SimState& sim, Interface& ui) {
    if (modelStands(sim)) drawPlane(sim, ui, nullptr);
}

void clearPlot(Interface& ui) {
    ui.NV_out.layout.isDrawn = false;
    ui.NV_out.Picture1.cls();
}

void resizePlotWindow(Interface& ui) { clearPlot(ui); }

PlaneRange planeRange(const SimState& sim) {
    PlaneRange range;
    const int quantity = drawnQuantity(sim.showWhat);
    if (!modelStands(sim) || !hasValue(quantity)) return range;
    const int component = correctedComponent(sim, quantity, sim.showDims);
    const PlotLayout layout = layOut(sim, 0, 0);
    for (std::int64_t j = 0; j < layout.down.count; ++j)
        for (std::int64_t i = 0; i < layout.across.count; ++i) {
            const float value = cellValue(sim, quantity, component, cellOfPlane(layout, i, j));
            if (!std::isfinite(value)) continue;
            range.low = range.found ? std::min(range.low, value) : value;
            range.high = range.found ? std::max(range.high, value) : value;
            range.found = true;
        }
    return range;
}

} // namespace norvane
