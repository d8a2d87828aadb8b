// Probes of a run: values of some cells over time, in m_probes.csv.

#include "frontends/cli/probe_options.h"

#include "exchange/probes.h"
#include "exchange/row_file.h"
#include "exchange/state_file.h"
#include "exchange/text_lines.h"
#include "frontends/cli/command_options.h"
#include "frontends/cli/run_command.h"
#include "platform/files.h"

#include <charconv>
#include <memory>

namespace norvane {

namespace {

constexpr const char* ending = "_probes.csv";
constexpr std::int32_t usualInterval = 10;

struct ProbeOptions {
    std::vector<std::string> probes;
    int every = 0;
    bool ignoresFile = false;
};

/// The probes of a run.
struct Probes {
    ProbeOptions options;
    std::string listPath;        ///< of the probes of the drawing; empty: there is none
    std::vector<TextLine> lines; ///< of that file
    std::string listFault;
    std::int32_t every = usualInterval;

    std::vector<Probe> columns;
    RowFile file;
    RowFileContent old;
    std::vector<double> values; ///< of the latest row
    std::int32_t latestStep = -1;
    int missing = 0; ///< rows that could not be written
};

/// "m.probes" beside the geometry "m.gmt".
std::string listPathOf(const std::string& geometry) {
    const std::string name = nameOf(geometry);
    return joinPath(folderOf(geometry), name.substr(0, name.find('.')) + ".probes");
}

/// "every 5".
bool isInterval(const std::string& text, std::int32_t& every) {
    constexpr std::string_view word = "every ";
    if (!text.starts_with(word)) return false;
    const char* const end = text.data() + text.size();
    std::int32_t steps = 0;
    const auto read = std::from_chars(text.data() + text.find_first_not_of(' ', word.size()), end, steps);
    if (read.ec != std::errc() || read.ptr != end || steps < 1) return false;
    every = steps;
    return true;
}

/// Reads the probes of the drawing: a probe or "every N" on a line.
void readList(Probes& probes) {
    probes.listFault = readTextLines(probes.listPath, probes.lines);
    std::erase_if(probes.lines, [&](const TextLine& line) { return isInterval(line.text, probes.every); });
}

std::string faultOfLine(const TextLine& line, const std::string& fault) {
    return ", line " + std::to_string(line.number) + ", " + line.text + ": " + fault;
}

std::string faultOfOption(const std::string& text, const std::string& fault) {
    return "--probe " + text + ": " + fault;
}

std::string faultOfProbes(Probes& probes, const RunContext& run) {
    const std::string list = nameOf(probes.listPath);
    if (!probes.listFault.empty()) return list + ": " + probes.listFault + "; --no-probes runs without it";
    for (const TextLine& line : probes.lines) {
        const std::string fault = parseProbe(run.sim, line.text, run.labels, probes.columns);
        if (!fault.empty()) return list + faultOfLine(line, fault);
    }
    for (const std::string& text : probes.options.probes) {
        const std::string fault = parseProbe(run.sim, text, run.labels, probes.columns);
        if (!fault.empty()) return faultOfOption(text, fault);
    }
    if (!probes.columns.empty()) return {};
    return probes.listPath.empty() ? "--probe-every needs a --probe, or a file m.probes beside the geometry m.gmt"
                                   : list + " names no probe, such as C7:T,p; --no-probes runs without it";
}

/// A plain run replaces the table of an earlier one, and nothing else. One that goes on from a saved state adds to it,
/// where no row is missing and none is there already.
std::string faultOfOldFile(Probes& probes, const RunContext& run) {
    const std::string name = nameOf(probes.file.path);
    const FileResult read = lookAt(probes.file, probes.old);
    if (!read) return name + " can't be read: " + read.reason;
    const RowFileContent& old = probes.old;
    if (!old.exists) return {};
    if (!old.isTable) return name + " holds something else, which would be lost; rename it";
    if (!run.goesOn) return {};
    if (!old.isSame) return name + " has other columns; give the probes that it was begun with, or rename it";
    if (!run.options.recall) return {};
    const std::int32_t step = savedStep(run.sim);
    if (step < 0) return {}; // the recall will tell
    const std::string rows = name + " has rows up to step " + std::to_string(old.lastStep)
                             + ", and the saved state is of step " + std::to_string(step);
    if (old.lastStep > step) return rows + "; rename it, or cut its later rows off";
    return step - old.lastStep < probes.every ? "" : rows + ", so that rows are missing; rename it";
}

std::string faultOfFolder(const Probes& probes) {
    const bool wasThere = stampOf(probes.file.path).exists;
    const FileResult opened = tryOpenForWriting(probes.file.path);
    if (opened && !wasThere) removeFile(probes.file.path);
    return opened ? "" : probes.file.path + " can't be written: " + opened.reason;
}

std::string prepare(Probes& probes, const RunContext& run) {
    std::string fault = faultOfProbes(probes, run);
    if (!fault.empty()) return fault;
    probes.file = {joinPath(run.sim.inputDir, run.sim.baseName + ending), probeHeader(probes.columns)};
    fault = faultOfOldFile(probes, run);
    return fault.empty() ? faultOfFolder(probes) : fault;
}

void tell(Probes& probes, const RunContext& run, const FileResult& written) {
    if (written) return;
    if (++probes.missing == 1)
        run.complain("The probes " + nameOf(probes.file.path) + " can't be written: " + written.reason
                     + ". The run goes on, and tries again with the next row.");
}

void addLatest(Probes& probes, const RunContext& run) {
    if (run.sim.stepCount == probes.latestStep) return;
    const std::string row = probeRow(run.sim, probes.columns, probes.values);
    probes.latestStep = run.sim.stepCount;
    if (probes.file.length == 0) { // it could not be begun
        const FileResult begun = beginRows(probes.file);
        if (!begun) return tell(probes, run, begun);
    }
    tell(probes, run, addRow(probes.file, row));
}

void begin(Probes& probes, const RunContext& run) {
    if (run.goesOn && probes.old.lastStep >= 0) {
        const FileResult cut = goOnBehind(probes.file, probes.old.wholeBytes);
        probeRow(run.sim, probes.columns, probes.values);
        return tell(probes, run, cut);
    }
    addLatest(probes, run);
}

std::string goOn(Probes& probes, const std::string& position) {
    const std::string name = nameOf(probes.file.path);
    std::int64_t length = -1;
    const char* const end = position.data() + position.size();
    const auto read = std::from_chars(position.data(), end, length);
    if (read.ec != std::errc() || read.ptr != end || length < 0) return "the position in " + name + " is no number";
    if (length == 0) return {}; // it could not be begun, and is tried again with the next row
    const auto headerLength = static_cast<std::int64_t>(probes.file.header.size());
    const bool fits = probes.old.isSame && length >= headerLength && length <= probes.old.wholeBytes;
    if (!fits) return name + " is not the table that the run was writing; put it back";
    const FileResult cut = goOnBehind(probes.file, length);
    return cut ? "" : name + " can't be written: " + cut.reason;
}

bool finish(const Probes& probes, const RunContext& run) {
    if (probes.missing > 1)
        run.complain(std::to_string(probes.missing) + " rows of " + nameOf(probes.file.path) + " are missing.");
    return probes.missing == 0;
}

std::vector<NamedValue> lastRow(const Probes& probes) {
    std::vector<NamedValue> row;
    for (std::size_t k = 0; k < probes.values.size(); ++k)
        row.push_back({headingOf(probes.columns[k]), probes.values[k]});
    return row;
}

RunExtra extraOf(const std::shared_ptr<Probes>& probes) {
    RunExtra extra;
    extra.name = "probes";
    extra.steps = probes->every;
    extra.endings = {ending};
    extra.prepare = [probes](const RunContext& run) { return prepare(*probes, run); };
    extra.begin = [probes](const RunContext& run) { begin(*probes, run); };
    extra.write = [probes](const RunContext& run) { addLatest(*probes, run); };
    extra.finish = [probes](const RunContext& run) { return finish(*probes, run); };
    extra.files = [probes] {
        return probes->file.length > 0 ? std::vector{nameOf(probes->file.path)} : std::vector<std::string>();
    };
    extra.lastRow = [probes] { return lastRow(*probes); };
    extra.position = [probes] { return std::to_string(probes->file.length); };
    extra.goOn = [probes](const RunContext&, const std::string& position) { return goOn(*probes, position); };
    return extra;
}

std::optional<RunExtra> makeProbes(const ProbeOptions& options, const std::string& geometry) {
    if (options.ignoresFile && options.probes.empty()) return std::nullopt;
    const auto probes = std::make_shared<Probes>();
    probes->options = options;
    const std::string listPath = listPathOf(geometry);
    if (!options.ignoresFile && stampOf(listPath).exists) probes->listPath = listPath;
    if (!probes->listPath.empty()) readList(*probes);
    if (options.every > 0) probes->every = options.every;
    if (probes->listPath.empty() && options.probes.empty() && options.every == 0) return std::nullopt;
    return extraOf(probes);
}

} // namespace

RunExtraMaker addProbeOptions(CLI::App* run) {
    const auto options = std::make_shared<ProbeOptions>();
    run->add_option(
           "--probe", options->probes,
           "write values over time into m_probes.csv: C7:T,p,u, D3:K9:mean(T) or LABEL:max(T); may be repeated")
        ->type_name("PROBE")
        ->allow_extra_args(false)
        ->check(notEmpty);
    run->add_option("--probe-every", options->every, "steps between its rows, 10 without it")
        ->type_name("N")
        ->check(CLI::Range(1, 2147483647));
    run->add_flag("--no-probes", options->ignoresFile, "leave the file m.probes beside the geometry aside");
    const CLI::Option* const geometry = run->get_option("GEOMETRY");
    return [options, geometry] { return makeProbes(*options, geometry->as<std::string>()); };
}

} // namespace norvane
