// Balances: what is summed at the edge of the box is what its cells gain, term by term, and what is left is rounding.

#include "core/addressing.h"
#include "core/balance.h"
#include "core/processor_engine.h"
#include "core/source_terms.h"
#include "support/random_model.h"
#include "support/test_program.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace norvane {
namespace {

/// What the cells of the box gain by all terms together, from the equations, a cell at a time.
struct CellSums {
    const SimState& sim;
    std::vector<double> sum;       ///< of each quantity, as channels number them
    std::vector<double> magnitude; ///< the same of the magnitudes
    std::vector<float> slopes{};   ///< of the species of a cell

    int heat() const { return sim.nsMax + 1; }

    bool inBox(std::int32_t cell, int quantity) const {
        if (quantity < heat()) return sim.wallPressure[cell] == 0;
        return quantity == heat() ? sim.wallTemperature[cell] == 0 : sim.wallVelocity(cell, quantity - heat()) == 0;
    }

    void add(std::int32_t cell, int quantity, double term) {
        if (!inBox(cell, quantity)) return;
        sum[static_cast<std::size_t>(quantity)] += term;
        magnitude[static_cast<std::size_t>(quantity)] += std::abs(term);
    }

    void addFace(std::int32_t cell, int dim, bool isUpper) {
        const std::int64_t neighbour = cell + (isUpper ? 1 : -1) * std::int64_t{sim.cellStride[dim]};
        if (!inSameRow(sim, cell, neighbour, dim)) return;
        const auto other = static_cast<std::int32_t>(neighbour);
        const std::int32_t lower = isUpper ? cell : other;
        const std::int32_t donor = sim.velocity(lower, dim) > 0 ? lower : (isUpper ? other : cell);
        const double flow =
            (isUpper ? -1 : 1) * double(sim.inverseSize(lower, dim)) * double(sim.stageMomentum(workSlot, lower, dim));
        if (sim.wallVelocity(lower, dim) <= 0 && sim.density[donor] > sim.rhoFloor) {
            for (int k = 0; k <= sim.nsMax; ++k) {
                const double term = flow * double(sim.concentration(donor, k));
                add(cell, k, term);
                slopes[static_cast<std::size_t>(k)] =
                    static_cast<float>(double(slopes[static_cast<std::size_t>(k)]) + term);
            }
            add(cell, heat(), flow * double(sim.heatCapacity[donor]) * double(sim.temperature[donor]));
            for (int e = 1; e <= sim.nDim; ++e) add(cell, heat() + e, flow * double(sim.velocity(donor, e)));
        }
        if (isUpper)
            add(cell, heat() + dim,
                (double(sim.pressure[cell]) - double(sim.pressure[other])) * double(sim.faceArea(cell, dim)));
        add(cell, heat(),
            (double(sim.temperature[other]) - double(sim.temperature[cell])) * double(sim.conductionCoef(lower, dim)));
        for (int e = 1; e <= sim.nDim; ++e)
            add(cell, heat() + e,
                (double(sim.velocity(other, e)) - double(sim.velocity(cell, e))) * double(sim.viscousCoef(lower, dim)));
    }

    void addCell(std::int32_t cell) {
        slopes.assign(static_cast<std::size_t>(sim.nsMax) + 1, 0);
        for (int dim = 1; dim <= sim.nDim; ++dim)
            for (const bool isUpper : {false, true}) addFace(cell, dim, isUpper);
        double inflow = 0;
        for (const float slope : slopes) inflow += double(slope);
        const bool hasSink = sim.wallPressure[cell] < 0;
        if (hasSink) add(cell, heat(), -inflow * double(sim.temperature[cell]) * double(sim.heatCapacity[cell]));
        for (int e = 1; e <= sim.nDim; ++e) {
            if (hasSink) add(cell, heat() + e, -inflow * double(sim.velocity(cell, e)));
            if (sim.wallVelocity(cell, 0) != 0) continue;
            add(cell, heat() + e, -double(sim.velocity(cell, e)) * double(sim.friction[cell]));
            add(cell, heat() + e, double(sim.gravity[e]) * double(sim.cellMass[cell]));
        }
        if (sim.wallConcentration[cell] != 1 || sim.nsMax < 1) return;
        const double exchange = speciesExchangeFlow(sim, cell);
        add(cell, 0, exchange);
        add(cell, 1, -exchange);
        add(cell, heat(), -exchange * 13e6);
    }

    void addPairs() {
        for (std::int32_t pair = 1; sim.radActive && pair <= sim.radPairCount; ++pair) {
            if (!pairInGrid(sim, pair)) continue;
            const double power = radiatedPower(sim, pair);
            add(sim.radPair[0][pair], heat(), -power);
            if (sim.radPair[1][pair] != 0) add(std::abs(sim.radPair[1][pair]), heat(), power);
        }
    }
};

CellSums cellSums(const SimState& sim) {
    const auto quantities = static_cast<std::size_t>(sim.nsMax + 2 + sim.nDim);
    CellSums sums{sim, std::vector<double>(quantities), std::vector<double>(quantities)};
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) sums.addCell(cell);
    sums.addPairs();
    return sums;
}

double contentOf(const SimState& sim, std::int32_t cell, int quantity) {
    const int heat = sim.nsMax + 1;
    if (quantity < heat) return sim.stageSpecies(committedSlot, quantity, cell);
    return quantity == heat ? sim.stageEnergy(committedSlot, cell)
                            : sim.stageMomentum(committedSlot, cell, quantity - heat);
}

/// A model on its way, measured in each step.
struct Measured {
    SimState& sim;
    BalancePlan plan;
    StepBalance balance{};
    StagePlan stages = planStages(sim, 1);
    std::vector<double> sum{};
    std::vector<double> magnitude{};

    explicit Measured(SimState& model, const std::vector<NamedCells>& labels = {}, int threads = 1)
        : sim(model), plan(planBalance(model, labels, threads)) {
        sim.stageWork = workSlot;
    }

    void step() {
        sum.assign(plan.boxCells.size(), 0);
        magnitude = sum;
        sim.stepCount += 1;
        for (int stage = 1; stage <= 4; ++stage) {
            runStage(sim, stages, stage, [](const StageFault&) {});
            measureStage(sim, plan, stage, balance);
            const CellSums cells = cellSums(sim);
            for (std::size_t k = 0; k < sum.size(); ++k) {
                sum[k] += (stage == 1 || stage == 4 ? 1 : 2) * cells.sum[k] / 6;
                magnitude[k] += (stage == 1 || stage == 4 ? 1 : 2) * cells.magnitude[k] / 6;
            }
        }
    }

    double flow(FlowKind kind, int quantity, int group = -1) const {
        for (std::size_t k = 0; k < plan.channels.size(); ++k) {
            const FlowChannel& channel = plan.channels[k];
            if (channel.kind == kind && channel.quantity == quantity && channel.group == group) return balance.flows[k];
        }
        ADD_FAILURE() << "no such flow";
        return 0;
    }
};

/// Flows are the terms of the cells but for the order of a double sum; the remainder is what singles can round.
void checkStep(Measured& model, const std::string& name, std::array<int, 2>& compared) {
    const SimState before = model.sim;
    const StepBalance balance = model.balance;
    const double terms = 8 * model.sim.nDim + 5;
    for (std::size_t k = 0; k < balance.quantities.size(); ++k) {
        const double flow = totalFlow(model.plan, balance, static_cast<int>(k));
        if (!std::isfinite(model.magnitude[k]) || !std::isfinite(model.sum[k])) continue;
        ASSERT_NEAR(flow, model.sum[k], 1e-12 * model.magnitude[k]) << name << ", flow of quantity " << k;
        compared[0] += 1;
    }
    runStage(model.sim, model.stages, 1, [](const StageFault&) {}); // commits
    for (std::size_t k = 0; k < balance.quantities.size(); ++k) {
        const int quantity = static_cast<int>(k);
        double change = 0;
        double content = 0;
        double sizes = 0;
        for (std::int32_t cell = 1; cell <= before.nCells; ++cell) {
            if (!CellSums{before, {}, {}}.inBox(cell, quantity)) continue;
            change += contentOf(model.sim, cell, quantity) - contentOf(before, cell, quantity);
            content += contentOf(model.sim, cell, quantity);
            sizes += std::abs(contentOf(model.sim, cell, quantity)) + std::abs(contentOf(before, cell, quantity));
        }
        if (!std::isfinite(change) || !std::isfinite(model.magnitude[k])) continue;
        ASSERT_NEAR(balance.quantities[k].change, change, 1e-13 * sizes) << name << ", change of quantity " << k;
        ASSERT_NEAR(balance.quantities[k].content, content, 1e-13 * sizes) << name << ", content of quantity " << k;
        const double bound = std::ldexp(sizes / balance.dt + terms * model.magnitude[k], -24) + 1e-30;
        ASSERT_LE(std::abs(remainderOf(model.plan, balance, quantity)), bound) << name << ", quantity " << k;
        compared[1] += 1;
    }
    model.sim = before;
    model.sim.revision += 1;
}

TEST(balance, closesOnRandomModels) {
    std::array<int, 2> compared{};
    for (unsigned seed = 1; seed <= 150; ++seed) {
        RandomModel random(seed);
        TestProgram test;
        test.build(random.table());
        if (random.pick(0, 1) == 0) addRandomPairs(test.sim, random);
        Measured model(test.sim);
        for (int step = 1; step <= 3; ++step) {
            model.step();
            checkStep(model, "seed " + std::to_string(seed) + ", step " + std::to_string(step), compared);
            if (testing::Test::HasFatalFailure()) return;
        }
    }
    EXPECT_GT(compared[0], 1000) << "most models were left out";
    EXPECT_GT(compared[1], 1000) << "most models were left out";
}

} // namespace
} // namespace norvane
