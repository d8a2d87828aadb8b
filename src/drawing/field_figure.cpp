#include "drawing/field_figure.h"

#include "core/number_text.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

constexpr double headingHeight = 24; // of a panel
constexpr double footHeight = 48;    // labels and name of the axis across
constexpr double keyHeight = 24;     // the line that says what the marks mean
constexpr double barGap = 16;
constexpr double barWidth = 16;
constexpr double leastMap = 4; // of a plane that is so long that true proportions can't be seen
constexpr double highestMap = 560;
constexpr double endMargin = 10;

/// Sizes that all panels of a figure share.
struct PanelSizes {
    int columns = 1;
    int rows = 1;
    double left = 60;  ///< from the edge of the panel to the map
    double right = 90; ///< from the map to the edge of the panel
    double width = 0;  ///< of the map
    double height = 0; ///< of the map
    double leastBar = 90;

    double barHeight() const { return std::max(height, leastBar); }

    double panelWidth() const { return left + width + right; }

    double panelHeight() const { return headingHeight + barHeight() + footHeight; }
};

double proportion(const FieldFigure& figure) {
    const Plane& plane = figure.plane;
    return (plane.across.high - plane.across.low) / (plane.down.high - plane.down.low) * figure.stretchAcross;
}

/// Wide maps lie one above the other, high ones side by side.
int columnsOf(const FieldFigure& figure) {
    const auto count = static_cast<int>(figure.panels.size());
    const double shape = figure.fillsCanvas ? 1.5 : proportion(figure);
    const int fitting = shape > 1.6 ? 1 : shape > 0.6 ? 2 : 3;
    return std::clamp(count, 1, fitting);
}

bool anyOf(const std::vector<bool>& flags) { return std::find(flags.begin(), flags.end(), true) != flags.end(); }

bool hasArrows(const FieldFigure& figure) {
    return std::any_of(figure.panels.begin(), figure.panels.end(),
                       [](const FieldPanel& each) { return each.hasArrows; });
}

/// Whether a wall is grey in some panel.
bool hasGreyWalls(const FieldFigure& figure) {
    for (const FieldPanel& panel : figure.panels)
        for (std::size_t k = 0; k < panel.values.size(); ++k)
            if (figure.plane.walls[k] && !std::isfinite(panel.values[k])) return true;
    return false;
}

bool hasNoLogarithm(const FieldFigure& figure) {
    return std::any_of(figure.panels.begin(), figure.panels.end(),
                       [](const FieldPanel& each) { return each.hasNoLogarithm; });
}

double keyHeightOf(const FieldFigure& figure) {
    const bool hasKey = hasGreyWalls(figure) || anyOf(figure.plane.held) || hasArrows(figure) || hasNoLogarithm(figure);
    return hasKey ? keyHeight : 6;
}

AxisScale barScale(const FieldPanel& panel, double bottom, double top) {
    return {panel.scale.range, bottom, top, panel.scale.isLog};
}

Ticks barTicks(const FieldPanel& panel, double height) {
    return barScale(panel, 0, height).ticks(std::max(3, static_cast<int>(height / 32)));
}

Ticks downTicks(const FieldFigure& figure, double height) {
    return linearTicks(figure.plane.down, std::max(2, static_cast<int>(height / 40)));
}

/// Fits the map into a box, and then the margins to the labels that it has at that size.
void fitMap(const FieldFigure& figure, const Canvas& canvas, double widest, double highest, PanelSizes& sizes) {
    for (int turn = 0; turn < 2; ++turn) {
        const double room = widest - sizes.left - sizes.right;
        const double shape = figure.fillsCanvas ? room / highest : proportion(figure);
        sizes.width = std::clamp(highest * shape, std::min(leastMap, room), room);
        sizes.height = std::clamp(sizes.width / shape, std::min(leastMap, highest), highest);
        if (turn == 1) break;
        double widestTick = 0;
        for (const FieldPanel& panel : figure.panels)
            widestTick = std::max(widestTick, widestLabel(canvas, barTicks(panel, sizes.barHeight())));
        sizes.left = 12 + nameSize + 10 + widestLabel(canvas, downTicks(figure, sizes.height)) + 9;
        sizes.right = barGap + barWidth + 9 + widestTick + endMargin;
    }
}

PanelSizes gridOf(const FieldFigure& figure, int columns) {
    PanelSizes sizes;
    sizes.columns = columns;
    sizes.rows = (static_cast<int>(figure.panels.size()) + sizes.columns - 1) / sizes.columns;
    return sizes;
}

Head headFor(const FieldFigure& figure, const PanelSizes& sizes, const Canvas& canvas) {
    return headOf(canvas, std::min(sizes.left, canvas.width / 4), figure.title, figure.subtitle);
}

/// Panels in so many columns, with maps as large as the canvas has room for; of none the width is 0.
PanelSizes sizesIn(const FieldFigure& figure, const Canvas& canvas, int columns) {
    PanelSizes sizes = gridOf(figure, columns);
    Head head = headOf(canvas, 0, figure.title.empty() ? "" : "T", figure.subtitle);
    constexpr double least = 10; // below it nothing could be seen
    // The length of a title depends on the labels beside the map, and so on its size.
    for (int turn = 0; turn < 2; ++turn) {
        const double room =
            (canvas.height - head.height() - keyHeightOf(figure)) / sizes.rows - headingHeight - footHeight;
        PanelSizes fitting = gridOf(figure, columns);
        fitting.leastBar = std::min(fitting.leastBar, room);
        if (room >= least && canvas.width / columns > fitting.left + fitting.right + least)
            fitMap(figure, canvas, canvas.width / columns, room, fitting);
        sizes = fitting;
        const Head next = headFor(figure, sizes, canvas);
        if (next.height() == head.height()) break;
        head = next;
    }
    return sizes;
}

/// The arrangement with the largest maps; the usual one unless another is clearly better.
PanelSizes bestSizes(const FieldFigure& figure, const Canvas& canvas) {
    constexpr double clearly = 1.1;
    PanelSizes best = sizesIn(figure, canvas, columnsOf(figure));
    double margin = clearly;
    for (int columns = 1; columns <= static_cast<int>(figure.panels.size()); ++columns) {
        const PanelSizes sizes = sizesIn(figure, canvas, columns);
        if (!(sizes.width * sizes.height > margin * best.width * best.height)) continue;
        best = sizes;
        margin = 1;
    }
    return best;
}

/// The coloured bar from the bottom of the scale up, with its ticks; triangles where values lie beyond.
void drawBar(const FieldPanel& panel, const AxisFrame& bar, const Canvas& canvas) {
    constexpr int steps = 128;
    const double height = bar.bottom - bar.top;
    for (int k = 0; k < steps; ++k)
        canvas.box({bar.left, bar.bottom - height * (k + 1) / steps}, {bar.right, bar.bottom - height * k / steps},
                   panel.scale.colors->at((k + 0.5) / steps));
    const double middle = (bar.left + bar.right) / 2;
    constexpr double point = 9;
    const Point above[] = {{bar.left, bar.top}, {middle, bar.top - point}, {bar.right, bar.top}};
    const Point below[] = {{bar.left, bar.bottom}, {middle, bar.bottom + point}, {bar.right, bar.bottom}};
    if (panel.reachesAbove) canvas.fill(above, panel.scale.colors->at(1));
    if (panel.reachesBelow) canvas.fill(below, panel.scale.colors->at(0));
    const Pen outline{inkColor, 1, {}};
    if (panel.reachesAbove) canvas.stroke(above, outline);
    if (panel.reachesBelow) canvas.stroke(below, outline);
    drawFrame(canvas, bar);
    const AxisScale scale = barScale(panel, bar.bottom, bar.top);
    for (const double level : panel.contours)
        strokeLine(canvas, {bar.left, scale.place(level)}, {bar.right, scale.place(level)}, {inkColor, 0.9, {}});
    drawTicksRight(canvas, bar, scale, barTicks(panel, height));
}

void drawAxes(const FieldFigure& figure, const MapPlace& place, const Canvas& canvas) {
    const AxisFrame& frame = place.frame;
    const Ticks across =
        linearTicks(figure.plane.across, std::max(2, static_cast<int>((frame.right - frame.left) / 70)));
    const Ticks down = downTicks(figure, frame.bottom - frame.top);
    drawFrame(canvas, frame);
    drawTicksBelow(canvas, frame, place.across, across, true);
    drawTicksLeft(canvas, frame, place.down, down);
    const Lettering level{inkColor, nameSize, false, TextAnchor::middle, false};
    const Lettering upright{inkColor, nameSize, false, TextAnchor::middle, true};
    canvas.write(axisName(axisLetter(figure.plane.acrossDim), "m", across),
                 {(frame.left + frame.right) / 2, frame.bottom + 38}, level);
    const double labels = widestLabel(canvas, down) + 9;
    canvas.write(axisName(axisLetter(figure.plane.downDim), "m", down),
                 {frame.left - labels - 10, (frame.top + frame.bottom) / 2}, upright);
}

void drawMap(const SimState& sim,
             const FieldFigure& figure,
             const FieldPanel& panel,
             const MapPlace& place,
             const Canvas& canvas) {
    const Plane& plane = figure.plane;
    fillCells(sim, plane, panel.values, panel.scale, place, canvas);
    canvas.clip({place.frame.left, place.frame.top}, {place.frame.right, place.frame.bottom});
    hatchHeld(sim, plane, place, canvas);
    drawWalls(sim, plane, place, canvas);
    drawContours(sim, plane, panel.contoured, panel.contours, panel.hasStreamlines, place, canvas);
    if (panel.hasStreamlines) drawStreamlines(sim, plane, place, canvas);
    if (panel.hasArrows) drawArrows(sim, plane, place, canvas);
    canvas.unclip();
}

/// To whole pixels of an image, so that the edges of the map are sharp.
double snapped(double length, const Canvas& canvas) { return std::round(length * canvas.scale) / canvas.scale; }

/// Where the map lies in a panel with this corner.
MapPlace mapIn(const FieldFigure& figure, const PanelSizes& sizes, Point corner, const Canvas& canvas) {
    const double top = corner.y + headingHeight + (sizes.barHeight() - sizes.height) / 2;
    return placeMap(figure.plane,
                    {snapped(corner.x + sizes.left, canvas), snapped(top, canvas),
                     snapped(corner.x + sizes.left + sizes.width, canvas), snapped(top + sizes.height, canvas)});
}

void drawPanel(const SimState& sim,
               const FieldFigure& figure,
               const FieldPanel& panel,
               const PanelSizes& sizes,
               Point corner,
               const Canvas& canvas) {
    const MapPlace place = mapIn(figure, sizes, corner, canvas);
    const AxisFrame& frame = place.frame;
    drawMap(sim, figure, panel, place, canvas);
    drawAxes(figure, place, canvas);
    const double tip = panel.reachesAbove ? 9 : 0;
    const double foot = panel.reachesBelow ? 9 : 0;
    const double barTop = corner.y + headingHeight;
    const AxisFrame bar{snapped(frame.right + barGap, canvas), snapped(barTop + tip, canvas),
                        snapped(frame.right + barGap + barWidth, canvas),
                        snapped(barTop + sizes.barHeight() - foot, canvas)};
    drawBar(panel, bar, canvas);
    const Lettering heading{inkColor, nameSize, false, TextAnchor::start, false};
    const double room = bar.right - frame.left;
    canvas.write(
        fitted(canvas, axisName(panel.label, panel.unit, barTicks(panel, bar.bottom - bar.top)), heading, room),
        {frame.left, barTop - 8}, heading);
}

/// What the grey, the hatching, the white and the length of an arrow mean.
void drawKey(const SimState& sim, const FieldFigure& figure, const MapPlace& place, Point at, const Canvas& canvas) {
    const Lettering letters{inkColor, labelSize, false, TextAnchor::start, false};
    const auto sample = [&] { return AxisFrame{at.x, at.y - 10, at.x + 20, at.y}; };
    const auto name = [&](const std::string& text) {
        canvas.write(text, {at.x + 26, at.y}, letters);
        at.x += 26 + canvas.textWidth(text, letters) + 22;
    };
    if (hasGreyWalls(figure)) {
        canvas.box({sample().left, sample().top}, {sample().right, sample().bottom}, wallFill);
        drawFrame(canvas, sample());
        name("wall");
    }
    if (anyOf(figure.plane.held)) {
        std::vector<Point> lines;
        addHatching(lines, {sample().left, sample().top}, {sample().right, sample().bottom});
        strokeHatching(lines, canvas);
        drawFrame(canvas, sample());
        name("held");
    }
    if (hasNoLogarithm(figure)) {
        canvas.box({sample().left, sample().top}, {sample().right, sample().bottom}, paperColor);
        drawFrame(canvas, sample());
        name("0 or below");
    }
    const ArrowScale arrows = hasArrows(figure) ? scaleArrows(sim, figure.plane, place) : ArrowScale{};
    if (!(arrows.reference > 0)) return;
    const double length = arrows.reference * arrows.unitsPerSpeed;
    drawArrow({at.x, at.y - 4}, {at.x + length, at.y - 4}, canvas);
    at.x += length - 20;
    name(generalText(static_cast<float>(arrows.reference)) + " m/s");
}

} // namespace

void fitCanvas(const FieldFigure& figure, Canvas& canvas) {
    constexpr double narrowest = 380; // for the title
    PanelSizes sizes = gridOf(figure, columnsOf(figure));
    const double highest = figure.fillsCanvas ? 400 : sizes.rows == 1 ? highestMap : 0.75 * highestMap;
    fitMap(figure, canvas, canvas.width / sizes.columns, highest, sizes);
    canvas.width = std::ceil(std::max(narrowest, sizes.columns * sizes.panelWidth()));
    const Head head = headFor(figure, sizes, canvas);
    canvas.height = std::ceil(head.height() + sizes.rows * sizes.panelHeight() + keyHeightOf(figure));
}

void drawFigure(const SimState& sim, const FieldFigure& figure, const Canvas& canvas) {
    const PanelSizes sizes = bestSizes(figure, canvas);
    const Head heading = headFor(figure, sizes, canvas);
    const double head = heading.height();
    drawHead(canvas, heading);
    if (!(sizes.width > 0 && sizes.height > 0)) return;
    for (std::size_t k = 0; k < figure.panels.size(); ++k) {
        const int column = static_cast<int>(k) % sizes.columns;
        const int row = static_cast<int>(k) / sizes.columns;
        drawPanel(sim, figure, figure.panels[k], sizes, {column * sizes.panelWidth(), head + row * sizes.panelHeight()},
                  canvas);
    }
    drawKey(sim, figure, mapIn(figure, sizes, {0, head}, canvas),
            {sizes.left, head + sizes.rows * sizes.panelHeight() + 12}, canvas);
}

} // namespace norvane
