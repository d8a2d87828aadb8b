#include "drawing/axes.h"

#include "drawing/drawable_text.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

constexpr double tickLength = 5;
constexpr double labelGap = 4;
constexpr double middleOfLetters = 0.36; // of the size: from the base line to the middle of a digit

const Pen framePen{inkColor, 1, {}};
const Pen gridPen{gridColor, 1, {}};

Lettering labelsAt(TextAnchor anchor) { return {inkColor, labelSize, false, anchor, false}; }

} // namespace

double AxisScale::place(double value) const {
    const double share = isLog ? std::log(value / range.low) / std::log(range.high / range.low)
                               : (value - range.low) / (range.high - range.low);
    return from + share * (to - from);
}

Ticks AxisScale::ticks(int most) const { return isLog ? logTicks(range, most) : linearTicks(range, most); }

double widestLabel(const Canvas& canvas, const Ticks& ticks) {
    double widest = 0;
    for (const std::string& label : ticks.labels)
        widest = std::max(widest, canvas.textWidth(label, labelsAt(TextAnchor::start)));
    return widest;
}

std::string axisName(const std::string& name, const std::string& unit, const Ticks& ticks) {
    const std::string bracket = unitText(unit, ticks.exponent);
    return name.empty() || bracket.empty() ? name + bracket : name + " " + bracket;
}

void strokeLine(const Canvas& canvas, Point from, Point to, const Pen& pen) {
    const Point points[] = {from, to};
    canvas.stroke(points, pen);
}

void drawTicksBelow(const Canvas& canvas, const Frame& frame, const AxisScale& axis, const Ticks& ticks, bool labels) {
    for (std::size_t k = 0; k < ticks.places.size(); ++k) {
        const double x = axis.place(ticks.places[k]);
        strokeLine(canvas, {x, frame.bottom}, {x, frame.bottom + tickLength}, framePen);
        if (labels)
            canvas.write(ticks.labels[k], {x, frame.bottom + tickLength + labelGap + labelSize * 0.8},
                         labelsAt(TextAnchor::middle));
    }
}

void drawTicksLeft(const Canvas& canvas, const Frame& frame, const AxisScale& axis, const Ticks& ticks) {
    for (std::size_t k = 0; k < ticks.places.size(); ++k) {
        const double y = axis.place(ticks.places[k]);
        strokeLine(canvas, {frame.left - tickLength, y}, {frame.left, y}, framePen);
        canvas.write(ticks.labels[k], {frame.left - tickLength - labelGap, y + middleOfLetters * labelSize},
                     labelsAt(TextAnchor::end));
    }
}

void drawTicksRight(const Canvas& canvas, const Frame& frame, const AxisScale& axis, const Ticks& ticks) {
    for (std::size_t k = 0; k < ticks.places.size(); ++k) {
        const double y = axis.place(ticks.places[k]);
        strokeLine(canvas, {frame.right, y}, {frame.right + tickLength, y}, framePen);
        canvas.write(ticks.labels[k], {frame.right + tickLength + labelGap, y + middleOfLetters * labelSize},
                     labelsAt(TextAnchor::start));
    }
}

void drawGridLines(const Canvas& canvas,
                   const Frame& frame,
                   const AxisScale& across,
                   const Ticks& acrossTicks,
                   const AxisScale& upward,
                   const Ticks& upwardTicks) {
    for (const double place : acrossTicks.places)
        strokeLine(canvas, {across.place(place), frame.top}, {across.place(place), frame.bottom}, gridPen);
    for (const double place : upwardTicks.places)
        strokeLine(canvas, {frame.left, upward.place(place)}, {frame.right, upward.place(place)}, gridPen);
}

void drawFrame(const Canvas& canvas, const Frame& frame) {
    const Point corners[] = {{frame.left, frame.top},
                             {frame.right, frame.top},
                             {frame.right, frame.bottom},
                             {frame.left, frame.bottom},
                             {frame.left, frame.top}};
    canvas.stroke(corners, framePen);
}

double headHeight(const std::string& title, const std::string& subtitle) {
    constexpr double margin = 12;
    return margin + (title.empty() ? 0 : 22) + (subtitle.empty() ? 0 : 18);
}

void drawHead(const Canvas& canvas, double left, const std::string& title, const std::string& subtitle) {
    const double room = canvas.width - left - 8;
    const Lettering heading{inkColor, titleSize, true, TextAnchor::start, false};
    const Lettering below{faintInkColor, labelSize, false, TextAnchor::start, false};
    const double first = title.empty() ? 8 : 25;
    if (!title.empty()) canvas.write(fitted(canvas, title, heading, room), {left, first}, heading);
    if (!subtitle.empty()) canvas.write(fitted(canvas, subtitle, below, room), {left, first + 18}, below);
}

std::string fitted(const Canvas& canvas, const std::string& text, const Lettering& lettering, double room) {
    std::string shorter = drawableText(text);
    if (canvas.textWidth(shorter, lettering) <= room) return shorter;
    const std::string points = "\u2026";
    // By halves: the length of a title is not limited.
    std::size_t fits = 0;
    for (std::size_t step = shorter.size(); step > 0; step /= 2)
        while (fits + step <= shorter.size()
               && canvas.textWidth(drawableText(shorter.substr(0, fits + step)) + points, lettering) <= room)
            fits += step;
    while (fits > 0 && fits < shorter.size() && (static_cast<unsigned char>(shorter[fits]) & 0xc0u) == 0x80u) --fits;
    return shorter.substr(0, fits) + points;
}

} // namespace norvane
