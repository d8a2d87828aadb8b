// Balances: what is summed at the edge of the box is what its cells gain, term by term, and what is left is rounding.

#include "core/addressing.h"
#include "core/balance.h"
#include "core/processor_engine.h"
#include "core/remainders.h"
#include "core/source_terms.h"
#include "exchange/balance_file.h"
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
    std::vector<double> slopes{};  ///< of the species of a cell

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
                double& slope = slopes[static_cast<std::size_t>(k)];
                slope += term;
                if (!hasRemainders(sim)) slope = static_cast<float>(slope);
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
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            for (const bool isUpper : {false, true}) addFace(cell, dim, isUpper);
            for (double& slope : slopes) slope = static_cast<float>(slope);
        }
        double inflow = 0;
        for (const double slope : slopes) inflow += slope;
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
    const int dim = quantity - heat;
    const bool keeps = hasRemainders(sim);
    if (quantity < heat)
        return double(sim.stageSpecies(committedSlot, quantity, cell))
               + (keeps ? double(sim.speciesRemainder(cell, quantity)) : 0);
    if (quantity == heat)
        return double(sim.stageEnergy(committedSlot, cell)) + (keeps ? double(sim.energyRemainder(cell, 0)) : 0);
    return double(sim.stageMomentum(committedSlot, cell, dim)) + (keeps ? double(sim.momentumRemainder(cell, dim)) : 0);
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

    template <class Look>
    void step(const Look& look) {
        sum.assign(plan.boxCells.size(), 0);
        magnitude = sum;
        sim.stepCount += 1;
        for (int stage = 1; stage <= 4; ++stage) {
            runStage(sim, stages, stage, [](const StageFault&) {});
            measureStage(sim, plan, stage, balance);
            look(stage);
            const CellSums cells = cellSums(sim);
            for (std::size_t k = 0; k < sum.size(); ++k) {
                sum[k] += (stage == 1 || stage == 4 ? 1 : 2) * cells.sum[k] / 6;
                magnitude[k] += (stage == 1 || stage == 4 ? 1 : 2) * cells.magnitude[k] / 6;
            }
        }
    }

    void step() {
        step([](int) {});
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
        const double rounding = hasRemainders(before) ? std::ldexp(sizes, -48) : std::ldexp(sizes, -24);
        const double bound = rounding / balance.dt + std::ldexp(terms * model.magnitude[k], -24) + 1e-30;
        ASSERT_LE(std::abs(remainderOf(model.plan, balance, quantity)), bound) << name << ", quantity " << k;
        compared[1] += 1;
    }
    model.sim = before;
    model.sim.revision += 1;
}

/// The same bits, not-a-numbers included.
bool areSame(const StepBalance& a, const StepBalance& b) {
    const auto same = [](double x, double y) { return x == y || (x != x && y != y); };
    for (std::size_t k = 0; k < a.flows.size(); ++k)
        if (!same(a.flows[k], b.flows[k])) return false;
    for (std::size_t k = 0; k < a.quantities.size(); ++k)
        if (!same(a.quantities[k].content, b.quantities[k].content)
            || !same(a.quantities[k].change, b.quantities[k].change)
            || !same(a.quantities[k].lost, b.quantities[k].lost))
            return false;
    return true;
}

TEST(balance, closesOnRandomModelsForAnyNumberOfThreads) {
    std::array<int, 2> compared{};
    for (unsigned seed = 1; seed <= 150; ++seed) {
        RandomModel random(seed);
        TestProgram test;
        test.build(random.table());
        if (random.pick(0, 1) == 0) addRandomPairs(test.sim, random);
        test.sim.compensated = random.pick(0, 2) == 0;
        fitRemainders(test.sim);
        Measured model(test.sim);
        BalancePlan shared = planBalance(test.sim, {}, random.pick(2, 3));
        shared.rowSums.resize(2 * shared.sumsOfRow); // several turns on a small grid
        const std::string name = "seed " + std::to_string(seed) + ", step ";
        for (int step = 1; step <= 3; ++step) {
            StepBalance other;
            model.step([&](int stage) { measureStage(test.sim, shared, stage, other); });
            ASSERT_TRUE(areSame(model.balance, other)) << name << step;
            checkStep(model, name + std::to_string(step), compared);
            if (testing::Test::HasFatalFailure()) return;
        }
    }
    EXPECT_GT(compared[0], 1000) << "most models were left out";
    EXPECT_GT(compared[1], 1000) << "most models were left out";
}

// Nine faces of 100 W/K between 400 and 300 K; the label takes the cold wall, and nothing is carried.
const std::string slab = "DT 0.5:DD 0;0.1:LA 10:CP 1000:TT 350:WV 0;2\t\t\t\t\t\t\t\t\t\nL\t\t\t\t\t\t\t\t\t\n"
                         ".WV 0;2:WT -1:TT 400\tWV 0;2\tWV 0;2\tWV 0;2\tWV 0;2\tWV 0;2\tWV 0;2\tWV 0;2\tWV 0;2\t"
                         "WV 0;2:WT -1:TT 300\nL\t\t\t\t\t\t\t\t\t";

TEST(balance, givesTheHeatThroughASlab) {
    TestProgram test;
    test.build(slab);
    Measured model(test.sim, {{"cold", {10}}});
    for (int step = 0; step < 400; ++step) model.step();
    EXPECT_NEAR(model.flow(FlowKind::conduction, 1, 1), 1e4 / 9, 0.01);
    EXPECT_NEAR(model.flow(FlowKind::conduction, 1, 0), -1e4 / 9, 0.01);
    EXPECT_EQ(model.flow(FlowKind::carried, 1, 0), 0);
    EXPECT_NEAR(model.balance.quantities[1].change / 0.5, 0, 0.02);
    const std::string row = balanceHeader(test.sim, model.plan);
    EXPECT_NE(row.find("step,time [s],mass [kg],mass flows [kg/s],"), std::string::npos) << row;
    EXPECT_NE(row.find(",heat conducted from cold [W],heat carried from A3 [W],"), std::string::npos) << row;
}

TEST(balance, tellsGasHeatAndForcesApart) {
    TestProgram test;
    // 12 kg/s of 300 K from an inlet through a porous duct of 1 m2 to an outlet, whose sink takes the heat away.
    test.build("DT 1E-4:DD 0;0.1:CP 1000:TT 300:RH 1.2:RR 500:LA 0:ET 0\t\t\t\t\t\nL\t\t\t\t\t\n"
               ".WV 1;-1:VV 1;10:WP 1:WT -1\t\t\t\t\t.WP -1:WV 1;0\nL\t\t\t\t\t");
    Measured model(test.sim);
    for (int step = 0; step < 6000; ++step) model.step();
    EXPECT_NEAR(model.flow(FlowKind::carried, 0, 0), 12, 1e-5);
    EXPECT_NEAR(model.flow(FlowKind::carried, 0, 1), -12, 1e-2);
    EXPECT_NEAR(model.flow(FlowKind::carried, 1, 0), 3.6e6, 10);
    EXPECT_NEAR(model.flow(FlowKind::carried, 1, 1), -3.6e6, 3e3);
    // Drag of 50 kg/s in four cells at 10 m/s, and in the last one, where the sink takes momentum, too: 120 N = 62 kg/s
    // u.
    EXPECT_NEAR(model.flow(FlowKind::drag, 2), -2000 - 50 * 120 / 62., 40);
    EXPECT_NEAR(totalFlow(model.plan, model.balance, 2), 0, 2);
}

TEST(balance, tellsRadiationByPartners) {
    TestProgram test;
    test.build("DT 1E-3:WV 0;2:DD 0;1:LA 0\t\t\t\nL\t\t\t\n.WV 0;2:TT 400\tWV 0;2:WT -1:TT 600\tWV 0;2:TT 500\t"
               "WV 0;2:WT 1:TT 300\nL\t\t\t");
    SimState& sim = test.sim;
    sim.radActive = true;
    sim.sigmaRoot = std::pow(5.67e-8, 0.25);
    sim.radPairCount = 5;
    sim.radFactor.allocate(0, 5);
    for (auto& cells : sim.radPair) cells.allocate(0, 5);
    const int cells[][2] = {{1, 2}, {2, -4}, {3, 0}, {1, 3}, {4, 0}};
    for (int pair = 1; pair <= 5; ++pair) {
        sim.radPair[0][pair] = cells[pair - 1][0];
        sim.radPair[1][pair] = cells[pair - 1][1];
        sim.radFactor[pair] = 0.1f * static_cast<float>(pair);
    }
    Measured model(sim);
    model.step();
    const auto power = [](double from, double to) { return 5.67e-8 * (std::pow(from, 4) - std::pow(to, 4)); };
    const double surroundings = double(sim.temperature[0]);
    EXPECT_NEAR(model.flow(FlowKind::radiation, 1, 0), 0.1 * power(600, 400), 0.05);
    EXPECT_EQ(model.flow(FlowKind::radiation, 1, 1), 0);
    EXPECT_NEAR(model.flow(FlowKind::radiation, 1, 2), 0.3 * power(surroundings, 500), 0.05);
    EXPECT_NEAR(model.flow(FlowKind::heldRadiation, 1, 0), 0.2 * power(600, 300), 0.05);
    EXPECT_NEAR(model.flow(FlowKind::heldRadiation, 1, 1), 0.5 * power(300, surroundings) - 0.2 * power(600, 300),
                0.05);
    EXPECT_NEAR(model.flow(FlowKind::heldRadiation, 1, 2), -0.5 * power(300, surroundings), 0.05);
    EXPECT_NE(balanceHeader(sim, model.plan).find("heat radiated from surroundings [W]"), std::string::npos);
}

TEST(balance, ofAClosedBoxIsRoundingAlone) {
    TestProgram test;
    test.build("DT 1E-5:NS 1:CC 1;0.2:GG 2;9.81\t\t\t\nL\t\t\t\n\tPP 2E5\t\t\n\t\tCC 1;0.5:TT 400\t\n\t\t\t\nL\t\t\t");
    Measured model(test.sim);
    for (int step = 0; step < 50; ++step) {
        model.step();
        for (int quantity = 0; quantity <= 2; ++quantity) {
            const QuantityBalance& q = model.balance.quantities[static_cast<std::size_t>(quantity)];
            EXPECT_EQ(totalFlow(model.plan, model.balance, quantity), 0);
            EXPECT_LE(std::abs(q.change), std::ldexp(q.content, -24)) << "what the conservation test allows a step";
        }
        double weight = 0;
        for (std::int32_t cell = 1; cell <= 8; ++cell) weight += 9.81 * double(test.sim.cellMass[cell]);
        EXPECT_NEAR(model.flow(FlowKind::gravity, 4), weight, 0.05 * weight) << "the last row holds no momentum 2";
    }
}

TEST(balance, tellsWhatRoundingTakesAway) {
    for (const bool isCompensated : {false, true})
        for (const float dt : {0.5f, 1e-6f}) {
            TestProgram test;
            test.build(slab);
            test.sim.dt = dt;
            for (std::int32_t cell = 1; cell <= 10; ++cell) test.sim.temperature[cell] = cell == 10 ? 300 : 301;
            for (std::int32_t cell = 1; cell <= 10; ++cell)
                test.sim.stageEnergy(committedSlot, cell) = 100 * test.sim.temperature[cell];
            test.sim.compensated = isCompensated;
            fitRemainders(test.sim);
            Measured model(test.sim);
            std::vector<LostChange> lost(3);
            for (int step = 0; step < 4; ++step) {
                model.step();
                const QuantityBalance& q = model.balance.quantities[1];
                lost[1].moved += q.moved;
                lost[1].lost += q.lost;
                lost[1].kept += q.kept;
                lost[1].lostCells += q.lostCells;
            }
            const auto lines = lostChangeLines(test.sim, model.plan, lost, 4, isCompensated);
            ASSERT_EQ(lines.size(), dt == 0.5f ? 0u : 1u);
            if (lines.empty()) continue;
            const std::string begin = isCompensated ? "rounding would take 100 % of the change of heat away"
                                                    : "rounding takes 100 % of the change of heat away";
            EXPECT_EQ(lines[0].substr(0, begin.size()), begin);
            EXPECT_LT(lost[1].kept, (isCompensated ? 1e-3 : 2) * lost[1].lost);
            EXPECT_GT(lost[1].kept, isCompensated ? 0 : 0.9 * lost[1].moved);
        }
}

} // namespace
} // namespace norvane
