#include "check/run_watch.h"

#include "check/stable_step.h"
#include "check/table_rules.h"
#include "core/number_text.h"
#include "core/quantities.h"

#include <cmath>

namespace norvane {

namespace {

/// Also true for what is no number.
bool isBelow0(float value) { return !(value >= 0); }

bool isBad(const SimState& sim, std::int32_t cell, BadValue& bad) {
    const auto refuse = [&](const char* quantity, float value) {
        bad = {cell, quantity, double(value), sim.stepCount};
        return true;
    };
    for (const auto& [name, field] : {std::pair{"temperature", &sim.temperature}, std::pair{"pressure", &sim.pressure},
                                      std::pair{"density", &sim.density}}) {
        const float value = (*field)[cell];
        if (isBelow0(value) || !std::isfinite(value)) return refuse(name, value);
    }
    for (int dim = 1; dim <= sim.nDim; ++dim)
        if (!std::isfinite(sim.velocity(cell, dim))) return refuse("velocity", sim.velocity(cell, dim));
    return false;
}

} // namespace

BadValue firstBadValue(const SimState& sim) {
    BadValue bad;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
        if (isBad(sim, cell, bad)) break;
    return bad;
}

std::string describedPoint(const SimState& sim, std::int32_t cell) {
    return "point " + std::to_string(cell) + " is table cell " + spreadsheetAddress(placeOf(sim, cell)) + ": T "
           + generalText(sim.temperature[cell]) + " K, p " + generalText(sim.pressure[cell]) + " Pa, density "
           + generalText(sim.density[cell]) + " kg/m3";
}

FieldExtremes extremesOf(const SimState& sim, int quantity, int component) {
    FieldExtremes extremes;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const float value = cellValue(sim, quantity, component, cell);
        if (!std::isfinite(value)) continue;
        if (extremes.lowCell == 0 || value < extremes.low) {
            extremes.low = value;
            extremes.lowCell = cell;
        }
        if (extremes.highCell == 0 || value > extremes.high) {
            extremes.high = value;
            extremes.highCell = cell;
        }
    }
    return extremes;
}

void RunWatch::look(const SimState& sim) {
    if (bad.cell == 0) bad = firstBadValue(sim);
    const auto start = std::chrono::steady_clock::now();
    constexpr int share = 50;
    if (bad.cell != 0 || spent_ * share > start - began_) return;
    const LimitingCell limit = stableStep(sim, 0).smallest();
    if (limit.cell != 0 && double(sim.dt) / limit.step > largestFraction) {
        largestFraction = double(sim.dt) / limit.step;
        limitingCell = limit.cell;
    }
    spent_ += std::chrono::steady_clock::now() - start;
}

} // namespace norvane
