#pragma once
// The drawing surface of figures for reports, as a record of the operations that a figure needs. Beside the surface of
// a plot, whose lines and boxes are whole pixels, a canvas takes any coordinates and smooths what it draws.

#include "platform/surface.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace norvane {

struct Point {
    double x = 0;
    double y = 0;
};

struct Pen {
    Color color;
    double width = 1;
    std::vector<double> dashes; ///< lengths of strokes and gaps in turn; empty: a full line
};

/// Which part of a text stands at its point.
enum class TextAnchor : std::uint8_t { start, middle, end };

struct Lettering {
    Color color;
    double size = 12; ///< height of the font
    bool bold = false;
    TextAnchor anchor = TextAnchor::start;
    bool upward = false; ///< turned a quarter to the left, so that it reads from bottom to top
};

/// Colours row by row from the top; pixel (column, row) is number row * width + column.
struct PixelRaster {
    int width = 0;
    int height = 0;
    std::vector<Color> pixels;
};

/// Coordinates are units from the top left corner, y downward; a unit is `scale` pixels of a picture, or 1/96 inch of a
/// page. The figure calls the operations; a front end fills them in. One that is not filled in draws nothing.
struct Canvas {
    double width = 800;
    double height = 600;
    double scale = 1;
    bool isPage = false; ///< shapes stay shapes, at any magnification; false: they become pixels

    /// Fills a polygon.
    std::function<void(std::span<const Point> corners, Color color)> fill = [](std::span<const Point>, Color) {};
    /// Fills a box from corner to corner without smoothing its edges, so that boxes side by side leave no seam.
    std::function<void(Point low, Point high, Color color)> box = [](Point, Point, Color) {};
    /// Draws a line through points.
    std::function<void(std::span<const Point> points, const Pen& pen)> stroke = [](std::span<const Point>, const Pen&) {
    };
    /// Writes one line of UTF-8 text, whose base line passes through the point.
    std::function<void(const std::string& text, Point at, const Lettering& lettering)> write =
        [](const std::string&, Point, const Lettering&) {};
    /// How long a text is.
    std::function<double(const std::string& text, const Lettering& lettering)> textWidth =
        [](const std::string& text, const Lettering& lettering) {
            return 0.6 * lettering.size * static_cast<double>(text.size());
        };
    /// Lays a raster over a box; its pixels stay sharp.
    std::function<void(Point low, Point high, const PixelRaster& raster)> paint = [](Point, Point, const PixelRaster&) {
    };
    /// Keeps what follows inside a box, until `unclip`. Not nested.
    std::function<void(Point low, Point high)> clip = [](Point, Point) {};
    std::function<void()> unclip = [] {};
};

} // namespace norvane
