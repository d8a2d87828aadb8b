#include "drawing/field_map.h"

#include "core/wall_codes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvane {

namespace {

constexpr std::size_t mostBoxes = 10000; // of a page; beyond, a reader becomes slow
constexpr double pixelsOfPages = 3;      // for a unit, of maps with more cells
constexpr double hatchDistance = 7;
constexpr Color wallLine{70, 70, 70};

Color colorOf(const Plane& plane, const std::vector<float>& values, const ColorScale& scale, std::size_t k) {
    if (std::isfinite(values[k])) return scale.of(values[k]);
    return plane.walls[k] ? wallFill : paperColor;
}

struct Box {
    Point low;
    Point high;
};

Box boxOf(const SimState& sim, const Plane& plane, const MapPlace& place, std::size_t k) {
    const CellEdges edges = plane.edges(sim, k);
    return {place.at({edges.left, edges.top}), place.at({edges.right, edges.bottom})};
}

/// Cells of one colour side by side become one box.
void fillBoxes(const SimState& sim,
               const Plane& plane,
               const std::vector<float>& values,
               const ColorScale& scale,
               const MapPlace& place,
               const Canvas& canvas) {
    for (int row = 0; row < plane.rows; ++row)
        for (int column = 0; column < plane.columns;) {
            const std::size_t k = plane.at(column, row);
            const Color color = colorOf(plane, values, scale, k);
            Box box = boxOf(sim, plane, place, k);
            for (++column; column < plane.columns; ++column) {
                const std::size_t next = plane.at(column, row);
                const Box beside = boxOf(sim, plane, place, next);
                const bool goesOn = beside.low.y == box.low.y && beside.high.y == box.high.y
                                    && beside.low.x == box.high.x && colorOf(plane, values, scale, next) == color;
                if (!goesOn) break;
                box.high.x = beside.high.x;
            }
            canvas.box(box.low, box.high, color);
        }
}

void fillRaster(const SimState& sim,
                const Plane& plane,
                const std::vector<float>& values,
                const ColorScale& scale,
                const MapPlace& place,
                const Canvas& canvas) {
    const double fineness = canvas.isPage ? pixelsOfPages : canvas.scale;
    const AxisFrame& frame = place.frame;
    const auto pixels = [fineness](double length) {
        constexpr double most = 8192;
        return static_cast<int>(std::clamp(std::round(length * fineness), 1.0, most));
    };
    PixelRaster raster;
    raster.width = pixels(frame.right - frame.left);
    raster.height = pixels(frame.bottom - frame.top);
    raster.pixels.assign(static_cast<std::size_t>(raster.width) * static_cast<std::size_t>(raster.height), paperColor);
    const auto pixelOf = [](double share, int count) {
        return static_cast<int>(std::clamp(std::round(share * count), 0.0, double(count)));
    };
    for (std::size_t k = 0; k < plane.cells.size(); ++k) {
        const Box box = boxOf(sim, plane, place, k);
        const int left = pixelOf((box.low.x - frame.left) / (frame.right - frame.left), raster.width);
        const int right = pixelOf((box.high.x - frame.left) / (frame.right - frame.left), raster.width);
        const int top = pixelOf((box.low.y - frame.top) / (frame.bottom - frame.top), raster.height);
        const int bottom = pixelOf((box.high.y - frame.top) / (frame.bottom - frame.top), raster.height);
        if (left >= right || top >= bottom) continue;
        const Color color = colorOf(plane, values, scale, k);
        for (int row = top; row < bottom; ++row) {
            const auto first = raster.pixels.begin() + std::ptrdiff_t{row} * raster.width;
            std::fill(first + left, first + right, color);
        }
    }
    canvas.paint({frame.left, frame.top}, {frame.right, frame.bottom}, raster);
}

void addLine(std::vector<Point>& line, Point from, Point to) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    line.insert(line.end(), {from, to, {none, none}});
}

/// The face between a cell and the next one across or down; `thick`: between two cells of gas.
struct FaceLines {
    std::vector<Point> thin;
    std::vector<Point> thick;
};

void addFace(FaceLines& lines,
             const SimState& sim,
             const Plane& plane,
             const MapPlace& place,
             std::size_t k,
             std::size_t next,
             bool isAcross) {
    const int dim = isAcross ? plane.acrossDim : plane.downDim;
    const bool isBaffle = !plane.walls[k] && !plane.walls[next] && isClosed(sim.wallVelocity(plane.cells[k], dim));
    if (!isBaffle && plane.walls[k] == plane.walls[next]) return;
    const Box box = boxOf(sim, plane, place, k);
    const Point from = isAcross ? Point{box.high.x, box.low.y} : Point{box.low.x, box.high.y};
    addLine(isBaffle ? lines.thick : lines.thin, from, box.high);
}

} // namespace

Color ColorScale::of(double value) const {
    const double share = isLog ? std::log(value / range.low) / std::log(range.high / range.low)
                               : (value - range.low) / (range.high - range.low);
    return colors->at(share);
}

MapPlace placeMap(const Plane& plane, const AxisFrame& frame) {
    return {frame, {plane.across, frame.left, frame.right, false}, {plane.down, frame.top, frame.bottom, false}};
}

void fillCells(const SimState& sim,
               const Plane& plane,
               const std::vector<float>& values,
               const ColorScale& scale,
               const MapPlace& place,
               const Canvas& canvas) {
    if (canvas.isPage && plane.cells.size() <= mostBoxes)
        fillBoxes(sim, plane, values, scale, place, canvas);
    else
        fillRaster(sim, plane, values, scale, place, canvas);
}

void drawWalls(const SimState& sim, const Plane& plane, const MapPlace& place, const Canvas& canvas) {
    FaceLines lines;
    for (int row = 0; row < plane.rows; ++row)
        for (int column = 0; column < plane.columns; ++column) {
            const std::size_t k = plane.at(column, row);
            if (column + 1 < plane.columns) addFace(lines, sim, plane, place, k, plane.at(column + 1, row), true);
            if (row + 1 < plane.rows) addFace(lines, sim, plane, place, k, plane.at(column, row + 1), false);
        }
    canvas.stroke(lines.thin, {wallLine, 1, {}});
    canvas.stroke(lines.thick, {inkColor, 2.4, {}});
}

void hatchHeld(const SimState& sim, const Plane& plane, const MapPlace& place, const Canvas& canvas) {
    std::vector<Point> lines;
    for (int row = 0; row < plane.rows; ++row)
        for (int column = 0; column < plane.columns; ++column) {
            const std::size_t k = plane.at(column, row);
            if (!plane.held[k]) continue;
            Box box = boxOf(sim, plane, place, k);
            // Held cells of one row become one box: fewer and longer lines.
            while (column + 1 < plane.columns && plane.held[plane.at(column + 1, row)]) {
                const Box next = boxOf(sim, plane, place, plane.at(column + 1, row));
                if (next.low.x != box.high.x || next.low.y != box.low.y || next.high.y != box.high.y) break;
                box.high.x = next.high.x;
                ++column;
            }
            addHatching(lines, box.low, box.high);
        }
    strokeHatching(lines, canvas);
}

void addHatching(std::vector<Point>& lines, Point low, Point high) {
    const double first = std::ceil((low.x + low.y) / hatchDistance) * hatchDistance;
    const auto count = static_cast<int>(std::ceil((high.x + high.y - first) / hatchDistance));
    for (int k = 0; k < count; ++k) {
        const double sum = first + k * hatchDistance;
        const double left = std::max(low.x, sum - high.y);
        const double right = std::min(high.x, sum - low.y);
        if (right > left) addLine(lines, {left, sum - left}, {right, sum - right});
    }
}

void strokeHatching(const std::vector<Point>& lines, const Canvas& canvas) {
    if (lines.empty()) return;
    canvas.stroke(lines, {paperColor, 1.8, {}}); // so that they show on dark colours, too
    canvas.stroke(lines, {inkColor, 0.8, {}});
}

} // namespace norvane
