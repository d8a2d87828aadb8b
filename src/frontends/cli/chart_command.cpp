#include "frontends/cli/chart_command.h"

#include "core/number_text.h"
#include "display/probe_table.h"
#include "display/profile.h"
#include "drawing/chart.h"
#include "drawing/figure_file.h"
#include "frontends/cli/option_text.h"
#include "geometry/table_place.h"
#include "platform/letter_case.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cstdio>

namespace norvane {

namespace {

bool takeLines(const PlotOptions& options, const SimState& sim, std::vector<CellLine>& lines) {
    for (const std::string& along : options.along) {
        const std::vector<std::string> ends = parts(along, ':');
        std::optional<CellLine> line;
        if (ends.size() == 2) {
            const std::int32_t from = cellOfAddress(sim, ends[0]);
            const std::int32_t to = cellOfAddress(sim, ends[1]);
            if (from >= 1 && to >= 1) line = cellsBetween(sim, from, to);
        }
        if (!line)
            return fault("--along", along,
                         "two cells of the drawing, such as C7:C30, in one row, one column, or at one place of "
                         "several layers");
        if (!lines.empty() && lines.front().dim != line->dim)
            return fault("--along", along, "possible beside the others: all lines must run along one dimension");
        line->name = along;
        lines.push_back(*line);
    }
    return true;
}

bool takeScale(const PlotOptions& options, LineChart& chart) {
    if (options.scale.empty() || lowerCase(options.scale) == "auto") return true;
    const bool isLog = lowerCase(options.scale) == "log";
    const std::vector<std::string> ends = parts(options.scale, ':');
    const std::optional<double> low = ends.size() == 2 ? finiteNumber(ends[0]) : std::nullopt;
    const std::optional<double> high = ends.size() == 2 ? finiteNumber(ends[1]) : std::nullopt;
    const Range range{low.value_or(0), high.value_or(0)};
    if (!isLog && !(low && high && range.low < range.high))
        return fault("--scale", options.scale, "LOW:HIGH, log or auto");
    for (ChartPanel& panel : chart.panels) {
        panel.isLog = isLog;
        panel.hasRange = !isLog;
        if (!isLog) panel.range = range;
    }
    return true;
}

/// The lines of all frames in one chart, named after their moments.
ExitStatus chartOfFrames(const PlotFrames& frames,
                         SimState& sim,
                         const std::vector<CellLine>& lines,
                         const std::vector<ShownQuantity>& shown,
                         LineChart& chart) {
    if (frames.steps.size() * lines.size() > lineStyles) {
        std::fprintf(stderr,
                     "--frame: %zu frames make more lines than the %zu that a chart can tell apart; name fewer steps\n",
                     frames.steps.size(), lineStyles);
        return exitBadUse;
    }
    for (std::size_t k = 0; k < frames.steps.size(); ++k) {
        const ExitStatus status = takeFrame(frames, k, sim);
        if (status != exitDone) return status;
        std::vector<CellLine> named = lines;
        for (CellLine& line : named) line.name = (lines.size() > 1 ? line.name + ", " : "") + momentText(sim);
        LineChart one = profileChart(sim, named, shown, "");
        if (k == 0)
            chart = std::move(one);
        else
            addMoment(chart, one);
    }
    chart.subtitle = lines.size() > 1 ? "" : lines.front().name;
    return exitDone;
}

ExitStatus writeChart(const PlotOptions& options, LineChart& chart) {
    if (!takeScale(options, chart)) return exitBadUse;
    if (options.hasTitle) chart.title = options.title;
    const PictureFormat format = pictureFormat(options.output).value_or(PictureFormat::png);
    Canvas canvas;
    if (!sizeCanvas(options, format == PictureFormat::svg || format == PictureFormat::pdf, canvas)) return exitBadUse;
    connectTextWidth(canvas);
    if (canvas.height == 0) canvas.height = chartHeight(chart, canvas);
    const FigureFile figure = connectFigure(canvas, format);
    drawChart(chart, canvas);
    return writtenFigure(figure, options.output);
}

/// The columns of a table that --column and --quantity choose; all without them. Gives false after a message.
bool chooseColumns(const PlotOptions& options, const ProbeTable& table, std::vector<std::size_t>& chosen) {
    const std::vector<std::string> quantities =
        options.quantity.empty() ? std::vector<std::string>() : parts(options.quantity, ',');
    const auto isSame = [](const std::string& a, const std::string& b) { return lowerCase(a) == lowerCase(b); };
    const auto take = [&](const char* option, const std::string& given, const auto& isMeant) {
        bool found = false;
        for (std::size_t k = 0; k < table.columns.size(); ++k) {
            if (!isMeant(table.columns[k])) continue;
            found = true;
            if (std::find(chosen.begin(), chosen.end(), k) == chosen.end()) chosen.push_back(k);
        }
        std::string names;
        for (std::size_t k = 0; k < std::min<std::size_t>(table.columns.size(), 20); ++k)
            names += (k > 0 ? ", " : "") + printableName(table.columns[k].name);
        return found || fault(option, given, "one of the probes: " + names);
    };
    for (const std::string& name : options.probeColumns)
        if (!take("--column", name, [&](const ProbeColumn& column) {
                return isSame(column.name, name) || isSame(column.name + " [" + column.unit + "]", name);
            }))
            return false;
    for (const std::string& name : quantities)
        if (!take("--quantity", name, [&](const ProbeColumn& column) { return isSame(column.quantity, name); }))
            return false;
    if (!quantities.empty() || !options.probeColumns.empty()) return true;
    for (std::size_t k = 0; k < table.columns.size(); ++k) chosen.push_back(k);
    return true;
}

ExitStatus probesFault(const std::string& path, const std::string& what) {
    std::fprintf(stderr, "%s: %s\n", printableName(path).c_str(), what.c_str());
    return exitFileFault;
}

ExitStatus readProbesOf(const std::string& path, const PlotOptions& options, ProbeTable& table) {
    constexpr std::uint64_t largest = std::uint64_t{1} << 29;
    if (!stampOf(path).exists)
        return probesFault(path, "there is no such file. A run makes it, for example: norvane run "
                                     + printableName(options.geometry) + " --probe C7:T --probe-every 10");
    if (stampOf(path).size > largest) return probesFault(path, "it is larger than 512 MB: too large for a chart");
    std::string text;
    const FileResult read = readFile(path, text);
    if (!read) return probesFault(path, "it can't be read: " + read.reason);
    const std::string wrong = readProbes(text, table);
    if (!wrong.empty()) return probesFault(path, wrong);
    if (table.columns.empty() || table.times.empty()) return probesFault(path, "there are no values of probes in it");
    return exitDone;
}

} // namespace

bool chosenQuantities(const PlotOptions& options,
                      const SimState& sim,
                      const std::string& list,
                      std::vector<ShownQuantity>& shown) {
    const std::vector<std::string> names =
        list.empty() ? std::vector{std::to_string(drawnQuantity(sim.showWhat))} : parts(list, ',');
    for (const std::string& name : names) {
        const int number = catalogueNumber(name);
        int component = sim.showDims;
        if (!options.component.empty() && (hasComponents(number) || names.size() == 1)) {
            const std::optional<int> given = componentNamed(options.component, sim, number);
            if (!given) return false;
            component = *given;
        }
        ShownQuantity quantity;
        const std::string wrong = chooseShown(sim, name, component, quantity);
        if (!wrong.empty()) {
            std::fprintf(stderr, "%s: %s\n", options.panels.empty() ? "--quantity" : "--panels",
                         printableName(wrong).c_str());
            return false;
        }
        shown.push_back(quantity);
    }
    return true;
}

std::string momentOf(const PlotOptions& options, const SimState& sim) {
    return options.state ? "saved at step " + std::to_string(sim.stepCount) : momentText(sim);
}

ExitStatus plotLines(const PlotOptions& options,
                     SimState& sim,
                     const PlotFrames& frames,
                     const std::vector<CellLine>& lines,
                     const std::string& quantities) {
    std::vector<ShownQuantity> shown;
    if (!chosenQuantities(options, sim, quantities, shown)) return exitBadUse;
    LineChart chart;
    if (frames.steps.size() < 2) {
        chart = profileChart(sim, lines, shown, momentOf(options, sim));
    } else {
        const ExitStatus status = chartOfFrames(frames, sim, lines, shown, chart);
        if (status != exitDone) return status;
    }
    return writeChart(options, chart);
}

ExitStatus plotProfiles(const PlotOptions& options, SimState& sim, const PlotFrames& frames) {
    std::vector<CellLine> lines;
    if (!takeLines(options, sim, lines)) return exitBadUse;
    return plotLines(options, sim, frames, lines, options.panels.empty() ? options.quantity : options.panels);
}

ExitStatus plotHistory(const PlotOptions& options, const SimState& sim) {
    const std::string path =
        options.probes.empty() ? joinPath(sim.inputDir, sim.baseName + "_probes.csv") : options.probes;
    ProbeTable table;
    const ExitStatus status = readProbesOf(path, options, table);
    if (status != exitDone) return status;
    std::vector<std::size_t> chosen;
    if (!chooseColumns(options, table, chosen)) return exitBadUse;
    LineChart chart = historyChart(sim, table, chosen);
    chart.title = sim.baseName;
    chart.subtitle =
        "Probes, to step " + generalText(table.steps.back()) + ", t = " + shortText(table.times.back()) + " s";
    return writeChart(options, chart);
}

} // namespace norvane
