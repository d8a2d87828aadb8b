#include "core/balance_rows.h"

#include "core/addressing.h"
#include "core/exact_arithmetic.h"
#include "core/remainders.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace norvane {

namespace {

constexpr int lanes = 4;

/// `count` sums side by side, in lanes.
template <int count>
struct LaneSums {
    double lane[count][lanes] = {};

    void store(double* sums) const {
        for (int k = 0; k < count; ++k) sums[k] = (lane[k][0] + lane[k][1]) + (lane[k][2] + lane[k][3]);
    }
};

/// Calls `work(cell, lane)` for the cells [0 .. count - 1] of a row.
template <class Work>
void forLanes(int count, const Work& work) {
    int i = 0;
    for (; i + lanes <= count; i += lanes)
        for (int lane = 0; lane < lanes; ++lane) work(i + lane, lane);
    for (; i < count; ++i) work(i, i % lanes);
}

/// Calls `work(row, sums)` for all rows, several at a time on the threads of the plan, and adds the first `width` sums
/// of each row to `totals`, row after row.
template <class Work>
void sumRows(BalancePlan& plan, std::size_t width, double* totals, const Work& work) {
    const auto together = static_cast<std::int64_t>(plan.rowSums.size() / plan.sumsOfRow);
    const int threads = plan.team->size();
    for (std::int64_t first = 0; first < plan.rows; first += together) {
        const std::int64_t rows = std::min(together, plan.rows - first);
        const auto share = [&](int thread) {
            for (std::int64_t k = rows * thread / threads; k < rows * (thread + 1) / threads; ++k)
                work(first + k, &plan.rowSums[static_cast<std::size_t>(k) * plan.sumsOfRow]);
        };
        plan.team->run(std::ref(share)); // by reference, which allocates nothing
        for (std::int64_t k = 0; k < rows; ++k)
            for (std::size_t sum = 0; sum < width; ++sum)
                totals[sum] += plan.rowSums[static_cast<std::size_t>(k) * plan.sumsOfRow + sum];
    }
}

/// (4) in the cells of a row that hold this component of momentum and have an upper face.
double pressureForce(const SimState& sim, std::int32_t first, int dim) {
    const std::int64_t stride = sim.cellStride[dim];
    const bool hasUpper = dim == 1 || inSameRow(sim, first, first + stride, dim);
    const int count = !hasUpper ? 0 : dim == 1 ? sim.cellCount[1] - 1 : sim.cellCount[1];
    const float* const pressure = &sim.pressure[first];
    const float* const above = pressure + (hasUpper ? stride : 0);
    const float* const area = sim.faceArea.component(dim) + first;
    const std::int16_t* const code = sim.wallVelocity.component(dim) + first;
    LaneSums<1> sums;
    forLanes(count, [&](int i, int lane) {
        const double force = (double(pressure[i]) - double(above[i])) * double(area[i]);
        sums.lane[0][lane] += code[i] == 0 ? force : 0.0;
    });
    double sum = 0;
    sums.store(&sum);
    return sum;
}

/// (7) and (8) in the cells of a row in which they act.
void cellForces(const SimState& sim, std::int32_t first, int dim, double* drag, double* weight) {
    const float* const velocity = sim.velocity.component(dim) + first;
    const float* const friction = &sim.friction[first];
    const float* const mass = &sim.cellMass[first];
    const std::int16_t* const code = sim.wallVelocity.component(dim) + first;
    const std::int16_t* const whole = sim.wallVelocity.component(0) + first;
    const double gravity = sim.gravity[dim];
    LaneSums<2> sums;
    forLanes(sim.cellCount[1], [&](int i, int lane) {
        const bool acts = code[i] == 0 && whole[i] == 0;
        const double slows = double(velocity[i]) * double(friction[i]);
        const double pulls = gravity * double(mass[i]);
        sums.lane[0][lane] -= acts ? slows : 0.0;
        sums.lane[1][lane] += acts ? pulls : 0.0;
    });
    double both[2];
    sums.store(both);
    *drag = both[0];
    *weight = both[1];
}

/// A quantity of a row in its slots.
struct QuantityRow {
    const float* committed;
    const float* slopes[4];
    const std::int16_t* code;
    const float* remainder; ///< null where none is kept
};

template <class Slots>
QuantityRow quantityRow(const SimState& sim,
                        const Slots& slots,
                        const CellTable<float>& remainders,
                        std::int64_t component,
                        std::int64_t first,
                        const std::int16_t* code) {
    const auto at = [&](int slot) { return slots.slot(slot).component(component) + first; };
    const float* const remainder = hasRemainders(sim) ? remainders.component(component) + first : nullptr;
    return {at(committedSlot), {at(1), at(2), at(3), at(4)}, code + first, remainder};
}

/// `quantity` as channels number them.
QuantityRow quantityRow(const SimState& sim, int quantity, std::int64_t first) {
    const int heat = sim.nsMax + 1;
    const int dim = quantity - heat;
    if (quantity < heat)
        return quantityRow(sim, sim.stageSpecies, sim.speciesRemainder, quantity, first, &sim.wallPressure[0]);
    if (quantity == heat)
        return quantityRow(sim, sim.stageEnergy, sim.energyRemainder, 0, first, &sim.wallTemperature[0]);
    return quantityRow(sim, sim.stageMomentum, sim.momentumRemainder, dim, first, sim.wallVelocity.component(dim));
}

/// (S3), or (S5) where remainders are kept, in the cells of a row that are integrated. `sums` are the members of
/// QuantityBalance in their order.
template <bool Compensated>
void sumQuantity(const QuantityRow& q, int count, double dt, double* sums) {
    LaneSums<sumsOfQuantity> s;
    forLanes(count, [&](int i, int lane) {
        const double before = q.committed[i];
        const double sum =
            (2 * double(q.slopes[1][i]) + double(q.slopes[0][i])) + 2 * double(q.slopes[2][i]) + double(q.slopes[3][i]);
        const double increment = sum * dt / 6;
        const double plain = static_cast<float>(before + increment);
        const double lost = std::fabs(increment - (plain - before));
        double after = plain;
        double change = plain - before;
        if constexpr (Compensated) {
            const double next = before + double(q.remainder[i]) + increment;
            const double state = static_cast<float>(next);
            const double rest = static_cast<float>(next - state);
            after = state + rest;
            change = (state - before) + (rest - double(q.remainder[i]));
        }
        const bool free = q.code[i] == 0;
        s.lane[0][lane] += free ? after : 0.0;
        s.lane[1][lane] += free ? change : 0.0;
        s.lane[2][lane] += free ? std::fabs(increment) : 0.0;
        s.lane[3][lane] += free ? lost : 0.0;
        if constexpr (Compensated) s.lane[4][lane] += free ? std::fabs(increment - change) : 0.0;
        s.lane[5][lane] += free && increment != 0 && plain == before ? 1.0 : 0.0;
    });
    s.store(sums);
    if constexpr (!Compensated) sums[4] = sums[3];
}

} // namespace

void addForces(const SimState& sim, BalancePlan& plan) {
    const bool hasGravity = std::any_of(&sim.gravity[1], &sim.gravity[1] + sim.nDim, [](float g) { return g != 0; });
    const bool hasCellForces = hasGravity || plan.hasDrag;
    const auto dims = static_cast<std::size_t>(sim.nDim);
    std::vector<double>& totals = plan.totals;
    std::fill(totals.begin(), totals.end(), 0.0);
    sumRows(plan, 3 * dims, totals.data(), [&](std::int64_t row, double* sums) {
        const auto first = static_cast<std::int32_t>(1 + row * sim.cellCount[1]);
        for (int dim = 1; dim <= sim.nDim; ++dim, sums += 3) {
            sums[0] = pressureForce(sim, first, dim);
            sums[1] = sums[2] = 0;
            if (hasCellForces) cellForces(sim, first, dim, &sums[1], &sums[2]);
        }
    });
    for (std::size_t k = 0; k < dims; ++k) {
        double* const parts = &plan.stageSums[static_cast<std::size_t>(plan.forces) + k * std::size(momentumParts)];
        parts[0] += totals[3 * k];
        parts[3] += totals[3 * k + 1];
        parts[4] += totals[3 * k + 2];
    }
}

void sumQuantities(const SimState& sim, BalancePlan& plan, StepBalance& balance) {
    const std::size_t quantities = balance.quantities.size();
    const auto sumRow = hasRemainders(sim) ? sumQuantity<true> : sumQuantity<false>;
    std::vector<double>& totals = plan.totals;
    std::fill(totals.begin(), totals.end(), 0.0);
    sumRows(plan, quantities * sumsOfQuantity, totals.data(), [&](std::int64_t row, double* sums) {
        const std::int64_t first = 1 + row * sim.cellCount[1];
        for (std::size_t k = 0; k < quantities; ++k, sums += sumsOfQuantity)
            sumRow(quantityRow(sim, static_cast<int>(k), first), sim.cellCount[1], double(sim.dt), sums);
    });
    for (std::size_t k = 0; k < quantities; ++k) {
        const double* const sums = &totals[k * sumsOfQuantity];
        balance.quantities[k] = {sums[0], sums[1], sums[2], sums[3], sums[4], sums[5]};
    }
}

} // namespace norvane
