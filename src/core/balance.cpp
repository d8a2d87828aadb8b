#include "core/balance.h"

#include "core/addressing.h"
#include "core/balance_rows.h"
#include "core/exact_arithmetic.h"
#include "core/remainders.h"
#include "core/source_terms.h"
#include "core/wall_codes.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace norvane {

namespace {

/// A face as the terms (1) to (6) read it.
struct FaceFlow {
    std::int32_t upper;
    std::int32_t donor;
    bool isOpen;
    double mass; ///< kg/s upwards
};

FaceFlow flowThrough(const SimState& sim, std::int32_t lower, int dim) {
    const std::int32_t upper = lower + sim.cellStride[dim];
    const std::int32_t donor = sim.velocity(lower, dim) > 0 ? lower : upper;
    const bool isOpen = !isClosed(sim.wallVelocity(lower, dim)) && sim.density[donor] > sim.rhoFloor;
    return {upper, donor, isOpen,
            double(sim.inverseSize(lower, dim)) * double(sim.stageMomentum(workSlot, lower, dim))};
}

/// Sums of the stage in hand, by channel.
struct StageSums {
    const SimState& sim;
    const BalancePlan& plan;
    std::vector<double>& sums;

    double& at(int channel) const { return sums[static_cast<std::size_t>(channel)]; }

    const GroupChannels& of(int group) const { return plan.groupChannels[static_cast<std::size_t>(group)]; }

    /// The first of the parts of a component of momentum.
    int forces(int dim) const { return plan.forces + (dim - 1) * static_cast<int>(std::size(momentumParts)); }
};

/// Calls `term(face, flow)`, into the box, for the faces of a run and adds the results in order.
template <class Term>
double sumOver(const SimState& sim, const FaceList& list, const FaceRun& run, const Term& term) {
    double sum = 0;
    for (std::size_t k = run.begin; k < run.end; ++k) {
        const BoxFace& face = list.faces[k];
        sum += double(face.sign) * term(face, flowThrough(sim, face.lower, face.dim));
    }
    return sum;
}

/// (1)
void addMassFlows(const StageSums& s) {
    for (const FaceRun& run : s.plan.massFaces.runs)
        for (int species = 0; species <= s.sim.nsMax; ++species)
            s.at(s.of(run.group).mass + species) +=
                sumOver(s.sim, s.plan.massFaces, run, [&](const BoxFace&, const FaceFlow& flow) {
                    return flow.isOpen ? flow.mass * double(s.sim.concentration(flow.donor, species)) : 0;
                });
}

/// (2), (5)
void addHeatFlows(const StageSums& s) {
    const SimState& sim = s.sim;
    for (const FaceRun& run : s.plan.heatFaces.runs) {
        const GroupChannels& group = s.of(run.group);
        s.at(group.carried) += sumOver(sim, s.plan.heatFaces, run, [&](const BoxFace&, const FaceFlow& flow) {
            if (!flow.isOpen) return 0.0;
            return flow.mass * double(sim.heatCapacity[flow.donor]) * double(sim.temperature[flow.donor]);
        });
        s.at(group.conduction) += sumOver(sim, s.plan.heatFaces, run, [&](const BoxFace& face, const FaceFlow& flow) {
            return (double(sim.temperature[face.lower]) - double(sim.temperature[flow.upper]))
                   * double(sim.conductionCoef(face.lower, face.dim));
        });
    }
}

/// (3), (6)
void addMomentumFlows(const StageSums& s) {
    const SimState& sim = s.sim;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const FaceList& list = s.plan.momentumFaces[static_cast<std::size_t>(dim) - 1];
        for (const FaceRun& run : list.runs) {
            s.at(s.forces(dim) + 1) += sumOver(sim, list, run, [&](const BoxFace&, const FaceFlow& flow) {
                return flow.isOpen ? flow.mass * double(sim.velocity(flow.donor, dim)) : 0;
            });
            s.at(s.forces(dim) + 2) += sumOver(sim, list, run, [&](const BoxFace& face, const FaceFlow& flow) {
                return (double(sim.velocity(face.lower, dim)) - double(sim.velocity(flow.upper, dim)))
                       * double(sim.viscousCoef(face.lower, face.dim));
            });
        }
    }
}

/// The slope of a species in a cell after its faces. A sink reads it; the slot may hold what exchange has added since.
float speciesInflow(const SimState& sim, std::int32_t cell, int species) {
    const bool isWide = hasRemainders(sim); // then the terms of a dimension are rounded together
    float slope = 0;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        double sum = slope;
        for (const int side : {-1, 1}) {
            const std::int64_t neighbour = cell + side * std::int64_t{sim.cellStride[dim]};
            if (!inSameRow(sim, cell, neighbour, dim)) continue;
            const FaceFlow flow = flowThrough(sim, side < 0 ? static_cast<std::int32_t>(neighbour) : cell, dim);
            if (!flow.isOpen) continue;
            const double term = flow.mass * double(sim.concentration(flow.donor, species));
            sum = side < 0 ? sum + term : sum - term;
            if (!isWide) sum = static_cast<float>(sum);
        }
        slope = static_cast<float>(sum);
    }
    return slope;
}

/// (9)
void addSinks(const StageSums& s) {
    const SimState& sim = s.sim;
    for (const std::int32_t cell : s.plan.sinks) {
        double inflow = 0;
        for (int species = 0; species <= sim.nsMax; ++species) inflow += double(speciesInflow(sim, cell, species));
        const double makeUp = 0 - inflow;
        if (!isHeld(sim.wallTemperature[cell]))
            s.at(s.of(s.plan.groupOf[static_cast<std::size_t>(cell)]).carried) +=
                makeUp * double(sim.temperature[cell]) * double(sim.heatCapacity[cell]);
        for (int dim = 1; dim <= sim.nDim; ++dim)
            if (!isHeld(sim.wallVelocity(cell, dim)))
                s.at(s.forces(dim) + 5) += makeUp * double(sim.velocity(cell, dim));
    }
}

/// (10)
void addExchange(const StageSums& s) {
    for (const std::int32_t cell : s.plan.exchangeCells) {
        const double flow = speciesExchangeFlow(s.sim, cell);
        if (!isHeld(s.sim.wallPressure[cell])) {
            s.at(s.plan.speciesExchange) += flow;
            s.at(s.plan.speciesExchange + 1) -= flow;
        }
        if (!isHeld(s.sim.wallTemperature[cell])) s.at(s.plan.speciesExchange + 2) -= speciesExchangeHeat(flow);
    }
}

/// (11)
void addRadiation(const StageSums& s) {
    const SimState& sim = s.sim;
    for (std::int32_t pair = 1; sim.radActive && pair <= sim.radPairCount; ++pair) {
        if (!pairInGrid(sim, pair)) continue;
        const std::int32_t first = sim.radPair[0][pair];
        const std::int32_t second = std::abs(sim.radPair[1][pair]);
        const bool firstInBox = !isHeld(sim.wallTemperature[first]);
        const bool secondInBox = second != 0 && !isHeld(sim.wallTemperature[second]);
        if (firstInBox && secondInBox) continue;
        const double power = radiatedPower(sim, pair);
        const GroupChannels* const ofFirst =
            firstInBox ? nullptr : &s.of(s.plan.groupOf[static_cast<std::size_t>(first)]);
        const GroupChannels* const ofSecond =
            secondInBox ? nullptr : &s.of(s.plan.groupOf[static_cast<std::size_t>(second)]);
        if (ofFirst != nullptr) s.at(ofSecond != nullptr ? ofFirst->heldRadiation : ofFirst->radiation) += power;
        if (ofSecond != nullptr) s.at(ofFirst != nullptr ? ofSecond->heldRadiation : ofSecond->radiation) -= power;
    }
}

} // namespace

void measureStage(const SimState& sim, BalancePlan& plan, int stage, StepBalance& balance) {
    if (stage == 1) {
        balance.step = sim.stepCount;
        balance.dt = double(sim.dt);
        balance.flows.assign(plan.channels.size(), 0);
        balance.quantities.assign(plan.boxCells.size(), {});
    }
    std::fill(plan.stageSums.begin(), plan.stageSums.end(), 0.0);
    const StageSums sums{sim, plan, plan.stageSums};
    addMassFlows(sums);
    addHeatFlows(sums);
    addMomentumFlows(sums);
    addSinks(sums);
    addExchange(sums);
    addRadiation(sums);
    addForces(sim, plan);
    const double weight = stage == 1 || stage == 4 ? 1 : 2;
    for (std::size_t k = 0; k < balance.flows.size(); ++k) balance.flows[k] += weight * plan.stageSums[k];
    if (stage < 4) return;
    for (double& flow : balance.flows) flow /= 6;
    sumQuantities(sim, plan, balance);
}

double totalFlow(const BalancePlan& plan, const StepBalance& balance, int quantity) {
    double sum = 0;
    for (std::size_t k = 0; k < plan.channels.size(); ++k)
        if (plan.channels[k].quantity == quantity && plan.channels[k].kind != FlowKind::heldRadiation)
            sum += balance.flows[k];
    return sum;
}

double remainderOf(const BalancePlan& plan, const StepBalance& balance, int quantity) {
    const double change = balance.quantities[static_cast<std::size_t>(quantity)].change;
    return change / balance.dt - totalFlow(plan, balance, quantity);
}

} // namespace norvane
