#include "core/addressing.h"
#include "core/balance.h"
#include "core/neighbours.h"
#include "core/source_terms.h"
#include "core/stage_plan.h"
#include "core/wall_codes.h"

#include <algorithm>
#include <system_error>

namespace norvane {

namespace {

constexpr std::size_t sumsAtOnce = std::size_t{1} << 16; ///< of the rows that are worked on together

bool isGrouped(const SimState& sim, std::int32_t cell) {
    return isHeld(sim.wallPressure[cell]) || isHeld(sim.wallTemperature[cell]);
}

int sign(std::int16_t code) { return (code > 0 ? 1 : 0) - (code < 0 ? 1 : 0); }

bool areHeldAlike(const SimState& sim, std::int32_t a, std::int32_t b) {
    return sign(sim.wallPressure[a]) == sign(sim.wallPressure[b])
           && sign(sim.wallTemperature[a]) == sign(sim.wallTemperature[b]);
}

/// Gives a cell to a group.
void take(const SimState& sim, BalancePlan& plan, std::int32_t cell, int number) {
    HeldGroup& group = plan.groups[static_cast<std::size_t>(number)];
    plan.groupOf[static_cast<std::size_t>(cell)] = number;
    if (group.firstCell == 0 || cell < group.firstCell) group.firstCell = cell;
    group.holdsMass |= isHeld(sim.wallPressure[cell]);
    group.holdsHeat |= isHeld(sim.wallTemperature[cell]);
}

int& groupAt(BalancePlan& plan, std::int64_t cell) { return plan.groupOf[static_cast<std::size_t>(cell)]; }

/// Takes all cells that faces connect with `start` and that are held alike.
void takeNeighbours(const SimState& sim, BalancePlan& plan, std::int32_t start, int number) {
    std::vector<std::int32_t> pending{start};
    take(sim, plan, start, number);
    while (!pending.empty()) {
        const std::int32_t cell = pending.back();
        pending.pop_back();
        forEachNeighbour(sim, cell, [&](std::int32_t neighbour, int, std::int32_t) {
            if (groupAt(plan, neighbour) >= 0 || !isGrouped(sim, neighbour) || !areHeldAlike(sim, cell, neighbour))
                return;
            take(sim, plan, neighbour, number);
            pending.push_back(neighbour);
        });
    }
}

bool radiatesToSurroundings(const SimState& sim) {
    for (std::int32_t pair = 1; sim.radActive && pair <= sim.radPairCount; ++pair)
        if (sim.radPair[1][pair] == 0 && pairInGrid(sim, pair)) return true;
    return false;
}

void planGroups(const SimState& sim, BalancePlan& plan, const std::vector<NamedCells>& labels) {
    plan.groupOf.assign(static_cast<std::size_t>(sim.nCells) + 1, -1);
    for (const NamedCells& label : labels) {
        const auto number = static_cast<int>(plan.groups.size());
        plan.groups.push_back({.name = label.name});
        for (const std::int32_t cell : label.cells)
            if (isGrouped(sim, cell) && groupAt(plan, cell) < 0) take(sim, plan, cell, number);
        if (plan.groups.back().firstCell == 0) plan.groups.pop_back(); // a label of other cells
    }
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        if (!isGrouped(sim, cell) || groupAt(plan, cell) >= 0) continue;
        if (plan.groups.size() < maxHeldGroups)
            plan.groups.push_back({});
        else
            plan.groups.back().isRest = true;
        takeNeighbours(sim, plan, cell, static_cast<int>(plan.groups.size()) - 1);
    }
    if (!radiatesToSurroundings(sim)) return;
    plan.groupOf[0] = static_cast<int>(plan.groups.size());
    plan.groups.push_back({});
}

void planChannels(const SimState& sim, BalancePlan& plan) {
    const int heat = sim.nsMax + 1;
    const auto add = [&](int quantity, FlowKind kind, int group) {
        plan.channels.push_back({quantity, kind, group});
        return static_cast<int>(plan.channels.size()) - 1;
    };
    for (std::size_t k = 0; k < plan.groups.size(); ++k) {
        const HeldGroup& group = plan.groups[k];
        const auto number = static_cast<int>(k);
        GroupChannels at;
        for (int species = 0; group.holdsMass && species <= sim.nsMax; ++species) {
            const int channel = add(species, FlowKind::carried, number);
            if (species == 0) at.mass = channel;
        }
        if (group.firstCell != 0) at.carried = add(heat, FlowKind::carried, number);
        if (group.holdsHeat) at.conduction = add(heat, FlowKind::conduction, number);
        if (sim.radActive) at.radiation = add(heat, FlowKind::radiation, number);
        if (sim.radActive) at.heldRadiation = add(heat, FlowKind::heldRadiation, number);
        plan.groupChannels.push_back(at);
    }
    if (!plan.exchangeCells.empty()) {
        plan.speciesExchange = add(0, FlowKind::exchange, -1);
        add(1, FlowKind::exchange, -1);
        add(heat, FlowKind::exchange, -1);
    }
    plan.forces = static_cast<int>(plan.channels.size());
    for (int dim = 1; dim <= sim.nDim; ++dim)
        for (const FlowKind kind : momentumParts) add(heat + dim, kind, -1);
}

/// Adds the faces of a row between cells of the box and held ones, by groups.
template <class Code>
void addFaces(
    const SimState& sim, const BalancePlan& plan, std::int32_t first, const Code& code, FaceList& list, bool grouped) {
    struct Found {
        BoxFace face;
        int group;
    };

    std::vector<Found> found;
    for (std::int32_t cell = first; cell < first + sim.cellCount[1]; ++cell)
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            const std::int64_t next = std::int64_t{cell} + sim.cellStride[dim];
            if (!inSameRow(sim, cell, next, dim)) continue;
            const auto upper = static_cast<std::int32_t>(next);
            const bool lowerHeld = isHeld(code(cell));
            if (lowerHeld == isHeld(code(upper))) continue;
            const int group = grouped ? plan.groupOf[static_cast<std::size_t>(lowerHeld ? cell : upper)] : -1;
            const int side = lowerHeld ? 1 : -1;
            found.push_back({{cell, static_cast<std::int8_t>(dim), static_cast<std::int8_t>(side)}, group});
        }
    std::stable_sort(found.begin(), found.end(), [](const Found& a, const Found& b) { return a.group < b.group; });
    for (std::size_t k = 0; k < found.size(); ++k) {
        if (k == 0 || found[k].group != found[k - 1].group)
            list.runs.push_back({list.faces.size(), list.faces.size(), found[k].group});
        list.faces.push_back(found[k].face);
        list.runs.back().end = list.faces.size();
    }
}

void planFaces(const SimState& sim, BalancePlan& plan) {
    plan.momentumFaces.resize(static_cast<std::size_t>(sim.nDim));
    for (std::int64_t row = 0; row < plan.rows; ++row) {
        const auto first = static_cast<std::int32_t>(1 + row * sim.cellCount[1]);
        addFaces(
            sim, plan, first, [&](std::int32_t cell) { return sim.wallPressure[cell]; }, plan.massFaces, true);
        addFaces(
            sim, plan, first, [&](std::int32_t cell) { return sim.wallTemperature[cell]; }, plan.heatFaces, true);
        for (int dim = 1; dim <= sim.nDim; ++dim)
            addFaces(
                sim, plan, first, [&](std::int32_t cell) { return sim.wallVelocity(cell, dim); },
                plan.momentumFaces[static_cast<std::size_t>(dim) - 1], false);
    }
}

void planCells(const SimState& sim, BalancePlan& plan) {
    const auto heat = static_cast<std::size_t>(sim.nsMax) + 1;
    plan.boxCells.assign(heat + 1 + static_cast<std::size_t>(sim.nDim), 0);
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        if (isImposed(sim.wallPressure[cell])) plan.sinks.push_back(cell);
        if (hasSpeciesExchange(sim, cell)) plan.exchangeCells.push_back(cell);
        plan.hasDrag |= sim.friction[cell] != 0;
        plan.boxCells[0] += isHeld(sim.wallPressure[cell]) ? 0 : 1;
        plan.boxCells[heat] += isHeld(sim.wallTemperature[cell]) ? 0 : 1;
        for (int dim = 1; dim <= sim.nDim; ++dim)
            plan.boxCells[heat + static_cast<std::size_t>(dim)] += isHeld(sim.wallVelocity(cell, dim)) ? 0 : 1;
    }
    std::fill(plan.boxCells.begin(), plan.boxCells.begin() + sim.nsMax + 1, plan.boxCells[0]);
}

std::unique_ptr<ThreadTeam> makeTeam(const SimState& sim, int threads, std::int64_t rows) {
    const int wanted = threads > 0 ? threads : suitableThreads(sim.nCells);
    try {
        return std::make_unique<ThreadTeam>(static_cast<int>(std::min<std::int64_t>(wanted, rows)));
    } catch (const std::system_error&) { // the system grants no further thread
        return std::make_unique<ThreadTeam>(1);
    }
}

} // namespace

BalancePlan planBalance(const SimState& sim, const std::vector<NamedCells>& labels, int threads) {
    BalancePlan plan;
    plan.revision = sim.revision;
    plan.rows = sim.nCells / sim.cellCount[1];
    planGroups(sim, plan, labels);
    planCells(sim, plan);
    planChannels(sim, plan);
    planFaces(sim, plan);
    plan.sumsOfRow = std::max(plan.boxCells.size() * sumsOfQuantity, static_cast<std::size_t>(sim.nDim) * 3);
    const std::int64_t together = std::clamp<std::int64_t>(sumsAtOnce / plan.sumsOfRow, 1, plan.rows);
    plan.rowSums.assign(static_cast<std::size_t>(together) * plan.sumsOfRow, 0);
    plan.totals.assign(plan.sumsOfRow, 0);
    plan.stageSums.assign(plan.channels.size(), 0);
    plan.team = makeTeam(sim, threads, plan.rows);
    return plan;
}

} // namespace norvane
