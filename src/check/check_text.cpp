#include "check/check_text.h"

#include "check/model_rules.h"
#include "core/number_text.h"

#include <cmath>
#include <utility>

namespace norvane {

namespace {

std::string number(double value) { return generalText(static_cast<float>(value)); }

/// With four digits, for people.
std::string rounded(double value) {
    if (value == 0 || !std::isfinite(value)) return number(value);
    const double unit = std::pow(10, std::floor(std::log10(std::abs(value))) - 3);
    return number(std::round(value / unit) * unit);
}

std::string counted(std::int64_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

/// The other places of a finding: " (also B4, B5 and 17 more)".
std::string otherPlaces(const Finding& finding) {
    if (finding.also.empty()) return {};
    std::vector<std::string> places;
    for (const TablePlace& place : finding.also) places.push_back(spreadsheetAddress(place));
    const std::int64_t more = finding.count - 1 - static_cast<std::int64_t>(places.size());
    return " (also " + joined(places, ", ") + (more > 0 ? " and " + std::to_string(more) + " more" : "") + ")";
}

/// "3.2 s", "17 min", "5.1 h".
std::string timeText(double seconds) {
    if (seconds < 120) return rounded(seconds < 0.1 ? 0.1 : std::round(seconds * 10) / 10) + " s";
    if (seconds < 7200) return rounded(std::round(seconds / 60)) + " min";
    return rounded(std::round(seconds / 360) / 10) + " h";
}

std::string kindsText(const ModelSummary& summary) {
    const std::pair<std::int32_t, const char*> counts[] = {
        {summary.walls, "wall"},         {summary.inlets, "inlet"},  {summary.outlets, "outlet"},
        {summary.held, "held"},          {summary.heated, "heated"}, {summary.reacting, "reacting"},
        {summary.radiating, "radiating"}};
    std::vector<std::string> parts;
    for (const auto& [count, name] : counts)
        if (count > 0) parts.push_back(std::to_string(count) + " " + name);
    return parts.empty() ? "all cells are gas" : "of them " + joined(parts, ", ");
}

std::string stepText(const ModelSummary& summary) {
    const LimitingCell limit = summary.stable.smallest();
    if (summary.steps < 0) return "steps of " + number(summary.dt) + " s until the run is stopped";
    std::string text = "steps: " + std::to_string(summary.steps) + " of " + number(summary.dt) + " s, "
                       + rounded(summary.dt * summary.steps) + " s in all";
    if (summary.stepSeconds > 0)
        text += ", about " + timeText(summary.stepSeconds * summary.steps) + " on this machine";
    if (limit.cell == 0) return text;
    return text + "; DT is " + rounded(summary.dt / limit.step) + " of the largest stable step (by "
           + limitName(summary.stable.kind()) + ")";
}

/// What a lower pressure would save where the flow is much slower than sound.
std::string scaledGasText(const ModelSummary& summary) {
    constexpr double slow = 20;   // sound by flow
    constexpr double enough = 10; // of the scaled gas
    const bool isSlow =
        summary.fastest > 0 && summary.soundSpeed > slow * summary.fastest && summary.stable.kind() == StepLimit::sound;
    if (!isSlow) return {};
    const double gain = summary.soundSpeed / (enough * summary.fastest);
    const double seconds = summary.stepSeconds * summary.steps;
    return "  the flow is " + rounded(summary.soundSpeed / summary.fastest)
           + " times slower than sound: with PP divided by " + rounded(gain * gain) + " sound would still be "
           + rounded(enough) + " times faster, and DT could be up to " + rounded(gain) + " times larger"
           + (seconds > 0 ? " (" + timeText(seconds * (1 - 1 / gain)) + " saved)" : "")
           + ". Speeds, temperatures, RH and pressure differences in Pa stay as they are as long as these are small "
             "beside PP; the gas constant does not";
}

std::vector<std::string> summaryLines(const ModelSummary& summary, bool suggests) {
    std::vector<std::string> shape;
    std::vector<std::string> lengths;
    for (const int count : summary.shape) shape.push_back(std::to_string(count));
    for (const double length : summary.lengths) lengths.push_back(rounded(length));
    const std::string gas = gasNear(summary.gasFactor);
    std::vector<std::string> lines = {"  " + joined(shape, " x ") + " cells, " + joined(lengths, " x ") + " m, "
                                          + std::to_string(summary.species) + " species; " + kindsText(summary),
                                      "  gas constant " + rounded(summary.gasFactor) + " J/(kg K)"
                                          + (gas.empty() ? "" : " (near " + gas + ")") + ", speed of sound "
                                          + rounded(summary.soundSpeed) + " m/s; memory "
                                          + number(std::ceil(summary.bytes / 1e6)) + " MB",
                                      "  " + stepText(summary)};
    if (!suggests) return lines;
    std::vector<std::string> limits;
    for (const NamedLimit& limit : summary.limits)
        limits.push_back(std::string(limitText(limit.kind)) + " " + rounded(limit.step) + " s ("
                         + spreadsheetAddress(limit.place) + ")");
    if (!limits.empty()) lines.push_back("  largest stable DT by " + joined(limits, ", by "));
    if (suggestedStep(summary.stable) > 0) lines.push_back("  write DT " + number(suggestedStep(summary.stable)));
    const std::string scaled = scaledGasText(summary);
    if (!scaled.empty()) lines.push_back(scaled);
    return lines;
}

} // namespace

std::string joined(const std::vector<std::string>& parts, const char* separator) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : separator) + part;
    return text;
}

const char* severityName(Severity severity) {
    switch (severity) {
    case Severity::error: return "error";
    case Severity::warning: return "warning";
    default: return "note";
    }
}

const char* limitName(StepLimit kind) {
    switch (kind) {
    case StepLimit::sound: return "sound";
    case StepLimit::conduction: return "conduction";
    case StepLimit::friction: return "friction";
    case StepLimit::reaction: return "reaction";
    default: return "none";
    }
}

std::string findingLine(const std::string& geometry, const Finding& finding) {
    const std::string address = spreadsheetAddress(finding.place);
    return geometry + ":" + (address.empty() ? "" : address + ":") + " " + severityName(finding.severity) + ": "
           + (finding.item.empty() ? "" : "\"" + finding.item + "\": ") + finding.text + otherPlaces(finding);
}

std::vector<std::string> checkLines(const std::string& geometry, const Checkup& checkup, bool suggests) {
    std::vector<std::string> lines;
    for (const Finding& finding : checkup.findings.list) lines.push_back(findingLine(geometry, finding));
    for (const auto& [rule, count] : checkup.findings.countOfRule)
        if (count > Findings::keptOfRule) {
            std::string line = geometry + ": ... and " + std::to_string(count - Findings::keptOfRule);
            line += " more of the kind \"" + rule + "\"";
            lines.push_back(std::move(line));
        }
    lines.push_back(geometry + ": " + counted(checkup.findings.errors, "error") + ", "
                    + counted(checkup.findings.warnings, "warning"));
    if (checkup.summary.cells > 0)
        for (std::string& line : summaryLines(checkup.summary, suggests)) lines.push_back(std::move(line));
    return lines;
}

} // namespace norvane
