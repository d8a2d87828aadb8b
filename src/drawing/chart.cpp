#include "drawing/chart.h"

#include "drawing/axes.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace norvane {

namespace {

// The set of Okabe and Ito (2008) without its yellow, which is too faint for a line on white.
constexpr Color lineColors[] = {{0, 114, 178}, {213, 94, 0},   {0, 158, 115}, {204, 121, 167},
                                {230, 159, 0}, {86, 180, 233}, {0, 0, 0}};
constexpr Color shade{235, 235, 235};
constexpr std::size_t bins = 1600; // across a line: finer than a printer shows

constexpr double legendRow = 18;
constexpr double panelGap = 16;
constexpr double usualPanel = 230;
constexpr double footHeight = 48;
constexpr double rightMargin = 24;
constexpr double sampleLength = 24; // of a line in the legend
constexpr double legendGap = 18;

const Lettering legendLetters{inkColor, labelSize, false, TextAnchor::start, false};

struct LegendPlace {
    double x = 0; ///< from the left end of the panel
    int row = 0;
};

bool hasLegend(const ChartPanel& panel) { return panel.lines.size() > 1; }

/// Entries side by side, in as many rows as they need.
std::vector<LegendPlace> legendPlaces(const ChartPanel& panel, const Canvas& canvas, double room) {
    std::vector<LegendPlace> places;
    if (!hasLegend(panel)) return places;
    LegendPlace next;
    for (const ChartLine& line : panel.lines) {
        const double length = sampleLength + 6 + canvas.textWidth(line.name, legendLetters);
        if (next.x > 0 && next.x + length > room) next = {0, next.row + 1};
        places.push_back(next);
        next.x += length + legendGap;
    }
    return places;
}

double legendHeight(const std::vector<LegendPlace>& places) {
    return places.empty() ? 0 : legendRow * (places.back().row + 1);
}

Pen penOf(std::size_t line) {
    constexpr std::size_t colors = std::size(lineColors);
    static const std::vector<double> dashes[] = {{}, {7, 3}, {2, 3}, {8, 3, 2, 3}};
    static_assert(colors * std::size(dashes) == lineStyles);
    return {lineColors[line % colors], 2, dashes[line / colors % std::size(dashes)]};
}

Ticks upwardTicks(const ChartPanel& panel, double height) {
    const AxisScale axis{extentUpward(panel), 1, 0, panel.isLog};
    return axis.ticks(std::max(2, static_cast<int>(height / 36)));
}

/// Room for the labels and the name of the upright axes, the same for all panels.
double leftMargin(const LineChart& chart, const Canvas& canvas, double panelHeight) {
    double widest = 0;
    for (const ChartPanel& panel : chart.panels)
        widest = std::max(widest, widestLabel(canvas, upwardTicks(panel, panelHeight)));
    return 12 + nameSize + 10 + widest + 9;
}

void drawMark(const Canvas& canvas, Point at, Color color) {
    constexpr int corners = 12;
    constexpr double radius = 2.6;
    Point circle[corners];
    for (int k = 0; k < corners; ++k) {
        const double angle = 2 * 3.141592653589793 * k / corners;
        circle[k] = {at.x + radius * std::cos(angle), at.y + radius * std::sin(angle)};
    }
    canvas.fill(circle, color);
}

void drawLine(const Canvas& canvas, const AxisScale& across, const AxisScale& upward, ChartLine line, const Pen& pen) {
    line = thinned(std::move(line), bins);
    std::vector<Point> points;
    for (std::size_t k = 0; k < line.x.size(); ++k)
        points.push_back({across.place(line.x[k]), upward.place(line.y[k])});
    canvas.stroke(points, pen);
    const auto isPlace = [&](std::size_t k) {
        return k < points.size() && std::isfinite(points[k].x) && std::isfinite(points[k].y);
    };
    for (std::size_t k = 0; k < points.size(); ++k) {
        const bool isAlone = (k == 0 || !isPlace(k - 1)) && !isPlace(k + 1); // no line would show it
        if (isPlace(k) && (line.marked || isAlone)) drawMark(canvas, points[k], pen.color);
    }
}

void drawLegend(const ChartPanel& panel,
                const Canvas& canvas,
                const AxisFrame& frame,
                const std::vector<LegendPlace>& places) {
    const double top = frame.top - legendHeight(places);
    for (std::size_t k = 0; k < places.size(); ++k) {
        const double x = frame.left + places[k].x;
        const double y = top + legendRow * (places[k].row + 0.5);
        strokeLine(canvas, {x, y - 1}, {x + sampleLength, y - 1}, penOf(k));
        canvas.write(fitted(canvas, panel.lines[k].name, legendLetters, frame.right - x - sampleLength),
                     {x + sampleLength + 6, y + 3}, legendLetters);
    }
}

void drawShades(const LineChart& chart, const Canvas& canvas, const AxisFrame& frame, const AxisScale& across) {
    for (const Range& shaded : chart.shaded)
        canvas.box({across.place(shaded.low), frame.top}, {across.place(shaded.high), frame.bottom}, shade);
}

void drawPanel(
    const LineChart& chart, const ChartPanel& panel, const Canvas& canvas, const AxisFrame& frame, bool isLast) {
    const AxisScale across{drawable(chart.extent), frame.left, frame.right, false};
    const AxisScale upward{extentUpward(panel), frame.bottom, frame.top, panel.isLog};
    const Ticks below = across.ticks(std::max(2, static_cast<int>((frame.right - frame.left) / 80)));
    const Ticks left = upwardTicks(panel, frame.bottom - frame.top);
    drawShades(chart, canvas, frame, across);
    drawGridLines(canvas, frame, across, below, upward, left);
    canvas.clip({frame.left, frame.top}, {frame.right, frame.bottom});
    for (std::size_t k = 0; k < panel.lines.size(); ++k) drawLine(canvas, across, upward, panel.lines[k], penOf(k));
    canvas.unclip();
    drawFrame(canvas, frame);
    drawTicksBelow(canvas, frame, across, below, isLast);
    drawTicksLeft(canvas, frame, upward, left);
    const Lettering upright{inkColor, nameSize, false, TextAnchor::middle, true};
    canvas.write(fitted(canvas, axisName(panel.name, panel.unit, left), upright, frame.bottom - frame.top + panelGap),
                 {10 + nameSize, (frame.top + frame.bottom) / 2}, upright);
    const Lettering level{inkColor, nameSize, false, TextAnchor::middle, false};
    if (isLast)
        canvas.write(axisName(chart.across, chart.acrossUnit, below),
                     {(frame.left + frame.right) / 2, frame.bottom + 40}, level);
}

} // namespace

double chartHeight(const LineChart& chart, const Canvas& canvas) {
    const double room = canvas.width - leftMargin(chart, canvas, usualPanel) - rightMargin;
    double height =
        headOf(canvas, canvas.width - room - rightMargin, chart.title, chart.subtitle).height() + footHeight;
    for (const ChartPanel& panel : chart.panels)
        height += usualPanel + panelGap + legendHeight(legendPlaces(panel, canvas, room));
    return height - (chart.panels.empty() ? 0 : panelGap);
}

void drawChart(const LineChart& chart, const Canvas& canvas) {
    const auto count = static_cast<double>(chart.panels.size());
    const double usualHead = headOf(canvas, 0, chart.title.empty() ? "" : "T", chart.subtitle).height();
    double room = canvas.height - footHeight - panelGap * (count - 1);
    const double left = leftMargin(chart, canvas, (room - usualHead) / std::max(count, 1.0));
    const double right = canvas.width - rightMargin;
    const Head head = headOf(canvas, left, chart.title, chart.subtitle);
    room -= head.height();
    drawHead(canvas, head);
    std::vector<std::vector<LegendPlace>> legends;
    for (const ChartPanel& panel : chart.panels) {
        legends.push_back(legendPlaces(panel, canvas, right - left));
        room -= legendHeight(legends.back());
    }
    const double height = room / std::max(count, 1.0);
    constexpr double least = 20; // below it nothing could be read
    double top = head.height();
    for (std::size_t k = 0; k < chart.panels.size() && height >= least && right - left >= least; ++k) {
        top += legendHeight(legends[k]);
        const AxisFrame frame{left, top, right, top + height};
        drawLegend(chart.panels[k], canvas, frame, legends[k]);
        drawPanel(chart, chart.panels[k], canvas, frame, k + 1 == chart.panels.size());
        top = frame.bottom + panelGap;
    }
}

} // namespace norvane
