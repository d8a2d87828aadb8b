#include "exchange/balance_file.h"

#include "core/number_text.h"
#include "geometry/table_place.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace norvane {

namespace {

constexpr std::size_t mostInLine = 6; ///< groups that a line in words names

const char* contentUnit(const SimState& sim, int quantity) {
    return quantity <= sim.nsMax ? "kg" : quantity == sim.nsMax + 1 ? "J" : "kg m/s";
}

const char* rateUnit(const SimState& sim, int quantity) {
    return quantity <= sim.nsMax ? "kg/s" : quantity == sim.nsMax + 1 ? "W" : "N";
}

/// What a part of momentum, or a flow without a group, is called.
const char* partName(FlowKind kind) {
    switch (kind) {
    case FlowKind::exchange: return "exchange";
    case FlowKind::pressure: return "pressure";
    case FlowKind::carried: return "carried";
    case FlowKind::viscosity: return "viscosity";
    case FlowKind::drag: return "drag";
    case FlowKind::gravity: return "gravity";
    case FlowKind::sink: return "sinks";
    default: return "";
    }
}

/// "heat conducted from B4", "momentum 1 drag".
std::string flowName(const SimState& sim, const BalancePlan& plan, const FlowChannel& channel) {
    const std::string quantity = quantityName(sim, channel.quantity);
    if (channel.group < 0) return quantity + " " + partName(channel.kind);
    const std::string group = nameOf(sim, plan.groups[static_cast<std::size_t>(channel.group)]);
    switch (channel.kind) {
    case FlowKind::conduction: return quantity + " conducted from " + group;
    case FlowKind::radiation: return quantity + " radiated from " + group;
    case FlowKind::heldRadiation: return quantity + " radiated from " + group + " to held cells";
    default: return quantity + " carried from " + group;
    }
}

void appendNumber(std::string& text, double value) {
    if (std::isnan(value)) { // its sign says nothing
        text += "nan";
        return;
    }
    char digits[32]; // 15 of them: what differs between two contents is the difference of singles
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 15);
    text.append(digits, end.ptr);
}

/// Four digits, with a sign.
std::string shortText(double value) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific, 3);
    double rounded = value;
    if (std::isfinite(value)) std::from_chars(digits, end.ptr, rounded);
    return (rounded > 0 ? "+" : "") + generalText(static_cast<float>(rounded));
}

/// The sums of a quantity by group, the largest first, and its flows without a group.
struct Share {
    std::string name;
    double rate;
};

std::vector<Share> sharesOf(const SimState& sim, const BalancePlan& plan, const StepBalance& balance, int quantity) {
    std::vector<Share> shares;
    std::vector<Share> parts;
    std::vector<std::size_t> placeOf(plan.groups.size(), 0); // in shares, from 1
    for (std::size_t k = 0; k < plan.channels.size(); ++k) {
        const FlowChannel& channel = plan.channels[k];
        if (channel.quantity != quantity || channel.kind == FlowKind::heldRadiation) continue;
        if (channel.group < 0) {
            if (balance.flows[k] != 0) parts.push_back({partName(channel.kind), balance.flows[k]});
            continue;
        }
        std::size_t& place = placeOf[static_cast<std::size_t>(channel.group)];
        if (place == 0) {
            shares.push_back({nameOf(sim, plan.groups[static_cast<std::size_t>(channel.group)]), 0});
            place = shares.size();
        }
        shares[place - 1].rate += balance.flows[k];
    }
    std::stable_sort(shares.begin(), shares.end(),
                     [](const Share& a, const Share& b) { return std::abs(a.rate) > std::abs(b.rate); });
    if (shares.size() > mostInLine) {
        Share others{std::to_string(shares.size() - mostInLine + 1) + " others", 0};
        for (std::size_t k = mostInLine - 1; k < shares.size(); ++k) others.rate += shares[k].rate;
        shares.resize(mostInLine - 1);
        shares.push_back(others);
    }
    shares.insert(shares.end(), parts.begin(), parts.end());
    return shares;
}

std::string percent(double part, double whole) {
    return shortText(whole > 0 ? 100 * part / whole : 0).substr(part > 0 && whole > 0 ? 1 : 0) + " %";
}

} // namespace

std::string nameOf(const SimState& sim, const HeldGroup& group) {
    if (group.isRest) return "others";
    if (!group.name.empty()) return group.name;
    return group.firstCell == 0 ? "surroundings" : spreadsheetAddress(placeOf(sim, group.firstCell));
}

std::string quantityName(const SimState& sim, int quantity) {
    if (quantity <= sim.nsMax) return sim.nsMax == 0 ? "mass" : "mass " + std::to_string(quantity);
    return quantity == sim.nsMax + 1 ? "heat" : "momentum " + std::to_string(quantity - sim.nsMax - 1);
}

std::vector<BalanceColumn> balanceColumns(const SimState& sim, const BalancePlan& plan, const StepBalance& balance) {
    std::vector<BalanceColumn> columns;
    for (int quantity = 0; quantity < static_cast<int>(balance.quantities.size()); ++quantity) {
        const auto place = static_cast<std::size_t>(quantity);
        const QuantityBalance& q = balance.quantities[place];
        const std::string name = quantityName(sim, quantity);
        const char* const unit = rateUnit(sim, quantity);
        const bool isScalar = quantity <= sim.nsMax + 1;
        columns.push_back({name, contentUnit(sim, quantity), q.content, isScalar});
        for (std::size_t k = 0; k < plan.channels.size(); ++k)
            if (plan.channels[k].quantity == quantity)
                columns.push_back({flowName(sim, plan, plan.channels[k]), unit, balance.flows[k], isScalar});
        columns.push_back({name + " flows", unit, totalFlow(plan, balance, quantity), false});
        columns.push_back({name + " change", unit, q.change / balance.dt, false});
        columns.push_back({name + " remainder", unit, remainderOf(plan, balance, quantity), false});
        columns.push_back({name + " rounded away", "1", q.moved > 0 ? q.lost / q.moved : 0, false});
        columns.push_back({name + " rounded away when compensated", "1", q.moved > 0 ? q.kept / q.moved : 0, false});
        const auto cells = static_cast<double>(std::max<std::int64_t>(plan.boxCells[place], 1));
        columns.push_back({name + " cells held by rounding", "1", q.lostCells / cells, false});
    }
    return columns;
}

std::string balanceHeader(const SimState& sim, const BalancePlan& plan) {
    StepBalance none;
    none.quantities.resize(plan.boxCells.size());
    none.flows.resize(plan.channels.size());
    std::string line = "step,time [s]";
    for (const BalanceColumn& column : balanceColumns(sim, plan, none))
        line += "," + column.name + " [" + column.unit + "]"; // names hold letters, digits and "_"
    return line + "\r\n";
}

std::string balanceRow(const SimState& sim, const BalancePlan& plan, const StepBalance& balance) {
    std::string line = std::to_string(balance.step) + ",";
    appendNumber(line, balance.step * balance.dt);
    for (const BalanceColumn& column : balanceColumns(sim, plan, balance)) {
        line += ',';
        appendNumber(line, column.value);
    }
    return line + "\r\n";
}

std::vector<std::string> balanceLines(const SimState& sim, const BalancePlan& plan, const StepBalance& balance) {
    std::vector<std::string> lines;
    for (int quantity = 0; quantity < static_cast<int>(balance.quantities.size()); ++quantity) {
        const std::string unit = std::string(" ") + rateUnit(sim, quantity);
        std::string line = quantityName(sim, quantity) + ": ";
        const auto add = [&](const std::string& name, double rate) {
            line.append(name).append(" ").append(shortText(rate)).append(unit);
        };
        for (const Share& share : sharesOf(sim, plan, balance, quantity)) {
            add(share.name, share.rate);
            line += ", ";
        }
        add("box", balance.quantities[static_cast<std::size_t>(quantity)].change / balance.dt);
        add(", remainder", remainderOf(plan, balance, quantity));
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> lostChangeLines(const SimState& sim,
                                         const BalancePlan& plan,
                                         const std::vector<LostChange>& lost,
                                         std::int64_t steps,
                                         bool isCompensated) {
    std::vector<std::string> lines;
    for (std::size_t k = 0; k < lost.size(); ++k) {
        const LostChange& q = lost[k];
        if (!(q.lost > 0.1 * q.moved)) continue;
        const std::string cells =
            percent(q.lostCells, static_cast<double>(plan.boxCells[k]) * static_cast<double>(steps));
        lines.push_back("rounding " + std::string(isCompensated ? "would take " : "takes ") + percent(q.lost, q.moved)
                        + " of the change of " + quantityName(sim, static_cast<int>(k)) + " away, and " + cells
                        + " of the cells " + (isCompensated ? "would not change at all" : "do not change at all"));
        lines.back() += isCompensated ? "; with --compensated it takes " + percent(q.kept, q.moved)
                                      : "; a larger DT helps, or --compensated";
    }
    return lines;
}

} // namespace norvane
