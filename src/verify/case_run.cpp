#include "verify/case_run.h"

#include "core/run_driver.h"
#include "exchange/view_factors.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"
#include "geometry/table_edit.h"
#include "platform/files.h"
#include "platform/interface.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace norvane {

namespace {

constexpr std::size_t mostRows = 2'000'000; // of a record, some hundred bytes each

/// The runs of the same grid in one mode, with all that is read of their fields.
struct GridRun {
    const Case& verified;
    const CaseGrid& grid;
    bool compensated;
    SimState sim{};
    Interface ui{};
    std::string message{}; ///< the first one
    std::vector<TableRows> records{};
    Meanings meanings{};
    std::map<std::string, double> gridValues{}; ///< of the names that orders are observed in
};

std::string oneLine(std::string text) {
    std::string line;
    for (const char c : text)
        if (c != '\r') line += c == '\n' ? ' ' : c;
    return line;
}

CaseFault drawingFault(const GridRun& run, const std::string& fault, bool isOfFile = false) {
    const std::string path = joinPath(run.verified.folder, run.grid.drawing);
    return {isOfFile, printableName(path + ": " + oneLine(fault))};
}

/// Loads the drawing with its view factors and changes.
CaseFault load(GridRun& run) {
    const std::string path = joinPath(run.verified.folder, run.grid.drawing);
    if (const FileResult found = tryOpenForReading(path); !found)
        return drawingFault(run, "it can't be read: " + found.reason, true);
    SimState& sim = run.sim;
    sim.batchMode = true;
    sim.onlyLooks = true;     // the stop file of the working directory belongs to somebody else,
    sim.stopFileName.clear(); // and is not read
    run.ui.showMessage = [&run](const Report& report) {
        if (run.message.empty()) run.message = report.text;
    };
    run.ui.NV_in.Dir1.path = absolutePath(folderOf(path));
    run.ui.NV_in.File1.selected = nameOf(path);
    loadGeometry(sim, run.ui);
    if (sim.nCells == 0 || !run.message.empty())
        return drawingFault(run, run.message.empty() ? "the grid has no cells" : run.message);
    const bool hasFactors = stampOf(joinPath(sim.inputDir, sim.baseName + "_rad")).exists;
    if (hasFactors) importViewFactors(sim, run.ui);
    if (hasFactors && !sim.radActive) return drawingFault(run, run.message);
    run.message.clear(); // the import says how many it has read
    for (const std::string& change : run.grid.changes) {
        const std::string fault = applyChange(sim, change);
        if (!fault.empty()) return drawingFault(run, std::string("set ").append(change).append(": ").append(fault));
    }
    return {};
}

/// Connects the names of the case with what they stand for on this grid.
void giveMeanings(GridRun& run) {
    const Case& verified = run.verified;
    for (const Expression& value : run.grid.values) run.meanings.names.push_back(&value);
    for (const Expression& value : verified.lets) run.meanings.names.push_back(&value);
    run.meanings.ranges = run.grid.ranges;
    run.records.resize(verified.records.size());
    for (const TableRows& rows : verified.tables) run.meanings.tables.push_back(&rows);
    for (const TableRows& rows : run.records) run.meanings.tables.push_back(&rows);
}

/// Reads the records that are due of the state after so many steps. A fault ends the run.
void takeRecords(GridRun& run, Evaluation& evaluation, std::int64_t steps) {
    evaluation.setState(steps);
    for (std::size_t k = 0; k < run.records.size(); ++k) {
        const CaseRecord& record = run.verified.records[k];
        if (steps % record.every != 0) continue;
        if (run.records[k].size() >= mostRows) evaluation.fault = "it has too many rows; take every so many steps";
        const auto number = static_cast<double>(steps);
        run.records[k].push_back({number, number * double(run.sim.dt), evaluation.value(record.body)});
    }
    if (evaluation.fault.empty()) return;
    run.message = "a record: " + evaluation.fault;
    run.sim.stopFlag = true;
}

GridFigure figureOf(const CaseCheck& check, std::size_t grid, Evaluation& evaluation) {
    GridFigure figure;
    evaluation.fault.clear();
    figure.value = evaluation.value(check.measure);
    figure.passes = std::isfinite(figure.value);
    if (!check.within.empty()) {
        const auto& bound = check.within[std::min(grid, check.within.size() - 1)];
        if (bound) figure.bound = evaluation.value(*bound);
        figure.passes = figure.passes && (!figure.bound || std::abs(figure.value) <= *figure.bound);
    }
    figure.fault = evaluation.fault;
    figure.passes = figure.passes && figure.fault.empty();
    return figure;
}

/// Reads all that is asked of the last state.
void takeFigures(GridRun& run, Evaluation& evaluation, std::size_t grid, CaseResult& result) {
    const Case& verified = run.verified;
    for (CheckResult& checked : result.checks) {
        if (checked.compensated != run.compensated) continue;
        const CaseCheck& check = verified.checks[checked.check];
        checked.figures.push_back(figureOf(check, grid, evaluation));
        if (check.between)
            checked.between = {evaluation.value(check.between->first), evaluation.value(check.between->second)};
        if (check.order) checked.order = {evaluation.value(check.order->first), evaluation.value(check.order->second)};
    }
    for (std::size_t k = 0; k < verified.profiles.size(); ++k) {
        evaluation.fault.clear();
        result.profiles.push_back({k, grid, run.compensated, evaluation.profile(verified.profiles[k].points)});
    }
    for (std::size_t k = 0; k < run.grid.values.size(); ++k)
        run.gridValues[verified.symbols.names[k]] = evaluation.value(run.grid.values[k]);
    run.gridValues["dt"] = double(run.sim.dt);
}

/// The completed state after n steps is that of slot 0 and of the primitives in step n + 1, between its first two
/// stages: there the records are read, and after the last step the figures.
CaseFault runGrid(GridRun& run, std::size_t grid, CaseResult& result) {
    SimState& sim = run.sim;
    giveMeanings(run);
    std::optional<Evaluation> evaluation;
    std::int64_t wanted = 0;
    bool isDone = false;
    int stage = 0;
    run.ui.runBegan = [&] {
        evaluation.emplace(sim, run.meanings);
        wanted = sim.stepLimit;
        sim.stopStep = -1;
    };
    run.ui.stepBegan = [&] { stage = 0; };
    run.ui.yieldToInterface = [&] {
        if (++stage != 2 || isDone) return;
        const std::int64_t steps = std::int64_t{sim.stepCount} - 1;
        takeRecords(run, *evaluation, steps);
        isDone = steps >= wanted && evaluation->fault.empty();
        if (!isDone) return;
        takeFigures(run, *evaluation, grid, result);
        sim.stopFlag = true;
    };
    RunOperations operations;
    operations.buildModel = [&](SimState& built) { buildModel(built, run.ui); };
    runSimulation(sim, run.ui, operations);
    if (isDone) return {};
    const std::string where = "the run ended in step " + std::to_string(sim.stepCount) + ": ";
    return drawingFault(run, where + (run.message.empty() ? "it was stopped" : run.message));
}

/// Figures of a grid that did not run to its end.
void noteFailure(const GridRun& run, const std::string& fault, CaseResult& result) {
    for (CheckResult& checked : result.checks)
        if (checked.compensated == run.compensated) checked.figures.push_back({NAN, {}, {}, false, fault});
}

void observeOrders(const Case& verified,
                   const std::vector<std::map<std::string, double>>& values,
                   CheckResult& checked) {
    const CaseCheck& check = verified.checks[checked.check];
    if (!checked.order) return;
    for (std::size_t k = 1; k < checked.figures.size(); ++k) {
        const auto of = [&](std::size_t grid) {
            const auto found = values[grid].find(check.orderWith);
            return found != values[grid].end() ? found->second : NAN;
        };
        const double ratio = std::abs(std::log(of(k) / of(k - 1)));
        checked.figures[k].order = std::log(std::abs(checked.figures[k - 1].value / checked.figures[k].value)) / ratio;
    }
}

void judge(const Case& verified, CheckResult& checked) {
    const CaseCheck& check = verified.checks[checked.check];
    checked.isJudged = !check.within.empty() || check.between || (check.order && checked.figures.size() > 1);
    const auto isIn = [](double value, const std::pair<double, double>& range) {
        return value >= range.first && value <= range.second;
    };
    for (GridFigure& figure : checked.figures) {
        if (checked.between) figure.passes = figure.passes && isIn(figure.value, *checked.between);
        if (checked.order && figure.order) figure.passes = figure.passes && isIn(*figure.order, *checked.order);
        checked.passes = checked.passes && figure.passes;
    }
}

void runMode(const Case& verified, const CaseOptions& options, bool compensated, CaseResult& result) {
    const std::size_t grids = options.firstGridOnly ? 1 : verified.grids.size();
    std::vector<std::map<std::string, double>> values;
    for (std::size_t grid = 0; grid < grids && result.fault.text.empty(); ++grid) {
        GridRun run{verified, verified.grids[grid], compensated};
        run.sim.threads = options.threads;
        run.sim.compensated = compensated;
        options.began(run.grid, compensated);
        result.fault = load(run);
        if (!result.fault.text.empty()) return;
        const CaseFault ended = runGrid(run, grid, result);
        if (!ended.text.empty()) noteFailure(run, ended.text, result);
        values.push_back(run.gridValues);
    }
    for (CheckResult& checked : result.checks) {
        if (checked.compensated != compensated) continue;
        observeOrders(verified, values, checked);
        judge(verified, checked);
    }
}

} // namespace

CaseResult runCase(const Case& verified, const CaseOptions& options) {
    CaseResult result;
    RunModes used{false, false};
    for (const bool compensated : {false, true})
        for (std::size_t k = 0; k < verified.checks.size(); ++k) {
            const RunModes& modes = verified.checks[k].modes;
            if (!(compensated ? modes.compensated : modes.plain)) continue;
            (compensated ? used.compensated : used.plain) = true;
            CheckResult& checked = result.checks.emplace_back();
            checked.check = k;
            checked.compensated = compensated;
        }
    if (used.plain) runMode(verified, options, false, result);
    if (used.compensated) runMode(verified, options, true, result);
    for (const CheckResult& checked : result.checks) result.passes = result.passes && checked.passes;
    return result;
}

} // namespace norvane
