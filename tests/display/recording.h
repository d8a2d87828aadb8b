#pragma once
// The drawing operations of a surface as lines of text.

#include "core/number_text.h"
#include "platform/surface.h"

#include <string>
#include <vector>

namespace norvane {

using Drawing = std::vector<std::string>;

/// Lets a surface write what is drawn on it into `drawing`. Both must stay where they are.
inline void recordOn(Surface& surface, Drawing& drawing) {
    const auto corners = [](float x1, float y1, float x2, float y2) {
        return generalText(x1) + " " + generalText(y1) + " " + generalText(x2) + " " + generalText(y2);
    };
    const auto color = [&surface] {
        const Color c = surface.foreColor;
        return " " + std::to_string(c.red) + "," + std::to_string(c.green) + "," + std::to_string(c.blue);
    };
    surface.cls = [&drawing] { drawing.emplace_back("cls"); };
    surface.print = [&surface, &drawing, color](const std::string& text) {
        drawing.push_back("text " + generalText(surface.currentX) + " " + generalText(surface.currentY) + " "
                          + generalText(surface.fontSize) + (surface.fontBold ? " bold" : " plain") + color() + " "
                          + text);
    };
    surface.line = [&surface, &drawing, corners, color](float x1, float y1, float x2, float y2) {
        drawing.push_back("line " + corners(x1, y1, x2, y2) + " " + std::to_string(surface.drawWidth) + color());
    };
    surface.box = [&drawing, corners, color](float x1, float y1, float x2, float y2) {
        drawing.push_back("box " + corners(x1, y1, x2, y2) + color());
    };
    surface.setAutoRedraw = [&drawing](bool on) { drawing.emplace_back(on ? "keep" : "keep no more"); };
    surface.savePicture = [&drawing](const std::string& path) {
        drawing.push_back("save " + path);
        return std::string();
    };
}

/// What stands in a drawing from place `first` on.
inline Drawing linesFrom(const Drawing& drawing, std::size_t first) {
    return first < drawing.size() ? Drawing(drawing.begin() + static_cast<std::ptrdiff_t>(first), drawing.end())
                                  : Drawing();
}

/// Title, quantity name, and legend rows of two operations each come before the cells of a colour map.
constexpr std::size_t headLines = 2 + 22;

} // namespace norvane
