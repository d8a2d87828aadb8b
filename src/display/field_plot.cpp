#include "display/field_plot.h"

#include "core/addressing.h"
#include "core/number_text.h"
#include "display/plot_file.h"
#include "display/quantities.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

// Layout of the surface, in pixels.
constexpr double leftMargin = 5;
constexpr double topMargin = 25;
constexpr double legendStrip = 120; // kept free at the right
constexpr double fitBottom = 15;    // kept free below the map when it is fitted
constexpr double placeBottom = 5;   // kept free below the map when a cell is placed
constexpr double rowHeights = 13;   // raster of names and legend
constexpr double bandHeight = 40;   // of a plot whose second axis the grid does not have

constexpr Color headColor{0, 0, 128};
constexpr Color arrowColor{0, 255, 255};
constexpr Color wallColor{0, 0, 255};

/// One of the two dimensions that span the picture.
struct Axis {
    int dim = 0;
    bool exists = false; ///< false: the grid has no such dimension, and the axis holds one cell of a fixed size
    std::int64_t count = 0;
    std::int64_t stride = 0;
};

/// The cells of a plot: all pairs of coordinates along two axes, at one slice of every other dimension.
struct Plane {
    Axis across;
    Axis down;
    std::int64_t first = 1; ///< cell number at the coordinates 0, 0

    bool isDiagonal() const { return across.exists && across.dim == down.dim; }

    /// With one dimension on both axes the place downward counts.
    std::int32_t cell(std::int64_t i, std::int64_t j) const {
        return static_cast<std::int32_t>(first + (isDiagonal() ? 0 : i * across.stride) + j * down.stride);
    }
};

bool modelStands(const SimState& sim) { return sim.nDim > 0 && sim.density.contains(0) && sim.density[0] > 0; }

Axis axisAlong(const SimState& sim, int dim) {
    const bool exists = dim >= 1 && dim <= sim.nDim;
    const std::int64_t count = sim.nCells < 1 ? 0 : exists ? sim.cellCount[dim] : 1;
    return {dim, exists, count, exists ? sim.cellStride[dim] : 0};
}

bool hasSlice(const SimState& sim, int dim) { return sim.sliceSel[dim] >= 0 && sim.sliceSel[dim] < sim.cellCount[dim]; }

Plane chosenPlane(const SimState& sim) {
    Plane plane;
    plane.across = axisAlong(sim, sim.axisPair[0]);
    plane.down = axisAlong(sim, sim.axisPair[1]);
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (dim == plane.across.dim || dim == plane.down.dim) continue;
        if (hasSlice(sim, dim)) plane.first += std::int64_t{sim.sliceSel[dim]} * sim.cellStride[dim];
    }
    return plane;
}

/// Puts what is no slice to slice 0: the mark of an axis stays on a dimension that is none where two dimensions were
/// chosen for one axis, and a panel may have been filled for another grid.
void correctSlices(SimState& sim, const Plane& plane) {
    for (int dim = 1; dim <= sim.nDim; ++dim)
        if (dim != plane.across.dim && dim != plane.down.dim && !hasSlice(sim, dim)) sim.sliceSel[dim] = 0;
}

/// One call of plotField.
struct Plot {
    SimState& sim;
    Surface& surface;
    Plane plane;
    int quantity;
    double width;        ///< W, of the surface
    double height;       ///< H, of the surface
    double windowHeight; ///< of the window
    float scale = 0;     ///< pixels for a stretched length unit
    float value = 0;     ///< of the cell in hand; a quantity without values keeps that of the last legend row
};

/// Pixels of a cell along one axis.
struct Span {
    float low;
    float high;
};

/// A cell on the surface.
struct CellBox {
    Span x;
    Span y;
    bool inRange;
};

void sizeSurface(const Form& window, Surface& surface) {
    if (surface.scaleWidth == window.width && surface.scaleHeight == window.height) return;
    surface.scaleWidth = window.width;
    surface.scaleHeight = window.height;
    surface.resized();
}

void correctZoom(SimState& sim, const Axis& axis) {
    // "not above" and not "below or equal": a NaN is no zoom either.
    if (axis.exists && !(sim.zoom[axis.dim] > 0)) sim.zoom[axis.dim] = 1;
}

/// From the origin to the lower edge of the last cell, stretched. So the last row or column may be cut off.
float extentAlong(const SimState& sim, const Axis& axis) {
    if (!axis.exists) return 0;
    return static_cast<float>(double(sim.cellPos(sim.nCells, axis.dim)) * double(sim.zoom[axis.dim]));
}

/// The smaller of both ratios of room and extent; an extent of 0 leaves the decision to the other axis.
float fitScale(const Plot& plot) {
    const double roomX = plot.width - legendStrip - leftMargin;
    const double roomY = plot.height - fitBottom - topMargin;
    const double extentX = extentAlong(plot.sim, plot.plane.across);
    const double extentY = extentAlong(plot.sim, plot.plane.down);
    auto scale = static_cast<float>(roomX / extentX);
    if (scale > roomY / extentY) scale = static_cast<float>(roomY / extentY);
    return scale;
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
    const double y = (0.2 / rowHeights) * plot.windowHeight + topMargin;
    setFont(surface, 10, true);
    const bool hasName = plot.quantity <= quantities.listCount();
    printAt(surface, x, y, hasName ? quantities.entries[static_cast<std::size_t>(plot.quantity) - 1] : "");

    // The size of a cell is shown by dimension, too, but has no label.
    const bool hasLabel = hasDirections(plot.quantity) && plot.quantity != showCellSize;
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

/// The bottom of the scale stands at the top.
void drawLegend(Plot& plot) {
    const SimState& sim = plot.sim;
    Surface& surface = plot.surface;
    const double x0 = plot.width - legendStrip + legendStrip * 0.2;
    const double x1 = plot.width - legendStrip + legendStrip * 0.8;
    setFont(surface, 8, false);
    for (int row = 0; row <= 10; ++row) {
        const double t = static_cast<float>(row / 10.0);
        const double y0 = ((row + 1.5) / rowHeights) * plot.height + topMargin;
        const double y1 = (0.5 / rowHeights) * plot.height + y0;
        surface.foreColor = {colorLevel((t * 3) * 255), colorLevel((t * 3 - 1) * 255), colorLevel((t * 3 - 2) * 255)};
        drawBox(surface, x0, y0, x1, y1);
        plot.value = static_cast<float>((double(sim.scaleMax) - double(sim.scaleMin)) * t + double(sim.scaleMin));
        printAt(surface, x0, (0.1 / rowHeights) * plot.height + y1, generalText(plot.value));
    }
}

/// A cell stands one pixel inside its rounded edges, so that the background shows as seams between cells.
Span spanAlong(const Plot& plot, const Axis& axis, std::int32_t cell, double margin, double room) {
    if (!axis.exists)
        return {static_cast<float>(1 + margin), static_cast<float>(std::min(bandHeight, room) - 1 + margin)};
    const SimState& sim = plot.sim;
    const double zoom = sim.zoom[axis.dim];
    const auto low = static_cast<float>((double(sim.cellPos(cell, axis.dim)) - double(sim.offset[axis.dim])) * zoom);
    const auto high = static_cast<float>(double(sim.cellSize(cell, axis.dim)) * zoom + double(low));
    return {static_cast<float>(std::floor(double(low) * double(plot.scale) + 0.5) + 1 + margin),
            static_cast<float>(std::floor(double(high) * double(plot.scale) + 0.5) - 1 + margin)};
}

CellBox placeCell(const Plot& plot, std::int32_t cell) {
    const double right = plot.width - legendStrip;
    const double bottom = plot.height - placeBottom;
    CellBox box{spanAlong(plot, plot.plane.across, cell, leftMargin, right - leftMargin),
                spanAlong(plot, plot.plane.down, cell, topMargin, plot.height - fitBottom - topMargin), false};
    // A position that is not a number fails its comparison.
    box.inRange = double(box.x.low) >= leftMargin && double(box.x.high) <= right && double(box.y.low) >= topMargin
                  && double(box.y.high) <= bottom;
    return box;
}

void drawColor(const Plot& plot, const CellBox& box) {
    if (!box.inRange) return;
    Surface& surface = plot.surface;
    surface.drawWidth = 1;
    surface.foreColor = scaleColor(plot.value, plot.sim.scaleMin, plot.sim.scaleMax);
    surface.box(box.x.low, box.y.low, box.x.high, box.y.high);
}

float arrowAlong(const Plot& plot, const Axis& axis, std::int32_t cell) {
    if (!axis.exists) return 0;
    const SimState& sim = plot.sim;
    return static_cast<float>(double(plot.scale) * double(sim.velocity(cell, axis.dim)) * double(sim.zoom[axis.dim])
                              / double(sim.scaleMin));
}

/// One line without a head from the centre of the cell; the bottom of the scale is the speed that is drawn as long as a
/// length unit, its top the longest arrow in pixels, and an arrow cut to that is drawn thicker.
void drawArrow(const Plot& plot, const CellBox& box, std::int32_t cell) {
    Surface& surface = plot.surface;
    const double longest = plot.sim.scaleMax;
    float dx = arrowAlong(plot, plot.plane.across, cell);
    float dy = arrowAlong(plot, plot.plane.down, cell);
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
        cx >= leftMargin && ex <= plot.width - legendStrip && cy >= topMargin && ey <= plot.height - placeBottom;
    if (!fits) return;
    surface.foreColor = arrowColor;
    drawLine(surface, cx, cy, ex, ey);
}

bool isClosed(const SimState& sim, std::int32_t cell, const Axis& axis) {
    return axis.exists && sim.wallVelocity(cell, axis.dim) > 0;
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
    if (isClosed(plot.sim, cell, plot.plane.across)) drawMark(right, top);
    if (isClosed(plot.sim, cell, plot.plane.down)) drawMark(left, bottom);
}

/// Corrects the settings that a cell uses; done only where there are cells to draw.
void correctSettings(const Plot& plot) {
    SimState& sim = plot.sim;
    sim.showDims = static_cast<std::int16_t>(correctedComponent(sim, plot.quantity, sim.showDims));
    if (plot.quantity != showVectors) return;
    if (!(sim.scaleMin > 0)) sim.scaleMin = 1;
    if (!(sim.scaleMax > 0)) sim.scaleMax = 1;
}

/// `file`: takes the value as well; may be null.
void drawCell(Plot& plot, PlotFile* file, std::int32_t cell) {
    const SimState& sim = plot.sim;
    const Axis& across = plot.plane.across;
    if (hasValue(plot.quantity)) plot.value = cellValue(sim, plot.quantity, sim.showDims, cell);
    const bool startsLine = !across.exists || cellCoordinate(sim, cell, across.dim) == 0;
    if (file != nullptr) writePlotEntry(*file, startsLine, plot.value);

    const CellBox box = placeCell(plot, cell);
    if (plot.quantity == showVectors)
        drawArrow(plot, box, cell);
    else
        drawColor(plot, box);
    drawWalls(plot, box, cell);
}

/// From the top row down, each from left to right.
void drawCells(Plot& plot, PlotFile* file) {
    const Plane& plane = plot.plane;
    if (plane.across.count > 0 && plane.down.count > 0) correctSettings(plot);
    for (std::int64_t j = 0; j < plane.down.count; ++j)
        for (std::int64_t i = 0; i < plane.across.count; ++i) drawCell(plot, file, plane.cell(i, j));
}

/// `file`: takes the values of the plane as well; may be null.
void drawPlane(SimState& sim, Interface& ui, PlotFile* file) {
    const Form& window = ui.NV_out.form;
    Surface& surface = ui.NV_out.Picture1;
    surface.foreColor = headColor;
    sizeSurface(window, surface);
    Plot plot{
        sim,          surface, chosenPlane(sim), drawnQuantity(sim.showWhat), surface.scaleWidth, surface.scaleHeight,
        window.height};
    correctSlices(sim, plot.plane);
    correctZoom(sim, plot.plane.across);
    correctZoom(sim, plot.plane.down);
    plot.scale = fitScale(plot);

    printHeads(plot, ui.NV_dsp.Combo1);
    if (plot.quantity != showVectors) drawLegend(plot);
    if (file != nullptr) reserveEntries(*file, double(plot.plane.across.count) * double(plot.plane.down.count));
    // A colour map paints over the old picture; arrows can't, and take the heads with them.
    if (plot.quantity == showVectors) surface.cls();
    drawCells(plot, file);
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

void resizePlotWindow(Interface& ui) { ui.NV_out.Picture1.cls(); }

PlaneRange planeRange(const SimState& sim) {
    PlaneRange range;
    const int quantity = drawnQuantity(sim.showWhat);
    if (!modelStands(sim) || !hasValue(quantity)) return range;
    const int component = correctedComponent(sim, quantity, sim.showDims);
    const Plane plane = chosenPlane(sim);
    for (std::int64_t j = 0; j < plane.down.count; ++j)
        for (std::int64_t i = 0; i < plane.across.count; ++i) {
            const float value = cellValue(sim, quantity, component, plane.cell(i, j));
            if (!std::isfinite(value)) continue;
            range.low = range.found ? std::min(range.low, value) : value;
            range.high = range.found ? std::max(range.high, value) : value;
            range.found = true;
        }
    return range;
}

} // namespace norvane
