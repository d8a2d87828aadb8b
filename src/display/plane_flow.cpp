#include "display/plane_flow.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace norvane {

namespace {

struct Place {
    double column = 0; ///< in cells: cell 3 reaches from 3 to 4
    double row = 0;
};

struct Tracer {
    const SimState& sim;
    const Plane& plane;
    double distance;
    int binColumns;
    int binRows;
    std::vector<std::int32_t> lineOfBin; ///< number of the line that passes through a square of the distance, from 1
};

std::size_t cellAt(const Plane& plane, const Place& place) {
    return plane.at(std::clamp(static_cast<int>(place.column), 0, plane.columns - 1),
                    std::clamp(static_cast<int>(place.row), 0, plane.rows - 1));
}

bool isInside(const Plane& plane, const Place& place) {
    return place.column >= 0 && place.row >= 0 && place.column < plane.columns && place.row < plane.rows;
}

/// The velocity on the lower face of a cell: that of the cell before it in its row; 0 at the end of the row.
double lowerVelocity(const SimState& sim, std::int32_t cell, int dim) {
    const std::int32_t stride = sim.cellStride[dim];
    const std::int32_t place = (cell - 1) % sim.cellStride[dim + 1];
    return place >= stride ? double(sim.velocity(cell - stride, dim)) : 0;
}

/// The velocity of a cell along one dimension at a share of its length, in cells a second.
double cellsPerSecond(const SimState& sim, std::int32_t cell, int dim, double share) {
    const double speed = (1 - share) * lowerVelocity(sim, cell, dim) + share * double(sim.velocity(cell, dim));
    return speed / double(sim.cellSize(cell, dim));
}

/// Linear along the dimension, and across it between the middles of two cells of gas.
double velocityAlong(const Tracer& tracer, const Place& place, bool isAcross) {
    const Plane& plane = tracer.plane;
    const int dim = isAcross ? plane.acrossDim : plane.downDim;
    const double share = isAcross ? place.column - std::floor(place.column) : place.row - std::floor(place.row);
    const double side = (isAcross ? place.row - std::floor(place.row) : place.column - std::floor(place.column)) - 0.5;
    const std::size_t k = cellAt(plane, place);
    const double here = cellsPerSecond(tracer.sim, plane.cells[k], dim, share);
    const double step = side < 0 ? -1 : 1;
    const Place beside{place.column + (isAcross ? 0 : step), place.row + (isAcross ? step : 0)};
    if (!isInside(plane, beside) || plane.walls[cellAt(plane, beside)]) return here;
    const std::size_t next = cellAt(plane, beside);
    return (1 - std::abs(side)) * here + std::abs(side) * cellsPerSecond(tracer.sim, plane.cells[next], dim, share);
}

Place velocityAt(const Tracer& tracer, const Place& place) {
    return {velocityAlong(tracer, place, true), velocityAlong(tracer, place, false)};
}

Point metresAt(const Tracer& tracer, const Place& place) {
    const CellEdges edges = tracer.plane.edges(tracer.sim, cellAt(tracer.plane, place));
    const double across = place.column - std::floor(place.column);
    const double down = place.row - std::floor(place.row);
    return {edges.left + across * (edges.right - edges.left), edges.top + down * (edges.bottom - edges.top)};
}

std::size_t numberOf(const Tracer& tracer, int column, int row) {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(tracer.binColumns)
           + static_cast<std::size_t>(column);
}

std::size_t binOf(const Tracer& tracer, Point at) {
    const auto column = static_cast<int>((at.x - tracer.plane.across.low) / tracer.distance);
    const auto row = static_cast<int>((at.y - tracer.plane.down.low) / tracer.distance);
    return numberOf(tracer, std::clamp(column, 0, tracer.binColumns - 1), std::clamp(row, 0, tracer.binRows - 1));
}

bool isGas(const Tracer& tracer, const Place& place) {
    const std::size_t k = cellAt(tracer.plane, place);
    return !tracer.plane.walls[k];
}

/// One step of a fraction of a cell by the midpoint rule. Gives false where the line ends.
bool advance(const Tracer& tracer, Place& place, double direction) {
    constexpr double part = 0.2; // of a cell
    const auto unit = [&](const Place& at, Place& step) {
        const Place velocity = velocityAt(tracer, at);
        const double speed = std::max(std::abs(velocity.column), std::abs(velocity.row));
        if (!(speed > 0) || !std::isfinite(speed)) return false;
        step = {direction * part * velocity.column / speed, direction * part * velocity.row / speed};
        return true;
    };
    Place step;
    if (!unit(place, step)) return false;
    const Place middle{place.column + step.column / 2, place.row + step.row / 2};
    if (!isInside(tracer.plane, middle) || !isGas(tracer, middle) || !unit(middle, step)) return false;
    place = {place.column + step.column, place.row + step.row};
    return isInside(tracer.plane, place) && isGas(tracer, place);
}

/// Follows the flow, or goes against it, until it comes to another line, meets itself again or ends.
std::vector<Point> follow(Tracer& tracer, Place place, double direction, std::int32_t number) {
    std::vector<Point> points;
    const std::size_t mostPoints = 40 * static_cast<std::size_t>(tracer.plane.columns + tracer.plane.rows);
    std::size_t bin = binOf(tracer, metresAt(tracer, place));
    std::size_t before = bin; // a line along the edge of two squares may go to and fro
    while (points.size() < mostPoints && advance(tracer, place, direction)) {
        const Point at = metresAt(tracer, place);
        const std::size_t next = binOf(tracer, at);
        if (next != bin && next != before && tracer.lineOfBin[next] != 0) break;
        if (next != bin) before = bin;
        bin = next;
        tracer.lineOfBin[bin] = number;
        points.push_back(at);
    }
    return points;
}

double lengthOf(const std::vector<Point>& points) {
    double length = 0;
    for (std::size_t k = 1; k < points.size(); ++k)
        length += std::hypot(points[k].x - points[k - 1].x, points[k].y - points[k - 1].y);
    return length;
}

/// The square of a place is free, and so are those around it.
bool isFree(const Tracer& tracer, std::size_t bin) {
    const int column = static_cast<int>(bin) % tracer.binColumns;
    const int row = static_cast<int>(bin) / tracer.binColumns;
    for (int j = std::max(row - 1, 0); j <= std::min(row + 1, tracer.binRows - 1); ++j)
        for (int i = std::max(column - 1, 0); i <= std::min(column + 1, tracer.binColumns - 1); ++i)
            if (tracer.lineOfBin[numberOf(tracer, i, j)] != 0) return false;
    return true;
}

} // namespace

Point centreVelocity(const SimState& sim, const Plane& plane, std::size_t k) {
    if (plane.walls[k]) return {};
    const std::int32_t cell = plane.cells[k];
    const auto along = [&](int dim) {
        const std::int32_t place = (cell - 1) % sim.cellStride[dim + 1];
        const double upper = sim.velocity(cell, dim);
        return place >= sim.cellStride[dim] ? (lowerVelocity(sim, cell, dim) + upper) / 2 : upper;
    };
    return {along(plane.acrossDim), along(plane.downDim)};
}

std::vector<Streamline> streamlines(const SimState& sim, const Plane& plane, double distance) {
    const auto bins = [&](Range range) {
        return std::clamp(static_cast<int>(std::ceil((range.high - range.low) / distance)), 1, 1000);
    };
    Tracer tracer{sim, plane, distance, bins(plane.across), bins(plane.down), {}};
    tracer.lineOfBin.assign(static_cast<std::size_t>(tracer.binColumns) * static_cast<std::size_t>(tracer.binRows), 0);
    std::vector<Streamline> lines;
    for (int row = 0; row < plane.rows; ++row)
        for (int column = 0; column < plane.columns; ++column) {
            const Place seed{column + 0.5, row + 0.5};
            const std::size_t bin = binOf(tracer, metresAt(tracer, seed));
            if (!isGas(tracer, seed) || !isFree(tracer, bin)) continue;
            const auto number = static_cast<std::int32_t>(lines.size()) + 1;
            Streamline line;
            line.points = follow(tracer, seed, -1, number);
            std::reverse(line.points.begin(), line.points.end());
            line.points.push_back(metresAt(tracer, seed));
            const std::vector<Point> ahead = follow(tracer, seed, 1, number);
            line.points.insert(line.points.end(), ahead.begin(), ahead.end());
            if (lengthOf(line.points) >= 2 * distance) lines.push_back(std::move(line));
        }
    return lines;
}

} // namespace norvane
