#include "frontends/cli/plot_command.h"

#include "core/quantities.h"
#include "display/field_plot.h"
#include "drawing/image_surface.h"
#include "frontends/cli/chart_command.h"
#include "frontends/cli/console.h"
#include "frontends/cli/option_text.h"
#include "frontends/cli/report_command.h"
#include "platform/letter_case.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

namespace norvane {

namespace {

bool takeQuantity(const PlotOptions& options, SimState& sim, const Selector& quantities) {
    if (options.quantity.empty()) return true;
    if (const auto number = wholeIn(options.quantity, 1, quantities.listCount())) {
        sim.showWhat = static_cast<std::int16_t>(*number);
        return true;
    }
    std::string names;
    for (std::size_t k = 0; k < quantities.entries.size(); ++k) {
        if (lowerCase(quantities.entries[k]) == lowerCase(options.quantity)) {
            sim.showWhat = static_cast<std::int16_t>(k + 1);
            return true;
        }
        names += (k > 0 ? ", " : "") + quantities.entries[k];
    }
    return fault("--quantity", options.quantity,
                 "one of " + names + ", or its number, " + rangeText(1, quantities.listCount()));
}

bool takeComponent(const PlotOptions& options, SimState& sim) {
    if (options.component.empty()) return true;
    const std::optional<int> component = componentNamed(options.component, sim, sim.showWhat);
    if (component) sim.showDims = static_cast<std::int16_t>(*component);
    return component.has_value();
}

/// Reads the dimension of an axis; stays without the option.
bool takeAxis(const std::string& option, const std::string& given, const SimState& sim, std::int16_t& axis) {
    if (given.empty()) return true;
    const std::optional<int> dim = wholeIn(given, 1, sim.nDim);
    if (!dim) return fault(option, given, "a dimension of the geometry, " + rangeText(1, sim.nDim));
    axis = static_cast<std::int16_t>(*dim);
    return true;
}

bool takeAxes(const PlotOptions& options, SimState& sim) {
    std::int16_t* const axes = sim.axisPair;
    if (!takeAxis("--columns", options.columns, sim, axes[0]) || !takeAxis("--rows", options.rows, sim, axes[1]))
        return false;
    if (axes[0] != axes[1]) return true;
    if (!options.columns.empty() && !options.rows.empty())
        return fault("--rows", options.rows, "another dimension than that of --columns");
    // One axis took the other's dimension: that one makes way.
    axes[options.rows.empty() ? 1 : 0] = axes[0] == 1 ? std::int16_t{2} : std::int16_t{1};
    return true;
}

bool takeSlices(const PlotOptions& options, SimState& sim) {
    for (const std::string& slice : options.slices) {
        const std::vector<std::string> sides = parts(slice, '=');
        const std::optional<int> dim = sides.size() == 2 ? wholeIn(sides[0], 1, sim.nDim) : std::nullopt;
        if (!dim) return fault("--slice", slice, "DIMENSION=SLICE with a dimension of " + rangeText(1, sim.nDim));
        if (*dim == sim.axisPair[0] || *dim == sim.axisPair[1])
            return fault("--slice", slice, "possible: dimension " + sides[0] + " is drawn (see --columns, --rows)");
        const int last = sim.cellCount[*dim] - 1;
        const std::optional<int> place = wholeIn(sides[1], 0, last);
        if (!place) return fault("--slice", slice, "a slice of that dimension, " + rangeText(0, last));
        sim.sliceSel[*dim] = static_cast<std::int16_t>(*place);
    }
    return true;
}

/// The fastest arrow becomes as long as the smallest cell.
void fitArrows(SimState& sim) {
    double fastest = 0;
    double smallest = 0;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            const double speed = std::abs(double(sim.velocity(cell, dim)));
            const double size = sim.cellSize(cell, dim);
            if (std::isfinite(speed)) fastest = std::max(fastest, speed);
            if (size > 0 && (smallest == 0 || size < smallest)) smallest = size;
        }
    }
    constexpr float longest = 1000; // pixels: none is cut
    sim.scaleMin = fastest > 0 && smallest > 0 ? static_cast<float>(fastest / smallest) : 1;
    sim.scaleMax = longest;
}

bool fitScale(const PlotOptions& options, SimState& sim) {
    if (sim.showWhat == showVectors) {
        fitArrows(sim);
        return true;
    }
    const PlaneRange plane = planeRange(sim);
    if (!plane.found) return fault("--scale", options.scale, "possible: the plane has no finite value");
    sim.scaleMin = plane.low;
    sim.scaleMax = plane.high > plane.low ? plane.high : plane.low + std::max(1.0f, std::abs(plane.low) * 0.01f);
    return true;
}

bool takeScale(const PlotOptions& options, SimState& sim) {
    if (options.scale.empty()) return true;
    if (lowerCase(options.scale) == "auto") return fitScale(options, sim);
    const std::vector<std::string> ends = parts(options.scale, ':');
    const std::optional<double> low = ends.size() == 2 ? finiteNumber(ends[0]) : std::nullopt;
    const std::optional<double> high = ends.size() == 2 ? finiteNumber(ends[1]) : std::nullopt;
    const auto bottom = static_cast<float>(low.value_or(0));
    const auto top = static_cast<float>(high.value_or(0));
    const bool isReversed = sim.showWhat != showVectors && top < bottom; // of arrows each end has a meaning of its own
    if (!low || !high || bottom == top || isReversed || !std::isfinite(bottom) || !std::isfinite(top))
        return fault("--scale", options.scale,
                     "LOW:HIGH in the unit of the quantity, such as 20:120 for deg C, or auto");
    sim.scaleMin = bottom;
    sim.scaleMax = top;
    return true;
}

bool takeZoom(const PlotOptions& options, SimState& sim) {
    if (options.zoom.empty()) return true;
    const std::vector<std::string> stretches = parts(options.zoom, ',');
    if (static_cast<int>(stretches.size()) > sim.nDim)
        return fault("--zoom", options.zoom, "a list of at most " + std::to_string(sim.nDim) + " numbers");
    for (std::size_t k = 0; k < stretches.size(); ++k) {
        const std::optional<double> stretch = finiteNumber(stretches[k]);
        if (!stretch || !(*stretch > 0)) return fault("--zoom", options.zoom, "a list of numbers above 0, such as 1,2");
        sim.zoom[static_cast<std::int64_t>(k) + 1] = static_cast<float>(*stretch);
    }
    return true;
}

bool takeSize(const PlotOptions& options, Form& window) {
    if (options.size.empty()) return true;
    const std::optional<PixelSize> size = pictureSize(options.size);
    if (!size) return false;
    window.width = static_cast<float>(size->width);
    window.height = static_cast<float>(size->height);
    return true;
}

/// Takes the options that choose a plane. A grid of one dimension has none.
bool takePlane(const PlotOptions& options, SimState& sim) {
    return takeAxes(options, sim) && takeSlices(options, sim) && takeZoom(options, sim);
}

/// Takes all options that need a model. The scale comes last: "auto" looks at the plane that the others choose.
bool takeOptions(const PlotOptions& options, Program& program) {
    SimState& sim = program.sim;
    if (options.hasTitle) sim.graphTitle = options.title;
    return takeQuantity(options, sim, program.ui.NV_dsp.Combo1) && takeComponent(options, sim) && takeAxes(options, sim)
           && takeSlices(options, sim) && takeZoom(options, sim) && takeSize(options, program.ui.NV_out.form)
           && takeScale(options, sim);
}

bool unused(const char* option, bool isGiven, const char* chart) {
    if (isGiven) std::fprintf(stderr, "%s: it means nothing with %s\n", option, chart);
    return !isGiven;
}

/// Chooses the frames of --frame and puts the first one into the model.
ExitStatus takeFirstFrame(const PlotOptions& options, SimState& sim, PlotFrames& frames) {
    const ExitStatus status = chooseFrames(options, sim, frames);
    if (status != exitDone) return status;
    std::vector<ShownQuantity> shown;
    if (!chosenQuantities(options, sim, options.panels.empty() ? options.quantity : options.panels, shown)
        || !holdFields(frames, sim, shown, options.arrows || options.streamlines))
        return exitBadUse;
    return takeFrame(frames, 0, sim);
}

/// Whether no option is given that the style or the chart doesn't take.
bool suitsChart(const PlotOptions& options) {
    if (options.style == "classic")
        return unused("--style classic", options.history || !options.along.empty(), "a chart")
               && unused("--frame", !options.frames.empty(), "--style classic")
               && unused("--panels", !options.panels.empty(), "--style classic")
               && unused("--contours", options.contours > 0, "--style classic")
               && unused("--arrows", options.arrows, "--style classic")
               && unused("--streamlines", options.streamlines, "--style classic")
               && unused("--colors", !options.colors.empty(), "--style classic")
               && unused("--stretch", options.stretch, "--style classic")
               && unused("--show-walls", options.showWalls, "--style classic");
    if (!options.history && options.along.empty()) return true;
    const char* const chart = options.history ? "--history" : "--along";
    return unused("--slice", !options.slices.empty(), chart) && unused("--columns", !options.columns.empty(), chart)
           && unused("--rows", !options.rows.empty(), chart) && unused("--zoom", !options.zoom.empty(), chart)
           && unused("--contours", options.contours > 0, chart) && unused("--arrows", options.arrows, chart)
           && unused("--streamlines", options.streamlines, chart) && unused("--colors", !options.colors.empty(), chart)
           && unused("--stretch", options.stretch, chart) && unused("--show-walls", options.showWalls, chart)
           && unused("--panels", options.history && !options.panels.empty(), chart)
           && unused("--state", options.history && options.state, chart)
           && unused("--frame", options.history && !options.frames.empty(), chart)
           && unused("--component", options.history && !options.component.empty(), chart);
}

} // namespace

std::optional<int> componentNamed(const std::string& text, const SimState& sim, int quantity) {
    if (quantity == showConcentration) {
        const std::optional<int> species = wholeIn(text, 0, sim.nsMax);
        if (!species) fault("--component", text, "a species of the table, " + rangeText(0, sim.nsMax));
        return species;
    }
    if (!hasDirections(quantity)) {
        fault("--component", text, "used: this quantity has no components");
        return std::nullopt;
    }
    static constexpr const char* names[] = {"total", "x", "y", "z", "d4"};
    std::string known;
    for (int dim = 0; dim <= std::min<int>(sim.nDim, 4); ++dim) {
        known += std::string(names[dim]) + ", ";
        if (lowerCase(text) == names[dim]) return dim;
    }
    const std::optional<int> dim = wholeIn(text, 1, sim.nDim);
    if (!dim) fault("--component", text, "one of " + known + "or a dimension, " + rangeText(1, sim.nDim));
    return dim;
}

bool sizeCanvas(const PlotOptions& options, bool isPage, Canvas& canvas) {
    constexpr double usualWidth = 800; // units; letters are legible where that becomes the width of a page
    canvas.width = usualWidth;
    canvas.height = 0;
    canvas.scale = isPage ? 1 : 2;
    if (options.size.empty()) return true;
    const std::optional<PixelSize> size = pictureSize(options.size);
    if (!size) return false;
    if (!isPage) canvas.scale = std::max(1.0, size->width / usualWidth);
    canvas.width = size->width / canvas.scale;
    canvas.height = size->height / canvas.scale;
    return true;
}

ExitStatus writtenFigure(const FigureFile& figure, const std::string& path) {
    const FileResult written = writeFigure(figure, path);
    if (written) return exitDone;
    std::fprintf(stderr, "%s can't be written: %s\n", printableName(path).c_str(), written.reason.c_str());
    return exitFileFault;
}

int plotGeometry(const PlotOptions& options) {
    const std::optional<PictureFormat> format = pictureFormat(options.output);
    if (!format) {
        fault("--output", options.output, "a name that ends in .png, .svg, .pdf or .bmp");
        return exitBadUse;
    }
    if (!suitsChart(options) || wouldOverwrite(options.geometry, options.output)) return exitBadUse;
    Console console;
    connectConsole(console);
    Program& program = console.program;
    startProgram(program, {absolutePath("."), "norvane", {}});
    ExitStatus status = loadFor(console, options.geometry);
    if (status == exitDone && options.history) return plotHistory(options, program.sim);
    if (status == exitDone) status = standModel(console, options.state);
    if (status != exitDone) return status;
    if (!(program.sim.density[0] > 0)) {
        std::fprintf(stderr,
                     "%s: the density of the default cell (key RH) is not above 0, so there is nothing to draw\n",
                     printableName(program.sim.fileName).c_str());
        return exitNoModel;
    }
    PlotFrames frames;
    if (!options.frames.empty()) status = takeFirstFrame(options, program.sim, frames);
    if (status != exitDone) return status;
    if (!options.along.empty()) return plotProfiles(options, program.sim, frames);
    if (options.style == "report") {
        if (!takePlane(options, program.sim)) return exitBadUse;
        return plotReport(options, program.sim, frames);
    }
    if (!takeOptions(options, program)) return exitBadUse;

    Surface& surface = program.ui.NV_out.Picture1;
    surface.scaleWidth = program.ui.NV_out.form.width;
    surface.scaleHeight = program.ui.NV_out.form.height;
    const bool isPage = *format == PictureFormat::svg || *format == PictureFormat::pdf;
    const auto picture = isPage ? drawOnPage(surface, *format) : drawOnImage(surface);
    drawField(program.sim, program.ui);
    const FileResult written = writePicture(*picture, options.output, *format);
    if (written) return exitDone;
    std::fprintf(stderr, "%s can't be written: %s\n", printableName(options.output).c_str(), written.reason.c_str());
    return exitFileFault;
}

} // namespace norvane
