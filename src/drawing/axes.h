#pragma once
// Axes of figures: from values to places on a canvas, ticks with labels, frames, and the colours and letters that all
// figures share.

#include "display/ticks.h"
#include "platform/canvas.h"

#include <string>
#include <vector>

namespace norvane {

constexpr Color inkColor{34, 34, 34};
constexpr Color faintInkColor{95, 95, 95};
constexpr Color gridColor{226, 226, 226};
constexpr Color paperColor{255, 255, 255};
constexpr Color wallFill{176, 176, 176};

constexpr double labelSize = 12;
constexpr double nameSize = 13;
constexpr double titleSize = 16;

/// A value at `range.low` lies at `from`, one at `range.high` at `to`.
struct AxisScale {
    Range range;
    double from = 0;
    double to = 1;
    bool isLog = false;

    double place(double value) const;
    Ticks ticks(int most) const;
};

/// The frame of a map or of a panel.
struct AxisFrame {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

/// The longest of some labels.
double widestLabel(const Canvas& canvas, const Ticks& ticks);

/// "Temperature [deg C]", with the power of ten that the labels of the ticks count in.
std::string axisName(const std::string& name, const std::string& unit, const Ticks& ticks);

/// A straight line.
void strokeLine(const Canvas& canvas, Point from, Point to, const Pen& pen);

/// A tick with its label at each place, below the frame; `drawLabels` as it is: ticks alone.
void drawTicksBelow(
    const Canvas& canvas, const AxisFrame& frame, const AxisScale& axis, const Ticks& ticks, bool labels);
void drawTicksLeft(const Canvas& canvas, const AxisFrame& frame, const AxisScale& axis, const Ticks& ticks);
void drawTicksRight(const Canvas& canvas, const AxisFrame& frame, const AxisScale& axis, const Ticks& ticks);

/// Faint lines through the ticks.
void drawGridLines(const Canvas& canvas,
                   const AxisFrame& frame,
                   const AxisScale& across,
                   const Ticks& acrossTicks,
                   const AxisScale& upward,
                   const Ticks& upwardTicks);

void drawFrame(const Canvas& canvas, const AxisFrame& frame);

/// Title and subtitle, from `left` on; a long title takes two lines.
struct Head {
    double left = 0;
    std::vector<std::string> title; ///< none, one or two lines
    std::string subtitle;

    double height() const;
};

Head headOf(const Canvas& canvas, double left, const std::string& title, const std::string& subtitle);
void drawHead(const Canvas& canvas, const Head& head);

/// A text cut to a length, with three points in place of what is missing.
std::string fitted(const Canvas& canvas, const std::string& text, const Lettering& lettering, double room);

} // namespace norvane
