#include "frontends/cli/run_report.h"

#include "check/check_text.h"
#include "check/model_rules.h"
#include "check/table_rules.h"
#include "core/number_text.h"
#include "core/quantities.h"
#include "frontends/cli/json_text.h"
#include "platform/terminal_text.h"

namespace norvane {

namespace {

std::string number(double value) { return generalText(static_cast<float>(value)); }

/// The quantities of the table at the end, each as a total.
constexpr int reported[] = {showTemperature, showPressure, showVelocity, showDensity};

const Quantity& quantityOf(int quantity) { return quantities()[static_cast<std::size_t>(quantity) - 1]; }

double rateOf(const RunResult& result) {
    return result.seconds > 0 ? double(result.sim.nCells) * double(result.steps) / result.seconds : 0;
}

} // namespace

std::vector<std::string> findingLines(const std::string& geometry, const Findings& findings) {
    constexpr std::size_t most = 5;
    std::vector<std::string> lines;
    std::size_t more = 0;
    for (const Finding& finding : findings.list) {
        if (finding.severity == Severity::note) continue;
        if (lines.size() < most)
            lines.push_back(printableName(findingLine(geometry, finding)));
        else
            ++more;
    }
    if (more > 0)
        lines.push_back("... and " + std::to_string(more) + " more; \"norvane check " + printableName(geometry)
                        + "\" shows all");
    return lines;
}

std::string addressOf(const SimState& sim, std::int32_t cell) { return spreadsheetAddress(placeOf(sim, cell)); }

std::string failureHint(const std::string& geometry, const Checkup& checkup, const RunWatch& watch) {
    const std::string check = "\"norvane check " + printableName(geometry) + "\"";
    if (checkup.findings.errors > 0) return "The drawing has values that no gas has: " + check + " names them.";
    const StableStep& stable = checkup.summary.stable;
    const LimitingCell limit = stable.smallest();
    const double atStart = limit.cell != 0 ? checkup.summary.dt / limit.step : 0;
    if (atStart > 1)
        return "DT is " + number(atStart) + " times the largest stable step. Try DT " + number(suggestedStep(stable))
               + ".";
    if (checkup.findings.warnings > 0) return "The drawing may be the cause: " + check + " says what is odd about it.";
    if (watch.largestFraction > 0.9)
        return "DT came to " + number(watch.largestFraction)
               + " of the largest stable step. Try a smaller time step DT.";
    return "The step was stable at the start (" + number(atStart)
           + " of the largest one): look at the cell named above, at "
             "what flows into it and what leaves it. A smaller time step DT may help.";
}

std::vector<std::string> resultLines(const RunResult& result) {
    std::vector<std::string> lines;
    lines.push_back("  Simulated: " + number(double(result.sim.dt) * double(result.steps)) + " s in "
                    + std::to_string(result.steps) + (result.steps == 1 ? " step" : " steps"));
    for (const int quantity : reported) {
        const FieldExtremes extremes = extremesOf(result.sim, quantity, 0);
        if (extremes.lowCell == 0) continue;
        lines.push_back("  " + std::string(quantityOf(quantity).name) + ": " + number(extremes.low) + " ("
                        + addressOf(result.sim, extremes.lowCell) + ") to " + number(extremes.high) + " ("
                        + addressOf(result.sim, extremes.highCell) + ") " + quantityOf(quantity).unit);
    }
    if (result.watch.limitingCell != 0)
        lines.push_back("  DT: at most " + number(result.watch.largestFraction) + " of the largest stable step ("
                        + addressOf(result.sim, result.watch.limitingCell) + ")");
    lines.push_back("  Rate: " + number(rateOf(result) / 1e6) + " million cells x steps/s");
    for (const std::string& line : result.lines) lines.push_back("  " + line);
    if (!result.files.empty()) lines.push_back("  Files: " + joined(result.files, ", "));
    return lines;
}

std::string resultJson(const RunResult& result) {
    std::string json = "{\n  \"geometry\": " + jsonString(result.sim.fileName) + ",\n  \"end\": \"" + result.end
                       + "\",\n  \"step\": " + std::to_string(result.sim.stepCount) + ",\n  \"simulatedSeconds\": "
                       + jsonNumber(double(result.sim.dt) * double(result.steps)) + ",\n  \"seconds\": "
                       + jsonNumber(result.seconds) + ",\n  \"cellStepsPerSecond\": " + jsonNumber(rateOf(result))
                       + ",\n  \"largestFractionOfStableStep\": " + jsonNumber(result.watch.largestFraction);
    for (const int quantity : reported) {
        const FieldExtremes extremes = extremesOf(result.sim, quantity, 0);
        json += ",\n  " + jsonString(quantityOf(quantity).name) + ": {\"unit\": "
                + jsonString(quantityOf(quantity).unit) + ", \"low\": " + jsonNumber(extremes.low) + ", \"lowCell\": "
                + jsonString(addressOf(result.sim, extremes.lowCell)) + ", \"high\": " + jsonNumber(extremes.high)
                + ", \"highCell\": " + jsonString(addressOf(result.sim, extremes.highCell)) + "}";
    }
    for (const std::string& member : result.members)
        if (!member.empty()) json += ",\n  " + member;
    json += ",\n  \"files\": [";
    for (const std::string& file : result.files) json += (&file == result.files.data() ? "" : ", ") + jsonString(file);
    return json + "]\n}\n";
}

} // namespace norvane
