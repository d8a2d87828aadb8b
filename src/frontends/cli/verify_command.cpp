#include "frontends/cli/verify_command.h"

#include "check/check_text.h"
#include "core/number_text.h"
#include "frontends/cli/json_text.h"
#include "platform/files.h"
#include "platform/terminal_text.h"
#include "verify/case_run.h"

#include <cmath>
#include <cstdio>

namespace norvane {

namespace {

/// A case with what came of it.
struct VerifiedCase {
    std::string name; ///< of its folder
    Case verified;
    CaseResult result;
};

const char* kindName(CheckKind kind) { return kind == CheckKind::discrete ? "discrete" : "continuous"; }

std::string shortNumber(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return text;
}

std::string acceptanceText(const CheckResult& checked, const GridFigure& figure) {
    std::string text;
    if (figure.bound) text += "within " + shortNumber(*figure.bound);
    if (checked.between)
        text += (text.empty() ? "" : ", ") + shortNumber(checked.between->first) + " to "
                + shortNumber(checked.between->second);
    if (checked.order && figure.order)
        text += (text.empty() ? "" : ", ") + std::string("order ") + shortNumber(checked.order->first) + " to "
                + shortNumber(checked.order->second);
    return text;
}

void printCheck(const Case& verified, const CheckResult& checked) {
    const CaseCheck& check = verified.checks[checked.check];
    std::printf("  %s (%s%s)\n", printableName(check.title).c_str(), kindName(check.kind),
                checked.compensated ? ", compensated" : "");
    for (std::size_t grid = 0; grid < checked.figures.size(); ++grid) {
        const GridFigure& figure = checked.figures[grid];
        const std::string order = figure.order ? "order " + shortNumber(*figure.order) : "";
        const char* const verdict = !figure.passes ? "FAILS" : checked.isJudged ? "passes" : "";
        std::printf("    %-12s %11s  %-12s %-34s %s\n", printableName(verified.grids[grid].name).c_str(),
                    shortNumber(figure.value).c_str(), order.c_str(), acceptanceText(checked, figure).c_str(), verdict);
        if (!figure.fault.empty()) std::printf("      %s\n", printableName(figure.fault).c_str());
        if (figure.fault.empty() && !std::isfinite(figure.value))
            std::printf("      no number came out; \"norvane check\" and \"norvane run\" of %s tell why\n",
                        printableName(verified.grids[grid].drawing).c_str());
    }
}

void printCase(const VerifiedCase& entry) {
    std::printf("%s: %s\n", printableName(entry.name).c_str(), printableName(entry.verified.title).c_str());
    for (const CheckResult& checked : entry.result.checks) printCheck(entry.verified, checked);
}

std::string jsonList(const std::vector<std::string>& texts) {
    std::vector<std::string> parts;
    for (const std::string& text : texts) parts.push_back(jsonString(text));
    return "[" + joined(parts, ", ") + "]";
}

std::string jsonOptional(const std::optional<double>& value) { return value ? jsonNumber(*value) : "null"; }

std::string jsonRange(const std::optional<std::pair<double, double>>& range) {
    return range ? "[" + jsonNumber(range->first) + ", " + jsonNumber(range->second) + "]" : "null";
}

std::string jsonCheck(const Case& verified, const CheckResult& checked) {
    const CaseCheck& check = verified.checks[checked.check];
    std::vector<std::string> figures;
    for (std::size_t grid = 0; grid < checked.figures.size(); ++grid) {
        const GridFigure& figure = checked.figures[grid];
        figures.push_back("{\"grid\": " + jsonString(verified.grids[grid].name)
                          + ", \"value\": " + jsonNumber(figure.value) + ", \"bound\": " + jsonOptional(figure.bound)
                          + ", \"order\": " + jsonOptional(figure.order) + ", \"passes\": "
                          + (figure.passes ? "true" : "false") + ", \"fault\": " + jsonString(figure.fault) + "}");
    }
    return "{\"title\": " + jsonString(check.title) + ", \"kind\": \"" + kindName(check.kind) + "\", \"compensated\": "
           + (checked.compensated ? "true" : "false") + ", \"judged\": " + (checked.isJudged ? "true" : "false")
           + ", \"passes\": " + (checked.passes ? "true" : "false") + ", \"between\": " + jsonRange(checked.between)
           + ", \"orderBetween\": " + jsonRange(checked.order) + ", \"given\": " + jsonString(check.given)
           + ", \"note\": " + jsonString(check.note) + ",\n     \"figures\": [" + joined(figures, ",\n      ") + "]}";
}

std::string jsonProfile(const Case& verified, const ProfileResult& profile) {
    std::vector<std::string> points;
    for (const ProfilePoint& point : profile.points)
        points.push_back("[" + jsonNumber(point.at) + ", " + jsonNumber(point.value) + ", " + jsonNumber(point.expected)
                         + "]");
    return "{\"title\": " + jsonString(verified.profiles[profile.profile].title)
           + ", \"grid\": " + jsonString(verified.grids[profile.grid].name) + ", \"compensated\": "
           + (profile.compensated ? "true" : "false") + ", \"points\": [" + joined(points, ", ") + "]}";
}

std::string jsonCase(const VerifiedCase& entry) {
    std::vector<std::string> checks;
    std::vector<std::string> profiles;
    for (const CheckResult& checked : entry.result.checks) checks.push_back(jsonCheck(entry.verified, checked));
    for (const ProfileResult& profile : entry.result.profiles) profiles.push_back(jsonProfile(entry.verified, profile));
    return "  {\"name\": " + jsonString(entry.name) + ", \"title\": " + jsonString(entry.verified.title)
           + ",\n   \"about\": " + jsonList(entry.verified.about)
           + ",\n   \"sources\": " + jsonList(entry.verified.sources)
           + ",\n   \"passes\": " + (entry.result.passes ? "true" : "false") + ",\n   \"checks\": [\n    "
           + joined(checks, ",\n    ") + "],\n   \"profiles\": [\n    " + joined(profiles, ",\n    ") + "]}";
}

/// Gives exitDone where the case could be run, whatever came out.
ExitStatus verifyFolder(const std::string& folder, const VerifyOptions& options, VerifiedCase& entry) {
    entry.name = nameOf(absolutePath(folder));
    CaseFault fault = readCase(folder, entry.verified);
    if (fault.text.empty()) {
        CaseOptions running;
        running.firstGridOnly = options.isShort;
        running.threads = options.threads;
        running.began = [&](const CaseGrid& grid, bool compensated) {
            if (options.quiet) return;
            std::fprintf(stderr, "%s, %s%s\n", printableName(entry.name).c_str(), printableName(grid.name).c_str(),
                         compensated ? ", compensated" : "");
        };
        entry.result = runCase(entry.verified, running);
        fault = entry.result.fault;
    }
    if (fault.text.empty()) return exitDone;
    std::fprintf(stderr, "%s\n", fault.text.c_str()); // its names are made harmless where it comes from
    return fault.isOfFile ? exitFileFault : exitNoModel;
}

} // namespace

ExitStatus verifyFolders(const VerifyOptions& options) {
    std::vector<std::string> documents;
    int failing = 0;
    for (const std::string& folder : options.folders) {
        VerifiedCase entry;
        const ExitStatus status = verifyFolder(folder, options, entry);
        if (status != exitDone) return status;
        failing += entry.result.passes ? 0 : 1;
        if (options.format == "json")
            documents.push_back(jsonCase(entry));
        else
            printCase(entry);
    }
    const std::size_t all = options.folders.size();
    if (options.format == "json")
        std::printf("[\n%s\n]\n", joined(documents, ",\n").c_str());
    else
        std::printf("%zu of %zu case%s pass.\n", all - static_cast<std::size_t>(failing), all, all == 1 ? "" : "s");
    return failing == 0 ? exitDone : exitEndedByModel;
}

} // namespace norvane
