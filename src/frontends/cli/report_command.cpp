#include "frontends/cli/report_command.h"

#include "core/wall_codes.h"
#include "display/color_tables.h"
#include "drawing/field_figure.h"
#include "frontends/cli/option_text.h"
#include "platform/letter_case.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

namespace norvane {

namespace {

/// What --scale says: words and ends, with commas between them.
struct ScaleChoice {
    bool isSymmetric = false;
    bool isLog = false;
    std::optional<Range> ends;
};

std::optional<Range> endsOf(const std::string& text) {
    const std::vector<std::string> sides = parts(text, ':');
    const std::optional<double> low = sides.size() == 2 ? finiteNumber(sides[0]) : std::nullopt;
    const std::optional<double> high = sides.size() == 2 ? finiteNumber(sides[1]) : std::nullopt;
    const Range range{low.value_or(0), high.value_or(0)};
    const bool isRange = low && high && range.low < range.high && std::isfinite(range.high - range.low);
    return isRange ? std::optional(range) : std::nullopt;
}

bool takeScale(const PlotOptions& options, std::size_t panels, ScaleChoice& choice) {
    if (options.scale.empty()) return true;
    for (const std::string& word : parts(lowerCase(options.scale), ',')) {
        if (word == "auto") continue;
        if (word == "symmetric")
            choice.isSymmetric = true;
        else if (word == "log")
            choice.isLog = true;
        else if (!(choice.ends = endsOf(word)))
            return fault("--scale", options.scale,
                         "LOW:HIGH in the unit of the quantity, such as 20:120 for deg C, auto, symmetric, log, or "
                         "log,LOW:HIGH");
    }
    if (choice.isLog && (choice.isSymmetric || (choice.ends && !(choice.ends->low > 0))))
        return fault("--scale", options.scale, "possible: the ends of a logarithmic scale are above 0");
    if (choice.ends && panels > 1)
        return fault("--scale", options.scale, "possible with several panels, whose quantities differ");
    return true;
}

/// The range that a scale has over these values; none where no value can be shown on it.
std::optional<Range> rangeOver(const std::vector<float>& values, const ScaleChoice& choice) {
    constexpr int decades = 6;
    if (choice.ends) return choice.ends;
    bool found = false;
    Range range = extentOf(values, found);
    if (choice.isLog) range = positive(values, decades, found);
    if (choice.isSymmetric) range = symmetric(range);
    return found ? std::optional(drawable(range)) : std::nullopt;
}

/// Round values within a range, but not those next to its ends: there a line would follow the rounding of singles.
std::vector<double> contourLevels(Range range, bool isLog, int count) {
    if (count == 0) return {};
    std::vector<double> levels = (isLog ? logTicks(range, count + 2) : linearTicks(range, count + 2)).places;
    const double room = isLog ? 0 : 0.01 * (range.high - range.low);
    std::erase_if(levels, [&](double level) { return level <= range.low + room || level >= range.high - room; });
    return levels;
}

/// Values of cells whose masses are held are set by the drawing, and not by the gas around them: neither the scale nor
/// contour lines follow their pressure and density, unless there are no others.
std::vector<float>
followedValues(const SimState& sim, const Plane& plane, const ShownQuantity& shown, const std::vector<float>& values) {
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    const std::string& name = shown.label;
    if (name != "Pressure" && name != "Density") return values;
    std::vector<float> followed = values;
    for (std::size_t k = 0; k < followed.size(); ++k)
        if (isHeld(sim.wallPressure[plane.cells[k]])) followed[k] = none;
    bool found = false;
    extentOf(followed, found);
    return found ? followed : values;
}

/// Takes out the values that have no logarithm. Gives whether there were some.
bool removeNonPositive(std::vector<float>& values) {
    bool found = false;
    for (float& value : values) {
        if (!(value <= 0)) continue;
        value = std::numeric_limits<float>::quiet_NaN();
        found = true;
    }
    return found;
}

bool takePanel(const PlotOptions& options, const ScaleChoice& choice, FieldPanel& panel) {
    if (choice.isLog) {
        removeNonPositive(panel.contoured);
        panel.hasNoLogarithm = removeNonPositive(panel.values);
    }
    std::optional<Range> range = rangeOver(panel.contoured, choice);
    if (!range) range = rangeOver(panel.values, choice);
    if (!range) {
        const char* const hint =
            choice.isLog ? " on a logarithmic scale" : "; where it is all wall, --slice takes another";
        std::fprintf(stderr, "%s: the plane has no value that can be shown%s\n", panel.label.c_str(), hint);
        return false;
    }
    const std::string table = !options.colors.empty() ? options.colors : choice.isSymmetric ? "coolwarm" : "viridis";
    panel.scale = {*range, choice.isLog, colorTable(table)};
    if (panel.scale.colors == nullptr) {
        std::string names;
        for (const ColorTable& each : colorTables()) names += (names.empty() ? "" : ", ") + std::string(each.name);
        return fault("--colors", options.colors, "one of " + names);
    }
    const double slack = 1e-6 * (range->high - range->low);
    for (const float value : panel.values) {
        panel.reachesBelow = panel.reachesBelow || value < range->low - slack;
        panel.reachesAbove = panel.reachesAbove || value > range->high + slack;
    }
    panel.contours = contourLevels(*range, choice.isLog, options.contours);
    panel.hasArrows = panel.hasArrows || options.arrows;
    panel.hasStreamlines = options.streamlines;
    return true;
}

bool takePanels(const PlotOptions& options, const SimState& sim, FieldFigure& figure) {
    std::vector<ShownQuantity> shown;
    ScaleChoice choice;
    if (!chosenQuantities(options, sim, options.panels.empty() ? options.quantity : options.panels, shown)
        || !takeScale(options, shown.size(), choice))
        return false;
    const bool inWalls =
        std::any_of(shown.begin(), shown.end(), [](const ShownQuantity& each) { return each.inWalls; });
    if (options.showWalls && !inWalls)
        return fault("--show-walls", shown.front().label, "a quantity of walls, which have a temperature");
    for (const ShownQuantity& each : shown) {
        FieldPanel panel;
        panel.label = each.label;
        panel.unit = each.unit;
        panel.hasArrows = each.isArrows;
        panel.values = planeValues(sim, figure.plane, each, options.showWalls);
        panel.contoured = followedValues(sim, figure.plane, each, panel.values);
        if (!takePanel(options, choice, panel)) return false;
        figure.panels.push_back(std::move(panel));
    }
    return true;
}

bool hasExtent(Range range) { return std::isfinite(range.high - range.low) && range.high > range.low; }

ExitStatus plotWholeLine(const PlotOptions& options, SimState& sim, const PlotFrames& frames) {
    const bool asksForPlane = options.arrows || options.streamlines || options.contours > 0;
    if (asksForPlane) {
        std::fprintf(stderr,
                     "--contours, --arrows and --streamlines need a grid of two dimensions; this one has one\n");
        return exitBadUse;
    }
    CellLine line;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) line.cells.push_back(cell);
    return plotLines(options, sim, frames, {line}, options.panels.empty() ? options.quantity : options.panels);
}

} // namespace

ExitStatus makeFigure(const PlotOptions& options, const SimState& sim, FieldFigure& figure) {
    figure.plane = planeOf(sim);
    if (!hasExtent(figure.plane.across) || !hasExtent(figure.plane.down)) {
        std::fprintf(stderr, "%s: the cells of the plane have no size (key DD), so there is nothing to draw\n",
                     printableName(sim.fileName).c_str());
        return exitNoModel;
    }
    const std::string slice = sliceText(sim, figure.plane);
    figure.title = options.hasTitle ? options.title : sim.graphTitle;
    figure.subtitle = momentOf(options, sim) + (slice.empty() ? "" : ", " + slice);
    figure.fillsCanvas = options.stretch;
    figure.stretchAcross = double(sim.zoom[figure.plane.acrossDim]) / double(sim.zoom[figure.plane.downDim]);
    return takePanels(options, sim, figure) ? exitDone : exitBadUse;
}

ExitStatus plotReport(const PlotOptions& options, SimState& sim, const PlotFrames& frames) {
    if (sim.nDim == 1) return plotWholeLine(options, sim, frames);
    if (frames.steps.size() > 1) {
        std::fprintf(stderr, "--frame: a plane shows one step; several need --along\n");
        return exitBadUse;
    }
    FieldFigure figure;
    const ExitStatus status = makeFigure(options, sim, figure);
    if (status != exitDone) return status;
    const PictureFormat format = pictureFormat(options.output).value_or(PictureFormat::png);
    Canvas canvas;
    if (!sizeCanvas(options, format == PictureFormat::svg || format == PictureFormat::pdf, canvas)) return exitBadUse;
    if (canvas.height == 0) {
        connectTextWidth(canvas);
        fitCanvas(figure, canvas);
    }
    const FigureFile file = connectFigure(canvas, format);
    drawFigure(sim, figure, canvas);
    return writtenFigure(file, options.output);
}

} // namespace norvane
