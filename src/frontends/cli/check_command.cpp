#include "frontends/cli/check_command.h"

#include "check/model_rules.h"
#include "core/number_text.h"
#include "frontends/cli/console.h"
#include "frontends/cli/json_text.h"
#include "frontends/cli/kind_picture.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace norvane {

namespace {

std::string number(double value) { return generalText(static_cast<float>(value)); }

const char* severityText(Severity severity) {
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

std::string joined(const std::vector<std::string>& parts, const char* separator) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : separator) + part;
    return text;
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
    std::string text = "steps: " + std::to_string(summary.steps) + " of " + number(summary.dt) + " s, "
                       + number(summary.dt * summary.steps) + " s in all";
    if (limit.cell == 0) return text;
    return text + "; DT is " + number(summary.dt / limit.step) + " of the largest stable step (by "
           + limitName(summary.stable.kind()) + ")";
}

/// What the model is, in a few lines.
void printSummary(const Checkup& checkup, bool suggests) {
    const ModelSummary& summary = checkup.summary;
    std::vector<std::string> shape;
    std::vector<std::string> lengths;
    for (const int count : summary.shape) shape.push_back(std::to_string(count));
    for (const double length : summary.lengths) lengths.push_back(number(length));
    std::printf("  %s cells, %s m, %d species; %s\n", joined(shape, " x ").c_str(), joined(lengths, " x ").c_str(),
                summary.species, kindsText(summary).c_str());
    const std::string gas = gasNear(summary.gasFactor);
    std::printf("  gas constant %s J/(kg K)%s, speed of sound %s m/s; memory %s MB\n",
                number(summary.gasFactor).c_str(), gas.empty() ? "" : (" (near " + gas + ")").c_str(),
                number(summary.soundSpeed).c_str(), number(std::ceil(summary.bytes / 1e6)).c_str());
    std::printf("  %s\n", stepText(summary).c_str());
    if (!suggests || suggestedStep(summary.stable) == 0) return;
    std::printf("  write DT %s\n", number(suggestedStep(summary.stable)).c_str());
}

void printHeldBack(const std::string& geometry, const Findings& findings) {
    for (const auto& [rule, count] : findings.countOfRule)
        if (count > Findings::keptOfRule)
            std::printf("%s: ... and %lld more of the kind \"%s\"\n", printableName(geometry).c_str(),
                        static_cast<long long>(count - Findings::keptOfRule), rule.c_str());
}

void printText(const std::string& geometry, const Checkup& checkup, const CheckOptions& options) {
    for (const Finding& finding : checkup.findings.list) std::printf("%s\n", findingLine(geometry, finding).c_str());
    printHeldBack(geometry, checkup.findings);
    std::printf("%s: %s, %s\n", printableName(geometry).c_str(), counted(checkup.findings.errors, "error").c_str(),
                counted(checkup.findings.warnings, "warning").c_str());
    if (checkup.summary.cells > 0) printSummary(checkup, options.suggest);
}

std::string jsonFinding(const Finding& finding) {
    return std::string("{\"severity\": \"") + severityText(finding.severity) + "\", \"rule\": \"" + finding.rule
           + "\", \"address\": " + jsonString(spreadsheetAddress(finding.place))
           + ", \"row\": " + std::to_string(finding.place.row) + ", \"column\": " + std::to_string(finding.place.column)
           + ", \"count\": " + std::to_string(finding.count) + ", \"item\": " + jsonString(finding.item)
           + ", \"text\": " + jsonString(finding.text) + "}";
}

std::string jsonSummary(const ModelSummary& summary) {
    std::vector<std::string> shape;
    std::vector<std::string> lengths;
    for (const int count : summary.shape) shape.push_back(std::to_string(count));
    for (const double length : summary.lengths) lengths.push_back(jsonNumber(length));
    return "{\"cells\": " + std::to_string(summary.cells) + ", \"shape\": [" + joined(shape, ", ") + "], \"lengths\": ["
           + joined(lengths, ", ") + "], \"species\": " + std::to_string(summary.species)
           + ", \"walls\": " + std::to_string(summary.walls) + ", \"inlets\": " + std::to_string(summary.inlets)
           + ", \"outlets\": " + std::to_string(summary.outlets) + ", \"soundSpeed\": " + jsonNumber(summary.soundSpeed)
           + ", \"gasConstant\": " + jsonNumber(summary.gasFactor) + ", \"bytes\": " + jsonNumber(summary.bytes)
           + ", \"dt\": " + jsonNumber(summary.dt)
           + ", \"largestStableStep\": " + jsonNumber(summary.stable.smallest().step) + ", \"stepLimit\": \""
           + limitName(summary.stable.kind()) + "\"}";
}

std::string jsonOf(const std::string& geometry, const Checkup& checkup) {
    std::vector<std::string> findings;
    for (const Finding& finding : checkup.findings.list) findings.push_back("    " + jsonFinding(finding));
    return "  {\"geometry\": " + jsonString(geometry) + ", \"errors\": " + std::to_string(checkup.findings.errors)
           + ", \"warnings\": " + std::to_string(checkup.findings.warnings)
           + ",\n   \"summary\": " + jsonSummary(checkup.summary) + ",\n   \"findings\": ["
           + (findings.empty() ? "" : "\n") + joined(findings, ",\n") + "]}";
}

/// Gives false after a message.
bool takesPicture(const CheckOptions& options) {
    const bool isOne = options.geometries.size() == 1;
    if (!isOne)
        std::fprintf(stderr, "--picture: one picture shows one geometry\n");
    else if (!isPictureName(options.picture))
        std::fprintf(stderr, "--picture: \"%s\" is not a name that ends in .png, .svg, .pdf or .bmp\n",
                     printableName(options.picture).c_str());
    return isOne && isPictureName(options.picture) && !wouldOverwrite(options.geometries.front(), options.picture);
}

bool writePictureOf(const SimState& sim, const Checkup& checkup, const std::string& path) {
    if (checkup.summary.cells == 0) {
        std::fprintf(stderr, "There is no model to draw a picture of.\n");
        return true; // the findings say why
    }
    const FileResult written = writeKindPicture(sim, checkup.findings, path);
    if (!written)
        std::fprintf(stderr, "%s can't be written: %s\n", printableName(path).c_str(), written.reason.c_str());
    return static_cast<bool>(written);
}

} // namespace

std::string findingLine(const std::string& geometry, const Finding& finding) {
    const std::string address = spreadsheetAddress(finding.place);
    return printableName(geometry) + ":" + (address.empty() ? "" : address + ":") + " " + severityText(finding.severity)
           + ": " + (finding.item.empty() ? "" : "\"" + printableName(finding.item) + "\": ")
           + printableName(finding.text) + otherPlaces(finding);
}

ExitStatus checkGeometries(const CheckOptions& options) {
    bool passes = true;
    std::vector<std::string> documents;
    if (!options.picture.empty() && !takesPicture(options)) return exitBadUse;
    for (const std::string& geometry : options.geometries) {
        SimState sim;
        const Checkup checkup = checkGeometry(geometry, sim);
        passes = passes && checkup.findings.errors == 0 && !(options.strict && checkup.findings.warnings > 0);
        if (options.format == "json")
            documents.push_back(jsonOf(geometry, checkup));
        else
            printText(geometry, checkup, options);
        if (!options.picture.empty() && !writePictureOf(sim, checkup, options.picture)) return exitFileFault;
    }
    if (options.format == "json") std::printf("[\n%s\n]\n", joined(documents, ",\n").c_str());
    return passes ? exitDone : exitNoModel;
}

} // namespace norvane
