#include "display/contour_lines.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>

namespace norvane {

namespace {

struct Corner {
    Point at;
    double value = 0;
    std::size_t cell = 0;
};

/// Where the level lies between two neighbours. The number of that place is the same in both quads that share it.
struct Crossing {
    std::size_t number = 0;
    Point at;
};

struct Piece {
    Crossing ends[2];
    bool used = false;
};

/// The pieces at a crossing, at most two; -1: none.
using Meeting = std::array<std::int64_t, 2>;

struct Pieces {
    std::vector<Piece> all;
    std::unordered_map<std::size_t, Meeting> at;
};

Corner cornerAt(const SimState& sim, const Plane& plane, const std::vector<float>& values, int column, int row) {
    const std::size_t k = plane.at(column, row);
    const CellEdges edges = plane.edges(sim, k);
    return {{(edges.left + edges.right) / 2, (edges.top + edges.bottom) / 2}, values[k], k};
}

Crossing crossingOf(const Corner& a, const Corner& b, double level) {
    const Corner& first = a.cell < b.cell ? a : b; // so that both quads compute the same place
    const Corner& second = a.cell < b.cell ? b : a;
    const double share = (level - first.value) / (second.value - first.value);
    const std::size_t isDown = second.cell - first.cell > 1 ? 1 : 0;
    return {2 * first.cell + isDown,
            {first.at.x + share * (second.at.x - first.at.x), first.at.y + share * (second.at.y - first.at.y)}};
}

void addPiece(Pieces& pieces, const Crossing& from, const Crossing& to) {
    const auto number = static_cast<std::int64_t>(pieces.all.size());
    pieces.all.push_back({{from, to}, false});
    for (const std::size_t place : {from.number, to.number}) {
        const auto [meeting, isNew] = pieces.at.try_emplace(place, Meeting{-1, -1});
        meeting->second[isNew ? 0 : 1] = number;
    }
}

/// The level crosses two sides of the quad of four centres, or all four: then the mean of the corners tells which
/// sides belong together.
void addPieces(Pieces& pieces, const std::array<Corner, 4>& corners, double level) {
    std::array<Crossing, 4> crossings;
    std::size_t count = 0;
    for (std::size_t k = 0; k < 4; ++k) {
        const Corner& a = corners[k];
        const Corner& b = corners[(k + 1) % 4];
        if ((a.value >= level) != (b.value >= level)) crossings[count++] = crossingOf(a, b, level);
    }
    if (count == 2) addPiece(pieces, crossings[0], crossings[1]);
    if (count < 4) return;
    const double mean = (corners[0].value + corners[1].value + corners[2].value + corners[3].value) / 4;
    const bool joinsFirst = (mean >= level) == (corners[0].value >= level);
    addPiece(pieces, crossings[0], crossings[joinsFirst ? 1 : 3]);
    addPiece(pieces, crossings[joinsFirst ? 3 : 1], crossings[2]);
}

Pieces piecesOf(const SimState& sim, const Plane& plane, const std::vector<float>& values, double level) {
    Pieces pieces;
    const auto isMissing = [&](int column, int row) { return !std::isfinite(values[plane.at(column, row)]); };
    const auto isAbove = [&](int column, int row) { return double(values[plane.at(column, row)]) >= level; };
    for (int row = 0; row + 1 < plane.rows; ++row)
        for (int column = 0; column + 1 < plane.columns; ++column) {
            if (isMissing(column, row) || isMissing(column + 1, row) || isMissing(column + 1, row + 1)
                || isMissing(column, row + 1))
                continue;
            const int above = int{isAbove(column, row)} + int{isAbove(column + 1, row)}
                              + int{isAbove(column + 1, row + 1)} + int{isAbove(column, row + 1)};
            if (above == 0 || above == 4) continue;
            addPieces(pieces,
                      {cornerAt(sim, plane, values, column, row), cornerAt(sim, plane, values, column + 1, row),
                       cornerAt(sim, plane, values, column + 1, row + 1),
                       cornerAt(sim, plane, values, column, row + 1)},
                      level);
        }
    return pieces;
}

/// Adds the points of a line that begins with a piece, whose end 0 or 1 comes first.
void addLine(Pieces& pieces, std::int64_t piece, int firstEnd, std::vector<Point>& line) {
    line.push_back(pieces.all[static_cast<std::size_t>(piece)].ends[firstEnd].at);
    std::size_t place = pieces.all[static_cast<std::size_t>(piece)].ends[firstEnd].number;
    while (piece >= 0 && !pieces.all[static_cast<std::size_t>(piece)].used) {
        Piece& here = pieces.all[static_cast<std::size_t>(piece)];
        here.used = true;
        const Crossing& next = here.ends[here.ends[0].number == place ? 1 : 0];
        line.push_back(next.at);
        place = next.number;
        const Meeting& meeting = pieces.at[place];
        piece = meeting[0] == piece ? meeting[1] : meeting[0];
    }
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    line.push_back({none, none});
}

} // namespace

std::vector<Point>
contourLines(const SimState& sim, const Plane& plane, const std::vector<float>& values, double level) {
    Pieces pieces = piecesOf(sim, plane, values, level);
    std::vector<Point> lines;
    // Lines with ends first, from an end; what is left are rings.
    for (const bool wantsEnd : {true, false})
        for (std::size_t k = 0; k < pieces.all.size(); ++k)
            for (const int end : {0, 1}) {
                const bool isEnd = pieces.at[pieces.all[k].ends[end].number][1] < 0;
                if (!pieces.all[k].used && (isEnd || !wantsEnd))
                    addLine(pieces, static_cast<std::int64_t>(k), end, lines);
            }
    return lines;
}

} // namespace norvane
