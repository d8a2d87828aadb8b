// The end of a run whose probes and balances have come to rest.

#include "frontends/cli/steady_options.h"

#include "check/steady.h"
#include "core/number_text.h"
#include "frontends/cli/command_options.h"
#include "frontends/cli/json_text.h"
#include "frontends/cli/option_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>

namespace norvane {

namespace {

struct SteadyOptions {
    double tolerance = 0; ///< 0: the option is not given
    double window = 0;    ///< s; 0: the usual one
};

/// The rows of an extra.
struct Source {
    const RunExtra* extra;
    std::optional<SteadyRows> rows{};
    std::string saved{}; ///< rows of the run that this one resumes; taken when the next one names the values
};

struct Steady {
    SteadyOptions options;
    std::vector<Source> sources;
    bool isReached = false;
    double window = 0; ///< s, of the trends
    std::vector<SteadyTrend> trends;
};

bool isSource(const RunExtra& extra) { return extra.lastRow && extra.steps > 0; }

/// The time in which the gas crosses the longest edge of the box, at the largest speed of the moment. Gas that hardly
/// moves is taken at a hundredth of the speed of sound, or it would never cross.
double crossingTime(const SimState& sim) {
    double longest = 0;
    for (int dim = 1; dim <= sim.nDim; ++dim)
        longest = std::max(longest, double(sim.cellPos(sim.nCells, dim)) + double(sim.cellSize(sim.nCells, dim)));
    double speed = std::sqrt(double(sim.pressure[0]) / double(sim.density[0])) / 100;
    for (int dim = 1; dim <= sim.nDim; ++dim)
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
            speed = std::max(speed, std::abs(double(sim.velocity(cell, dim))));
    return longest / speed;
}

/// s from the first row of all sources to the last.
double spanOf(const Steady& steady) {
    double span = std::numeric_limits<double>::infinity();
    for (const Source& source : steady.sources) span = std::min(span, source.rows ? source.rows->span() : 0);
    return span;
}

/// Gives the latest values; with the first of them the rows can begin, which the values name.
std::vector<double> valuesOf(Source& source, double keptTime) {
    std::vector<std::string> names;
    std::vector<double> values;
    for (const NamedValue& each : source.extra->lastRow()) {
        names.push_back(each.name);
        values.push_back(each.value);
    }
    if (source.rows || values.empty()) return values;
    source.rows.emplace(names, keptTime);
    source.rows->take(source.saved);
    return values;
}

void addRows(Steady& steady, const SimState& sim) {
    for (Source& source : steady.sources) {
        if (sim.stepCount % source.extra->steps != 0) continue; // its latest row has been taken
        const std::vector<double> values = valuesOf(source, steady.options.window);
        if (!values.empty()) source.rows->add(double(sim.dt) * sim.stepCount, values);
    }
}

bool areSteady(const Steady& steady, double window) {
    return std::all_of(steady.sources.begin(), steady.sources.end(), [&](const Source& source) {
        return source.rows && source.rows->isSteady(window, steady.options.tolerance);
    });
}

/// Of all sources, the most restless value first; empty where the rows do not fill the window.
std::vector<SteadyTrend> trendsOf(const Steady& steady, double window) {
    std::vector<SteadyTrend> all;
    for (const Source& source : steady.sources) {
        const auto trends = source.rows ? source.rows->trends(window) : std::nullopt;
        if (!trends) return {};
        all.insert(all.end(), trends->begin(), trends->end());
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const SteadyTrend& a, const SteadyTrend& b) { return a.change > b.change; });
    return all;
}

/// Looks at the rows after each step. The next step is made the last one, after which all outputs come.
void look(Steady& steady, SimState& sim) {
    const bool isDue = std::any_of(steady.sources.begin(), steady.sources.end(),
                                   [&](const Source& source) { return sim.stepCount % source.extra->steps == 0; });
    if (steady.isReached || !isDue) return;
    addRows(steady, sim);
    double window = steady.options.window > 0 ? steady.options.window : spanOf(steady) / 2;
    if (!areSteady(steady, window)) return;
    if (steady.options.window == 0) { // the speeds are looked at where nothing else speaks against it
        window = std::max(window, crossingTime(sim));
        if (!areSteady(steady, window)) return;
    }
    steady.isReached = true;
    steady.window = window;
    const std::int32_t next =
        sim.stepCount < std::numeric_limits<std::int32_t>::max() ? sim.stepCount + 1 : sim.stepCount;
    if (!sim.stopFlag) sim.stopStep = next;
}

bool finish(Steady& steady, const SimState& sim) {
    for (Source& source : steady.sources) valuesOf(source, steady.options.window);
    const double usual = std::max(spanOf(steady) / 2, crossingTime(sim));
    if (!steady.isReached) steady.window = steady.options.window > 0 ? steady.options.window : usual;
    steady.trends = trendsOf(steady, steady.window);
    return true;
}

std::string numberText(double value) { return generalText(static_cast<float>(value)); }

std::string trendText(const SteadyTrend& trend) {
    return trend.name + " moved by " + numberText(trend.range) + ", " + numberText(trend.change) + " of "
           + numberText(trend.scale);
}

std::vector<std::string> report(const Steady& steady) {
    constexpr std::size_t mostLines = 8;
    const std::string window = numberText(steady.window) + " s";
    const std::string tolerance = numberText(steady.options.tolerance);
    if (steady.trends.empty())
        return {"Steady: not known; the rows are fewer than " + std::to_string(SteadyRows::fewestRows)
                + " or do not reach back over the window of " + window + " (--window sets another)"};
    if (steady.isReached)
        return {"Steady: over " + window + ", " + trendText(steady.trends.front()) + ", the others by less"};
    std::vector<std::string> lines{"Steady: no; over the last " + window + " moved by more than " + tolerance
                                   + " of the mean:"};
    std::size_t restless = 0;
    for (const SteadyTrend& trend : steady.trends) {
        if (trend.isSteady(steady.options.tolerance)) continue;
        if (++restless <= mostLines) lines.push_back("  " + trendText(trend));
    }
    if (restless == 0) return {"Steady: at the end, over " + window + ", " + trendText(steady.trends.front())};
    if (restless > mostLines) lines.push_back("  and " + std::to_string(restless - mostLines) + " more");
    return lines;
}

std::string summary(const Steady& steady) {
    std::string members = "\"steady\": {\"reached\": " + std::string(steady.isReached ? "true" : "false")
                          + ", \"tolerance\": " + jsonNumber(steady.options.tolerance)
                          + ", \"window\": " + jsonNumber(steady.window);
    if (!steady.trends.empty())
        members += ", \"mostRestless\": " + jsonString(steady.trends.front().name)
                   + ", \"change\": " + jsonNumber(steady.trends.front().change);
    return members + "}";
}

std::string endedBy(const Steady& steady) {
    if (!steady.isReached) return {};
    return "the run is steady: for " + numberText(steady.window) + " s each value has stayed within "
           + numberText(steady.options.tolerance) + " of its mean.";
}

std::string prepare(Steady& steady, const RunContext& run) {
    for (const RunExtra& extra : run.extras)
        if (isSource(extra)) steady.sources.push_back({&extra});
    return steady.sources.empty() ? "there is nothing to watch; add --probe C7:T,p or --balance N" : "";
}

/// "WINDOW;ROWS;ROWS...", with the rows of each source; the window is 0 until it is steady.
std::string positionOf(const Steady& steady) {
    char window[40] = {};
    std::to_chars(window, window + sizeof window - 1, steady.isReached ? steady.window : 0, std::chars_format::hex);
    std::string position = window;
    for (const Source& source : steady.sources) position += ";" + (source.rows ? source.rows->text() : source.saved);
    return position;
}

std::string goOn(Steady& steady, const std::string& position) {
    const std::vector<std::string> fields = parts(position, ';');
    const char* const end = fields.front().data() + fields.front().size();
    const auto read = std::from_chars(fields.front().data(), end, steady.window, std::chars_format::hex);
    if (read.ec != std::errc() || read.ptr != end || fields.size() != steady.sources.size() + 1)
        return "its rows are not those of this run";
    steady.isReached = steady.window > 0;
    for (std::size_t k = 0; k < steady.sources.size(); ++k) steady.sources[k].saved = fields[k + 1];
    return {};
}

RunExtra extraOf(const std::shared_ptr<Steady>& steady) {
    RunExtra extra;
    extra.name = "--until-steady";
    extra.steps = 1;
    extra.prepare = [steady](const RunContext& run) { return prepare(*steady, run); };
    extra.begin = [steady](const RunContext& run) { addRows(*steady, run.sim); };
    extra.write = [steady](const RunContext& run) { look(*steady, run.sim); };
    extra.finish = [steady](const RunContext& run) { return finish(*steady, run.sim); };
    extra.report = [steady] { return report(*steady); };
    extra.summary = [steady] { return summary(*steady); };
    extra.endedBy = [steady] { return endedBy(*steady); };
    extra.position = [steady] { return positionOf(*steady); };
    extra.goOn = [steady](const RunContext&, const std::string& position) { return goOn(*steady, position); };
    return extra;
}

} // namespace

RunExtraMaker addSteadyOptions(CLI::App* run) {
    const auto options = std::make_shared<SteadyOptions>();
    CLI::Option* until =
        run->add_option("--until-steady", options->tolerance,
                        "end the run when no probe and no balance moves by more than this part of its mean")
            ->type_name("TOL")
            ->check(positiveNumber);
    run->add_option("--window", options->window,
                    "within so much time; without: half of the run so far, and the time to cross the box")
        ->type_name("SECONDS")
        ->needs(until)
        ->check(positiveTime);
    return [options]() -> std::optional<RunExtra> {
        if (options->tolerance == 0) return std::nullopt;
        const auto steady = std::make_shared<Steady>();
        steady->options = *options;
        return extraOf(steady);
    };
}

} // namespace norvane
