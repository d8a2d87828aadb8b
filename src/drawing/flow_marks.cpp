#include "drawing/flow_marks.h"

#include "display/contour_lines.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

constexpr double arrowDistance = 24;      // units
constexpr double streamlineDistance = 16; // units
constexpr double lineWidth = 1.3;
constexpr double haloWidth = 3;

/// The triangle at the tip of an arrow; `size` is its length.
void fillHead(Point tip, Point direction, double size, Color color, const Canvas& canvas) {
    const double length = std::hypot(direction.x, direction.y);
    if (!(length > 0)) return;
    const Point along{direction.x / length, direction.y / length};
    const Point base{tip.x - size * along.x, tip.y - size * along.y};
    const double half = 0.42 * size;
    const Point corners[] = {
        tip, {base.x - half * along.y, base.y + half * along.x}, {base.x + half * along.y, base.y - half * along.x}};
    canvas.fill(corners, color);
}

double fastest(const SimState& sim, const Plane& plane) {
    double speed = 0;
    for (std::size_t k = 0; k < plane.cells.size(); ++k) {
        const Point velocity = centreVelocity(sim, plane, k);
        const double here = std::hypot(velocity.x, velocity.y);
        if (std::isfinite(here)) speed = std::max(speed, here);
    }
    return speed;
}

/// The largest of 1, 2, 5 times a power of ten that is not above a speed.
double roundSpeed(double speed) {
    const double power = std::pow(10.0, std::floor(std::log10(speed)));
    for (const double digit : {5.0, 2.0})
        if (digit * power <= speed) return digit * power;
    return power;
}

/// Takes every so many cells that arrows keep their distance.
struct ArrowGrid {
    int columnStride = 1;
    int rowStride = 1;
    double distance = arrowDistance; ///< of the nearest ones
};

ArrowGrid gridOf(const Plane& plane, const MapPlace& place) {
    constexpr double longest = 44; // in cells of any size
    const double width = (place.frame.right - place.frame.left) / std::max(plane.columns, 1);
    const double height = (place.frame.bottom - place.frame.top) / std::max(plane.rows, 1);
    const auto stride = [](double size) { return std::max(1, static_cast<int>(std::lround(arrowDistance / size))); };
    ArrowGrid grid{stride(width), stride(height), 0};
    grid.distance = std::min({grid.columnStride * width, grid.rowStride * height, longest});
    return grid;
}

/// Leaves out points that are nearer to the one before than can be seen: a line through small cells has very many.
std::vector<Point> withoutNearPoints(const std::vector<Point>& points) {
    constexpr double least = 0.5;
    std::vector<Point> kept;
    for (const Point& point : points)
        if (kept.empty() || std::hypot(point.x - kept.back().x, point.y - kept.back().y) >= least)
            kept.push_back(point);
    return kept;
}

} // namespace

void drawContours(const SimState& sim,
                  const Plane& plane,
                  const std::vector<float>& values,
                  const std::vector<double>& levels,
                  bool dashed,
                  const MapPlace& place,
                  const Canvas& canvas) {
    for (const double level : levels) {
        std::vector<Point> line = contourLines(sim, plane, values, level);
        for (Point& point : line) point = place.at(point);
        if (line.empty()) continue;
        canvas.stroke(line, {paperColor, 2.2, {}});
        canvas.stroke(line, {inkColor, 0.9, dashed ? std::vector<double>{5, 3} : std::vector<double>{}});
    }
}

ArrowScale scaleArrows(const SimState& sim, const Plane& plane, const MapPlace& place) {
    const double speed = fastest(sim, plane);
    if (!(speed > 0)) return {};
    return {roundSpeed(speed), 0.95 * gridOf(plane, place).distance / speed};
}

void drawArrows(const SimState& sim, const Plane& plane, const MapPlace& place, const Canvas& canvas) {
    const ArrowGrid grid = gridOf(plane, place);
    const ArrowScale scale = scaleArrows(sim, plane, place);
    for (int row = grid.rowStride / 2; row < plane.rows; row += grid.rowStride)
        for (int column = grid.columnStride / 2; column < plane.columns; column += grid.columnStride) {
            const std::size_t k = plane.at(column, row);
            const Point velocity = centreVelocity(sim, plane, k);
            const double dx = velocity.x * scale.unitsPerSpeed;
            const double dy = velocity.y * scale.unitsPerSpeed;
            constexpr double least = 2; // shorter ones would be spots
            if (!(std::hypot(dx, dy) >= least)) continue;
            const CellEdges edges = plane.edges(sim, k);
            const Point middle = place.at({(edges.left + edges.right) / 2, (edges.top + edges.bottom) / 2});
            drawArrow({middle.x - dx / 2, middle.y - dy / 2}, {middle.x + dx / 2, middle.y + dy / 2}, canvas);
        }
}

void drawArrow(Point from, Point to, const Canvas& canvas) {
    const Point direction{to.x - from.x, to.y - from.y};
    const double length = std::hypot(direction.x, direction.y);
    if (!(length > 0)) return;
    const double head = std::min(7.0, 0.6 * length);
    const Point neck{to.x - 0.8 * head * direction.x / length, to.y - 0.8 * head * direction.y / length};
    const Point shaft[] = {from, neck};
    const Point edge{to.x + 1.5 * direction.x / length, to.y + 1.5 * direction.y / length};
    canvas.stroke(shaft, {paperColor, haloWidth, {}});
    fillHead(edge, direction, head + 3, paperColor, canvas);
    canvas.stroke(shaft, {inkColor, lineWidth, {}});
    fillHead(to, direction, head, inkColor, canvas);
}

void drawStreamlines(const SimState& sim, const Plane& plane, const MapPlace& place, const Canvas& canvas) {
    const AxisFrame& frame = place.frame;
    const double across = (plane.across.high - plane.across.low) / (frame.right - frame.left);
    const double down = (plane.down.high - plane.down.low) / (frame.bottom - frame.top);
    std::vector<Streamline> lines = streamlines(sim, plane, streamlineDistance * std::max(across, down));
    for (Streamline& line : lines) {
        for (Point& point : line.points) point = place.at(point);
        line.points = withoutNearPoints(line.points);
        canvas.stroke(line.points, {paperColor, haloWidth, {}});
    }
    for (const Streamline& line : lines) {
        canvas.stroke(line.points, {inkColor, lineWidth, {}});
        const std::size_t middle = line.points.size() / 2;
        const Point before = line.points[middle > 0 ? middle - 1 : 0];
        const Point tip = line.points[middle];
        fillHead(tip, {tip.x - before.x, tip.y - before.y}, 8, inkColor, canvas);
    }
}

} // namespace norvane
