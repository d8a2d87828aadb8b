#include "drawing/axes.h"

#include "drawing/drawable_text.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

constexpr double tickLength = 5;
constexpr double labelGap = 4;
constexpr double middleOfLetters = 0.36; // of the size: from the base line to the middle of a digit

constexpr double titleHeight = 22;
constexpr double headMargin = 8; // to the right of the head

const Lettering titleLetters{inkColor, titleSize, true, TextAnchor::start, false};
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

void drawTicksBelow(
    const Canvas& canvas, const AxisFrame& frame, const AxisScale& axis, const Ticks& ticks, bool labels) {
    for (std::size_t k = 0; k < ticks.places.size(); ++k) {
        const double x = axis.place(ticks.places[k]);
        strokeLine(canvas, {x, frame.bottom}, {x, frame.bottom + tickLength}, framePen);
        if (labels)
            canvas.write(ticks.labels[k], {x, frame.bottom + tickLength + labelGap + labelSize * 0.8},
                         labelsAt(TextAnchor::middle));
    }
}

void drawTicksLeft(const Canvas& canvas, const AxisFrame& frame, const AxisScale& axis, const Ticks& ticks) {
    for (std::size_t k = 0; k < ticks.places.size(); ++k) {
        const double y = axis.place(ticks.places[k]);
        strokeLine(canvas, {frame.left - tickLength, y}, {frame.left, y}, framePen);
        canvas.write(ticks.labels[k], {frame.left - tickLength - labelGap, y + middleOfLetters * labelSize},
                     labelsAt(TextAnchor::end));
    }
}

void drawTicksRight(const Canvas& canvas, const AxisFrame& frame, const AxisScale& axis, const Ticks& ticks) {
    for (std::size_t k = 0; k < ticks.places.size(); ++k) {
        const double y = axis.place(ticks.places[k]);
        strokeLine(canvas, {frame.right, y}, {frame.right + tickLength, y}, framePen);
        canvas.write(ticks.labels[k], {frame.right + tickLength + labelGap, y + middleOfLetters * labelSize},
                     labelsAt(TextAnchor::start));
    }
}

void drawGridLines(const Canvas& canvas,
                   const AxisFrame& frame,
                   const AxisScale& across,
                   const Ticks& acrossTicks,
                   const AxisScale& upward,
                   const Ticks& upwardTicks) {
    for (const double place : acrossTicks.places)
        strokeLine(canvas, {across.place(place), frame.top}, {across.place(place), frame.bottom}, gridPen);
    for (const double place : upwardTicks.places)
        strokeLine(canvas, {frame.left, upward.place(place)}, {frame.right, upward.place(place)}, gridPen);
}

void drawFrame(const Canvas& canvas, const AxisFrame& frame) {
    const Point corners[] = {{frame.left, frame.top},
                             {frame.right, frame.top},
                             {frame.right, frame.bottom},
                             {frame.left, frame.bottom},
                             {frame.left, frame.top}};
    canvas.stroke(corners, framePen);
}

double Head::height() const {
    constexpr double margin = 12;
    return margin + titleHeight * static_cast<double>(title.size()) + (subtitle.empty() ? 0 : 18);
}

Head headOf(const Canvas& canvas, double left, const std::string& title, const std::string& subtitle) {
    const double room = canvas.width - left - headMargin;
    Head head{left, {}, subtitle};
    if (title.empty()) return head;
    const std::string whole = drawableText(title);
    // The first line takes the words that fit.
    std::size_t end = whole.size();
    while (end > 0 && canvas.textWidth(whole.substr(0, end), titleLetters) > room) {
        const std::size_t longest = std::min(end, static_cast<std::size_t>(room)); // no letter is below one unit wide
        end = whole.rfind(' ', longest < end ? longest : end - 1);
        if (end == std::string::npos) end = 0;
    }
    if (end == 0 || end == whole.size())
        head.title = {whole};
    else
        head.title = {whole.substr(0, end), whole.substr(end + 1)};
    return head;
}

void drawHead(const Canvas& canvas, const Head& head) {
    const double room = canvas.width - head.left - headMargin;
    const Lettering below{faintInkColor, labelSize, false, TextAnchor::start, false};
    double line = head.title.empty() ? 8 : 3;
    for (const std::string& part : head.title) {
        line += titleHeight;
        canvas.write(fitted(canvas, part, titleLetters, room), {head.left, line}, titleLetters);
    }
    if (!head.subtitle.empty()) canvas.write(fitted(canvas, head.subtitle, below, room), {head.left, line + 18}, below);
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
