// Balances of a run: what comes into the box and leaves it, in m_balance.csv and at the end of the run.

#include "frontends/cli/balance_options.h"

#include "core/remainders.h"
#include "exchange/balance_file.h"
#include "exchange/row_file.h"
#include "frontends/cli/json_text.h"
#include "frontends/cli/run_command.h"
#include "platform/files.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <new>

namespace norvane {

namespace {

constexpr const char* ending = "_balance.csv";

/// The balances of a run.
struct Balances {
    std::int32_t every = 0;
    RowFile file;
    std::optional<BalancePlan> plan; ///< none: there was not enough memory
    StepBalance balance{};           ///< of the step that was measured last; of step 0: none was
    std::vector<LostChange> lost{};  ///< [quantities] over all steps that were measured
    std::int64_t measured = 0;       ///< steps
    const SimState* sim = nullptr;
    bool adds = true;  ///< rows to the file
    bool whole = true; ///< all rows are in it
};

std::string prepare(Balances& balances, const RunContext& run) {
    balances.file.path = joinPath(run.sim.inputDir, run.sim.baseName + ending);
    const std::string name = nameOf(balances.file.path);
    RowFile someTable = balances.file;
    someTable.header = "step,"; // the columns follow from the model, which does not stand yet
    RowFileContent old;
    const FileResult read = lookAt(someTable, old);
    if (!read) return name + " can't be read: " + read.reason;
    if (old.exists && !old.isTable) return name + " holds something else, which would be lost; rename it";
    const bool wasThere = stampOf(balances.file.path).exists;
    const FileResult opened = tryOpenForWriting(balances.file.path);
    if (opened && !wasThere) removeFile(balances.file.path);
    return opened ? "" : name + " can't be written: " + opened.reason;
}

/// Plans the sums of the model that stands. Gives false, after a message, where memory is short.
bool makePlan(Balances& balances, const RunContext& run) {
    balances.sim = &run.sim;
    try {
        std::vector<NamedCells> labels;
        for (const NamedRange& label : run.labels) {
            labels.push_back({label.name, {}});
            cellsOfRange(run.sim, label.range, {}, labels.back().cells);
        }
        balances.plan = planBalance(run.sim, labels, run.sim.threads);
        balances.balance.quantities.reserve(balances.plan->boxCells.size());
        balances.balance.flows.reserve(balances.plan->channels.size());
        balances.lost.assign(balances.plan->boxCells.size(), {});
        balances.file.header = balanceHeader(run.sim, *balances.plan);
    } catch (const std::bad_alloc&) {
        balances.plan.reset();
        balances.whole = false;
        run.complain("There is not enough memory for the balance. The run goes on without it.");
    }
    return balances.plan.has_value();
}

/// A region of gas has no flows of its own, and one whose cells an earlier region has taken has none left.
void tellEmptyRegions(const Balances& balances, const RunContext& run) {
    for (const NamedRange& label : run.labels) {
        const bool isGroup = std::any_of(balances.plan->groups.begin(), balances.plan->groups.end(),
                                         [&](const HeldGroup& group) { return group.name == label.name; });
        if (!isGroup)
            run.complain("--region " + label.name
                         + ": the balance has no columns for it, since none of its cells is "
                           "held (WP or WT), or other regions name them before.");
    }
}

void tell(Balances& balances, const RunContext& run, const std::string& reason) {
    if (balances.whole)
        run.complain("The balance " + nameOf(balances.file.path) + " can't be written: " + reason
                     + ". The run goes on without it.");
    balances.whole = false;
}

/// A run begins the file anew. One that goes on from a saved state adds to it, where it has the same columns and no
/// later row.
void begin(Balances& balances, const RunContext& run) {
    if (!makePlan(balances, run)) return;
    tellEmptyRegions(balances, run);
    RowFileContent old;
    FileResult done = lookAt(balances.file, old);
    if (done && run.goesOn && old.exists) {
        balances.adds = old.isSame && old.lastStep <= run.sim.stepCount;
        if (!balances.adds) return tell(balances, run, "it has other columns or later rows; rename it");
        done = goOnBehind(balances.file, old.wholeBytes);
    } else if (done) {
        done = beginRows(balances.file);
    }
    if (!done) tell(balances, run, done.reason);
}

bool wants(const Balances& balances, const SimState& sim) {
    // A plan holds for the codes that it was made from.
    if (!balances.plan || balances.plan->revision != sim.revision) return false;
    return sim.stepCount % balances.every == 0 || (sim.stopStep >= 0 && sim.stepCount >= sim.stopStep);
}

void look(Balances& balances, const SimState& sim, int stage) {
    measureStage(sim, *balances.plan, stage, balances.balance);
    if (stage < 4) return;
    balances.measured += 1;
    for (std::size_t k = 0; k < balances.lost.size(); ++k) {
        const QuantityBalance& q = balances.balance.quantities[k];
        balances.lost[k].moved += q.moved;
        balances.lost[k].lost += q.lost;
        balances.lost[k].kept += q.kept;
        balances.lost[k].lostCells += q.lostCells;
    }
}

void addLatest(Balances& balances, const RunContext& run) {
    if (!balances.plan || !balances.adds || balances.balance.step != run.sim.stepCount) return;
    if (balances.file.length == 0) { // it could not be begun
        const FileResult begun = beginRows(balances.file);
        if (!begun) return tell(balances, run, begun.reason);
    }
    const FileResult written = addRow(balances.file, balanceRow(run.sim, *balances.plan, balances.balance));
    if (!written) tell(balances, run, written.reason);
}

std::vector<std::string> report(const Balances& balances) {
    if (balances.balance.step == 0) return {};
    std::vector<std::string> lines{"Balance of step " + std::to_string(balances.balance.step) + ", into the box:"};
    for (const std::string& line : balanceLines(*balances.sim, *balances.plan, balances.balance))
        lines.push_back("  " + line);
    for (const std::string& line :
         lostChangeLines(*balances.sim, *balances.plan, balances.lost, balances.measured, hasRemainders(*balances.sim)))
        lines.push_back("  " + line);
    return lines;
}

std::string summary(const Balances& balances) {
    if (balances.balance.step == 0) return {};
    std::string json = "\"balance\": {\"step\": " + std::to_string(balances.balance.step);
    for (const BalanceColumn& column : balanceColumns(*balances.sim, *balances.plan, balances.balance))
        json += ", " + jsonString(column.name + " [" + column.unit + "]") + ": " + jsonNumber(column.value);
    return json + "}";
}

std::vector<NamedValue> lastRow(const Balances& balances) {
    std::vector<NamedValue> row;
    if (balances.balance.step == 0) return row;
    for (const BalanceColumn& column : balanceColumns(*balances.sim, *balances.plan, balances.balance))
        if (column.isState) row.push_back({column.name + " [" + column.unit + "]", column.value});
    return row;
}

/// Calls `take` for all numbers that a run which goes on needs to end as one that was never stopped. The latest balance
/// is among them, since a checkpoint is taken between the stages of a step and its outputs.
template <class Kept, class Take>
void forNumbers(Kept& balances, const Take& take) {
    for (auto& q : balances.lost)
        for (auto* const value : {&q.moved, &q.lost, &q.kept, &q.lostCells}) take(*value);
    take(balances.balance.dt);
    for (auto& flow : balances.balance.flows) take(flow);
    for (auto& q : balances.balance.quantities)
        for (auto* const value : {&q.content, &q.change, &q.moved, &q.lost, &q.kept, &q.lostCells}) take(*value);
}

/// "LENGTH MEASURED STEP" and the numbers, to the bit. Of step 0 there is no balance.
std::string position(const Balances& balances) {
    std::string text = std::to_string(balances.file.length) + " " + std::to_string(balances.measured) + " "
                       + std::to_string(balances.balance.step);
    forNumbers(balances, [&](double value) {
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof digits, value);
        text.append(1, ' ').append(digits, end.ptr);
    });
    return text;
}

template <class Number>
bool takeNumber(std::string_view& text, Number& number) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
    return read.ec == std::errc();
}

bool takePosition(Balances& balances, std::string_view text, std::int64_t& length) {
    bool isRead =
        takeNumber(text, length) && takeNumber(text, balances.measured) && takeNumber(text, balances.balance.step);
    if (isRead && balances.balance.step != 0) {
        balances.balance.flows.resize(balances.plan->channels.size());
        balances.balance.quantities.resize(balances.plan->boxCells.size());
    }
    forNumbers(balances, [&](double& value) { isRead = isRead && takeNumber(text, value); });
    return isRead && length >= 0 && balances.measured >= 0 && balances.balance.step >= 0;
}

std::string goOn(Balances& balances, const RunContext& run, std::string_view position) {
    if (!makePlan(balances, run)) return {};
    const std::string name = nameOf(balances.file.path);
    std::int64_t length = -1;
    if (!takePosition(balances, position, length)) return "the position in " + name + " is damaged";
    RowFileContent old;
    const FileResult read = lookAt(balances.file, old);
    if (!read) return name + " can't be read: " + read.reason;
    const bool fits =
        old.isSame && length >= static_cast<std::int64_t>(balances.file.header.size()) && length <= old.wholeBytes;
    if (!fits) return name + " is not the table that this run was writing; put it back, or run without --balance";
    const FileResult cut = goOnBehind(balances.file, length);
    return cut ? "" : name + " can't be written: " + cut.reason;
}

RunExtra extraOf(const std::shared_ptr<Balances>& balances) {
    RunExtra extra;
    extra.name = "balance";
    extra.steps = balances->every;
    extra.endings = {ending};
    extra.prepare = [balances](const RunContext& run) { return prepare(*balances, run); };
    extra.begin = [balances](const RunContext& run) { begin(*balances, run); };
    extra.write = [balances](const RunContext& run) { addLatest(*balances, run); };
    extra.watch.wants = [balances](const SimState& sim) { return wants(*balances, sim); };
    extra.watch.look = [balances](const SimState& sim, int stage) { look(*balances, sim, stage); };
    extra.finish = [balances](const RunContext&) { return balances->whole; };
    extra.report = [balances] { return report(*balances); };
    extra.summary = [balances] { return summary(*balances); };
    extra.files = [balances] {
        return balances->file.length > 0 ? std::vector{nameOf(balances->file.path)} : std::vector<std::string>();
    };
    extra.lastRow = [balances] { return lastRow(*balances); };
    extra.position = [balances] { return position(*balances); };
    extra.goOn = [balances](const RunContext& run, const std::string& text) { return goOn(*balances, run, text); };
    return extra;
}

} // namespace

RunExtraMaker addBalanceOptions(CLI::App* run) {
    const auto every = std::make_shared<std::int32_t>(0);
    run->add_option("--balance", *every,
                    "write what flows into the gas and out of it to m_balance.csv every N steps and at the last one: "
                    "mass, heat and momentum, by inlets, outlets and walls; --region names these")
        ->type_name("N")
        ->check(CLI::Range(1, 2147483647));
    return [every]() -> std::optional<RunExtra> {
        if (*every == 0) return std::nullopt;
        const auto balances = std::make_shared<Balances>();
        balances->every = *every;
        return extraOf(balances);
    };
}

} // namespace norvane
