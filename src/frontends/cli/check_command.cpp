#include "frontends/cli/check_command.h"

#include "check/check_text.h"
#include "core/number_text.h"
#include "frontends/cli/json_text.h"
#include "frontends/cli/kind_picture.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace norvane {

namespace {

void printText(const std::string& geometry, const Checkup& checkup, const CheckOptions& options) {
    for (const std::string& line : checkLines(geometry, checkup, options.suggest))
        std::printf("%s\n", printableName(line).c_str());
}

std::string jsonFinding(const Finding& finding) {
    return std::string("{\"severity\": \"") + severityName(finding.severity) + "\", \"rule\": \"" + finding.rule
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
    std::vector<std::string> limits;
    for (const NamedLimit& limit : summary.limits)
        limits.push_back("\"" + std::string(limitName(limit.kind)) + "\": {\"step\": " + jsonNumber(limit.step)
                         + ", \"address\": " + jsonString(spreadsheetAddress(limit.place)) + "}");
    return "{\"cells\": " + std::to_string(summary.cells) + ", \"shape\": [" + joined(shape, ", ") + "], \"lengths\": ["
           + joined(lengths, ", ") + "], \"species\": " + std::to_string(summary.species)
           + ", \"walls\": " + std::to_string(summary.walls) + ", \"inlets\": " + std::to_string(summary.inlets)
           + ", \"outlets\": " + std::to_string(summary.outlets) + ", \"soundSpeed\": " + jsonNumber(summary.soundSpeed)
           + ", \"gasConstant\": " + jsonNumber(summary.gasFactor) + ", \"bytes\": " + jsonNumber(summary.bytes)
           + ", \"dt\": " + jsonNumber(summary.dt) + ", \"secondsPerStep\": " + jsonNumber(summary.stepSeconds)
           + ", \"largestStableStep\": " + jsonNumber(summary.stable.smallest().step) + ", \"limits\": {"
           + joined(limits, ", ") + "}, \"stepLimit\": \"" + limitName(summary.stable.kind()) + "\"}";
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
    if (options.geometries.size() == 1) return mayBePicture(options.geometries.front(), options.picture);
    std::fprintf(stderr, "--picture: one picture shows one geometry\n");
    return false;
}

PictureMarks marksOf(const Findings& findings) {
    PictureMarks marks{{}, "see the findings of norvane check"};
    for (const Finding& finding : findings.list) {
        if (finding.severity == Severity::note) continue;
        marks.places.push_back(finding.place);
        marks.places.insert(marks.places.end(), finding.also.begin(), finding.also.end());
    }
    return marks;
}

bool writePictureOf(const SimState& sim, const Checkup& checkup, const std::string& path) {
    if (checkup.summary.cells > 0) return drawnPicture(sim, marksOf(checkup.findings), path);
    std::fprintf(stderr, "There is no model to draw a picture of.\n");
    return true; // the findings say why
}

} // namespace

ExitStatus checkGeometries(const CheckOptions& options) {
    bool passes = true;
    std::vector<std::string> documents;
    if (!options.picture.empty() && !takesPicture(options)) return exitBadUse;
    for (const std::string& geometry : options.geometries) {
        SimState sim;
        Checkup checkup = checkGeometry(geometry, sim);
        const bool isRunnable = checkup.summary.cells > 0 && checkup.findings.errors == 0;
        if (!options.picture.empty() && !writePictureOf(sim, checkup, options.picture)) return exitFileFault;
        if (isRunnable) checkup.summary.stepSeconds = measuredStep(sim);
        passes = passes && checkup.findings.errors == 0 && !(options.strict && checkup.findings.warnings > 0);
        if (options.format == "json")
            documents.push_back(jsonOf(geometry, checkup));
        else
            printText(geometry, checkup, options);
    }
    if (options.format == "json") std::printf("[\n%s\n]\n", joined(documents, ",\n").c_str());
    return passes ? exitDone : exitNoModel;
}

} // namespace norvane
