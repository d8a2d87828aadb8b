#include "frontends/cli/kind_picture.h"

#include "check/cell_kinds.h"
#include "core/wall_codes.h"
#include "drawing/image_surface.h"
#include "frontends/cli/console.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace norvane {

namespace {

constexpr Color white{255, 255, 255};
constexpr Color ink{40, 40, 40};
constexpr Color faceColor{0, 0, 0};
constexpr Color markColor{230, 0, 200};

struct KindStyle {
    unsigned kind;
    const char* name;
    Color color;
};

/// The first that a cell is fills it, a further one shows as a spot in its middle.
constexpr KindStyle styles[] = {
    {kindWall, "wall", {125, 130, 135}},
    {kindInlet, "inlet, and where it blows", {50, 110, 225}},
    {kindOutlet, "outlet", {245, 150, 40}},
    {kindHeld, "masses held", {150, 100, 205}},
    {kindHeated, "heated or cooled", {225, 60, 55}},
    {kindReacting, "reacting", {60, 165, 90}},
    {kindRadiating, "radiating", {240, 205, 40}},
};
constexpr Color gasColor{222, 236, 247};

constexpr float titleHeight = 30;
constexpr float leftMargin = 46;
constexpr float topMargin = titleHeight + 18;
constexpr float legendRow = 20;

struct KindPicture {
    const SimState& sim;
    Surface& surface;
    std::vector<unsigned> kinds;
    float size; ///< of a cell, pixels
};

void fill(Surface& surface, Color color, float x0, float y0, float x1, float y1) {
    surface.foreColor = color;
    surface.box(x0, y0, x1, y1);
}

void print(Surface& surface, float x, float y, const std::string& text) {
    surface.foreColor = ink;
    surface.currentX = x;
    surface.currentY = y;
    surface.print(text);
}

/// Rows of the table from the first L row to the last, which the picture shows.
std::int64_t shownRows(const SimState& sim) {
    const std::int64_t layers = std::int64_t{sim.nCells} / sim.gridCols / (sim.layerRows - 1);
    return layers * sim.layerRows;
}

float cellSize(const SimState& sim) {
    constexpr float widest = 1500;
    constexpr float highest = 2200;
    const float fit = std::min(widest / static_cast<float>(sim.gridCols), highest / static_cast<float>(shownRows(sim)));
    return std::clamp(std::floor(fit), 3.0f, 28.0f);
}

float xOf(const KindPicture& picture, std::int64_t column) {
    return leftMargin + static_cast<float>(column - 1) * picture.size;
}

float yOf(const KindPicture& picture, std::int64_t row) {
    return topMargin + static_cast<float>(row - picture.sim.firstLayerRow - 1) * picture.size;
}

/// The direction of the velocity that is imposed on a face of a cell, along the columns (1) or the rows (2).
void drawBlow(const KindPicture& picture, std::int32_t cell, float x, float y) {
    const float middle = picture.size / 2;
    forEachNeighbour(picture.sim, cell, [&](std::int32_t, int dim, std::int32_t face) {
        const float velocity = picture.sim.velocityInit(face, dim);
        const bool blows = isImposed(picture.sim.wallVelocity(face, dim)) && velocity != 0;
        if (!blows || dim > 2) return;
        const float length = (velocity > 0 ? 0.4f : -0.4f) * picture.size;
        picture.surface.foreColor = white;
        picture.surface.drawWidth = picture.size > 12 ? 2 : 1;
        const float endX = x + middle + (dim == 1 ? length : 0);
        const float endY = y + middle + (dim == 2 ? length : 0);
        picture.surface.line(x + middle - (endX - x - middle), y + middle - (endY - y - middle), endX, endY);
        const float head = picture.size / 8;
        fill(picture.surface, white, endX - head, endY - head, endX + head, endY + head);
    });
}

void drawFaces(const KindPicture& picture, std::int32_t cell, float x, float y) {
    const SimState& sim = picture.sim;
    const float end = picture.size - 1;
    picture.surface.foreColor = faceColor;
    picture.surface.drawWidth = picture.size > 8 ? 2 : 1;
    if (isClosed(sim.wallVelocity(cell, 1))) picture.surface.line(x + end, y, x + end, y + end);
    if (sim.nDim >= 2 && isClosed(sim.wallVelocity(cell, 2))) picture.surface.line(x, y + end, x + end, y + end);
}

void drawCell(const KindPicture& picture, std::int32_t cell) {
    const TablePlace place = placeOf(picture.sim, cell);
    const float x = xOf(picture, place.column);
    const float y = yOf(picture, place.row);
    const float end = picture.size - 2;
    const unsigned kind = picture.kinds[static_cast<std::size_t>(cell)];
    int drawn = 0;
    fill(picture.surface, gasColor, x, y, x + end, y + end);
    for (const KindStyle& style : styles) {
        if ((kind & style.kind) == 0) continue;
        const float inset = static_cast<float>(drawn) * picture.size * 0.3f;
        if (inset * 2 < end) fill(picture.surface, style.color, x + inset, y + inset, x + end - inset, y + end - inset);
        if (++drawn == 2) break;
    }
    if ((kind & kindInlet) != 0 && picture.size >= 8) drawBlow(picture, cell, x, y);
    if ((kind & kindWall) == 0) drawFaces(picture, cell, x, y);
}

/// Every so many rows and columns, so that labels do not meet.
void drawEdges(const KindPicture& picture) {
    const SimState& sim = picture.sim;
    picture.surface.fontSize = 8;
    const auto columnStep = static_cast<std::int64_t>(std::ceil(22 / picture.size));
    const auto rowStep = static_cast<std::int64_t>(std::ceil(13 / picture.size));
    for (std::int64_t column = 1; column <= sim.gridCols; column += columnStep)
        print(picture.surface, xOf(picture, column) + 1, topMargin - 15, columnLetters(column));
    for (std::int64_t row = 1; row < shownRows(sim); row += rowStep)
        print(picture.surface, 6, yOf(picture, sim.firstLayerRow + row) + picture.size / 2 - 7,
              std::to_string(sim.firstLayerRow + row));
}

void frame(const KindPicture& picture, const TablePlace& place) {
    const SimState& sim = picture.sim;
    const bool isInside = place.row > sim.firstLayerRow && place.row <= sim.firstLayerRow + shownRows(sim);
    if (!isInside || place.column < 1) return;
    const float x = xOf(picture, place.column) - 1;
    const float y = yOf(picture, place.row) - 1;
    const float end = picture.size + 1;
    Surface& surface = picture.surface;
    surface.foreColor = markColor;
    surface.drawWidth = 2;
    surface.line(x, y, x + end, y);
    surface.line(x, y + end, x + end, y + end);
    surface.line(x, y, x, y + end);
    surface.line(x + end, y, x + end, y + end);
}

/// The entries of the legend: kinds that there are, gas, and the mark of findings.
std::vector<std::pair<Color, std::string>> legendOf(const KindPicture& picture, const PictureMarks& marks) {
    std::vector<std::pair<Color, std::string>> entries = {{gasColor, "gas"}};
    for (const KindStyle& style : styles) {
        const bool exists = std::any_of(picture.kinds.begin(), picture.kinds.end(),
                                        [&](unsigned kind) { return (kind & style.kind) != 0; });
        if (exists) entries.emplace_back(style.color, style.name);
    }
    entries.emplace_back(faceColor, "closed face");
    if (!marks.places.empty()) entries.emplace_back(markColor, marks.meaning);
    return entries;
}

void drawLegend(const KindPicture& picture, const std::vector<std::pair<Color, std::string>>& entries) {
    float y = yOf(picture, picture.sim.firstLayerRow + shownRows(picture.sim)) + 12;
    picture.surface.fontSize = 9;
    for (const auto& [color, name] : entries) {
        fill(picture.surface, color, leftMargin, y + 2, leftMargin + 12, y + 14);
        print(picture.surface, leftMargin + 20, y, name);
        y += legendRow;
    }
}

void draw(const KindPicture& picture,
          const PictureMarks& marks,
          const std::vector<std::pair<Color, std::string>>& legend) {
    Surface& surface = picture.surface;
    fill(surface, white, 0, 0, surface.scaleWidth, surface.scaleHeight);
    surface.fontSize = 11;
    surface.fontBold = true;
    print(surface, leftMargin, 6, picture.sim.fileName);
    surface.fontBold = false;
    drawEdges(picture);
    for (std::int32_t cell = 1; cell <= picture.sim.nCells; ++cell) drawCell(picture, cell);
    for (const TablePlace& place : marks.places) frame(picture, place);
    drawLegend(picture, legend);
}

} // namespace

FileResult writeKindPicture(const SimState& sim, const PictureMarks& marks, const std::string& path) {
    const PictureFormat format = pictureFormat(path).value_or(PictureFormat::png);
    Surface surface;
    KindPicture picture{sim, surface, cellKinds(sim), cellSize(sim)};
    const auto legend = legendOf(picture, marks);
    constexpr float narrowest = 320; // for the legend
    surface.scaleWidth = std::max(narrowest, xOf(picture, sim.gridCols + 1) + 16);
    surface.scaleHeight =
        yOf(picture, sim.firstLayerRow + shownRows(sim)) + 24 + legendRow * static_cast<float>(legend.size());
    const bool isPage = format == PictureFormat::svg || format == PictureFormat::pdf;
    const auto target = isPage ? drawOnPage(surface, format) : drawOnImage(surface);
    draw(picture, marks, legend);
    return writePicture(*target, path, format);
}

bool drawnPicture(const SimState& sim, const PictureMarks& marks, const std::string& path) {
    const FileResult written = writeKindPicture(sim, marks, path);
    if (!written)
        std::fprintf(stderr, "%s can't be written: %s\n", printableName(path).c_str(), written.reason.c_str());
    return static_cast<bool>(written);
}

bool mayBePicture(const std::string& geometry, const std::string& path) {
    if (pictureFormat(path)) return !wouldOverwrite(geometry, path);
    std::fprintf(stderr, "--picture: \"%s\" is not a name that ends in .png, .svg, .pdf or .bmp\n",
                 printableName(path).c_str());
    return false;
}

} // namespace norvane
