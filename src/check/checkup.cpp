#include "check/checkup.h"

#include "check/model_rules.h"
#include "check/table_rules.h"
#include "core/processor_engine.h"
#include "exchange/view_factors.h"
#include "geometry/grid_file.h"
#include "geometry/model_build.h"
#include "geometry/text_encoding.h"
#include "platform/files.h"
#include "platform/interface.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <new>
#include <utility>

namespace norvane {

namespace {

constexpr std::size_t beginningBytes = 4096;
constexpr std::size_t frameBytes = 16 << 20; ///< of a file that is no table, so much is searched for the reason

std::string plainLine(const std::string& text) {
    std::string line;
    for (const char c : text) {
        if (c == '\r') continue;
        line += c == '\n' ? ' ' : c;
    }
    return line;
}

/// A message of the load as a finding; one about a row begins with it.
Finding findingOf(const Report& report) {
    const bool isMark = report.kind == ReportKind::layerMark;
    return {Severity::error,
            isMark ? "layer-mark" : "not-loaded",
            {isMark ? report.place : 0, 0},
            "",
            plainLine(report.text)};
}

/// Other geometries in the folder whose outputs would have the same names.
void checkNeighbours(const std::string& path, Findings& findings) {
    const std::string name = nameOf(path);
    const std::string base = name.substr(0, name.find('.'));
    const std::string effect =
        " in this folder writes the same files, " + base + "_*: a name counts up to its first point only";
    for (const std::string& other : listFiles(folderOf(path), ".gmt"))
        if (other != name && other.substr(0, other.find('.')) == base)
            findings.add({Severity::warning, "same-base-name", {}, "", std::string(other).append(effect)});
}

/// The view factors of the geometry, if it has any: a run with --radiation takes them.
void takeViewFactors(SimState& sim, Interface& ui, Findings& findings) {
    if (!stampOf(joinPath(sim.inputDir, sim.baseName + "_rad")).exists) return;
    std::string message;
    const auto show = std::exchange(ui.showMessage, [&](const Report& report) { message = report.text; });
    importViewFactors(sim, ui);
    ui.showMessage = show;
    if (!sim.radActive) findings.add({Severity::warning, "view-factors", {}, "", plainLine(message)});
}

void countKinds(ModelSummary& summary, const std::vector<unsigned>& kinds) {
    const std::pair<unsigned, std::int32_t ModelSummary::*> counted[] = {
        {kindWall, &ModelSummary::walls},         {kindInlet, &ModelSummary::inlets},
        {kindOutlet, &ModelSummary::outlets},     {kindHeld, &ModelSummary::held},
        {kindHeated, &ModelSummary::heated},      {kindReacting, &ModelSummary::reacting},
        {kindRadiating, &ModelSummary::radiating}};
    for (std::size_t cell = 1; cell < kinds.size(); ++cell)
        for (const auto& [kind, count] : counted)
            if ((kinds[cell] & kind) != 0) summary.*count += 1;
}

ModelSummary summaryOf(const SimState& sim, const std::vector<unsigned>& kinds, double speed) {
    ModelSummary summary;
    summary.cells = sim.nCells;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        summary.shape.push_back(sim.cellCount[dim]);
        const std::int64_t last = 1 + std::int64_t{sim.cellCount[dim] - 1} * sim.cellStride[dim];
        summary.lengths.push_back(double(sim.cellPos(last, dim)) + double(sim.cellSize(last, dim)));
    }
    summary.species = sim.nsMax + 1;
    countKinds(summary, kinds);
    summary.gasFactor = sim.gasFactor;
    summary.soundSpeed = std::sqrt(double(sim.gasFactor) * double(sim.temperature[0]));
    summary.fastest = speed;
    summary.bytes = stateBytes(sim.nDim, sim.nsMax, sim.nCells);
    summary.dt = sim.dt;
    summary.steps = sim.stepLimit;
    summary.stable = stableStep(sim, speed);
    const StableStep& stable = summary.stable;
    for (const auto& [kind, limit] :
         {std::pair{StepLimit::sound, stable.sound}, std::pair{StepLimit::conduction, stable.conduction},
          std::pair{StepLimit::friction, stable.friction}, std::pair{StepLimit::reaction, stable.reaction}})
        if (limit.cell != 0) summary.limits.push_back({kind, limit.step, placeOf(sim, limit.cell)});
    return summary;
}

} // namespace

Checkup checkLoaded(SimState& sim, const RunEvents& events) {
    Checkup checkup;
    checkFrame(sim.grid, checkup.findings);
    // In a table that is out of place every text would be.
    if (checkup.findings.errors > 0) return checkup;
    checkTexts(sim, checkup.findings);
    const std::int16_t mode = sim.runMode;
    const bool looks = std::exchange(sim.onlyLooks, true);
    const std::int16_t slot = std::exchange(sim.stageWork, std::int16_t{workSlot});
    GivenKeys given(sim.nCells);
    buildModel(sim, events, [&](const Assignment& made) { given.take(made, sim, checkup.findings); });
    sim.onlyLooks = looks;
    sim.stageWork = slot;
    const std::vector<unsigned> kinds = cellKinds(sim);
    checkup.summary = summaryOf(sim, kinds, startingSpeed(sim, kinds));
    // Beyond an error the numbers of the model mean nothing.
    if (checkup.findings.errors == 0) checkModel(sim, given, kinds, checkup.summary.stable, checkup.findings);
    sim.runMode = mode;
    sortByPlace(checkup.findings);
    return checkup;
}

Checkup checkGeometry(const std::string& path) {
    SimState sim;
    return checkGeometry(path, sim);
}

Checkup checkGeometry(const std::string& path, SimState& sim) {
    Checkup checkup;
    std::string bytes;
    const FileResult read = readBeginning(path, beginningBytes, bytes);
    if (!read) {
        checkup.findings.add({Severity::error, "not-read", {}, "", "it can't be read: " + read.reason});
        return checkup;
    }
    if (!checkBytes(bytes, checkup.findings)) return checkup;
    Interface ui;
    Findings ofLoad;
    ui.showMessage = [&](const Report& report) { ofLoad.add(findingOf(report)); };
    sim.batchMode = true;
    ui.NV_in.Dir1.path = absolutePath(folderOf(path));
    ui.NV_in.File1.selected = nameOf(path);
    loadGeometry(sim, ui);
    if (sim.nCells > 0 && ofLoad.list.empty()) {
        Findings ofFactors;
        takeViewFactors(sim, ui, ofFactors);
        checkup = checkLoaded(sim, ui);
        for (Finding& finding : ofFactors.list) checkup.findings.add(std::move(finding));
    } else if (readBeginning(path, frameBytes, bytes)) {
        checkFrame(CellTextTable(toUtf8(std::move(bytes))), checkup.findings);
        if (ofLoad.list.empty())
            ofLoad.add({Severity::error, "no-cells", {}, "", "the grid has no cells; mend its layer marks"});
    }
    for (Finding& finding : ofLoad.list) checkup.findings.add(std::move(finding));
    checkNeighbours(path, checkup.findings);
    sortByPlace(checkup.findings);
    return checkup;
}

double measuredStep(SimState& sim) {
    using Clock = std::chrono::steady_clock;
    constexpr auto longest = std::chrono::milliseconds(200);
    sim.revision += 1;
    int stages = 0;
    auto start = Clock::now();
    try {
        const StageEngine engine = processorEngine(sim, planStages(sim, sim.threads));
        const FaultSink ignored = [](const StageFault&) {};
        engine.runStage(1, ignored); // the first use of the memory is not counted
        start = Clock::now();
        for (; stages < 400 && Clock::now() - start < longest; ++stages) engine.runStage(stages % 4 + 1, ignored);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return std::chrono::duration<double>(Clock::now() - start).count() * 4 / std::max(stages, 1);
}

std::string gasNear(double gasFactor) {
    static constexpr std::pair<double, const char*> gases[] = {
        {4124, "hydrogen"}, {2077, "helium"},  {518, "methane"}, {461.5, "steam"},
        {287, "air"},       {259.8, "oxygen"}, {208, "argon"},   {188.9, "carbon dioxide"}};
    const char* nearest = "";
    double least = 0.1;
    for (const auto& [constant, name] : gases) {
        const double distance = std::abs(gasFactor / constant - 1);
        if (distance >= least) continue;
        least = distance;
        nearest = name;
    }
    return nearest;
}

} // namespace norvane
