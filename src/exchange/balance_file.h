#pragma once
// The table of the balances of a run, m_balance.csv, and the same in words.

#include "core/balance.h"

#include <string>
#include <vector>

namespace norvane {

struct BalanceColumn {
    std::string name; ///< "heat conducted from B4"
    const char* unit;
    double value;
    bool isState; ///< a content or a flow of the gas and its heat: what comes to rest in a steady flow
};

/// "B4", "inlet", "surroundings", "others": what a group is called.
std::string nameOf(const SimState& sim, const HeldGroup& group);

/// "mass", or "mass 0" where there are several species; "heat"; "momentum 1".
std::string quantityName(const SimState& sim, int quantity);

/// All columns after step and time, in their order: docs/results.md.
std::vector<BalanceColumn> balanceColumns(const SimState& sim, const BalancePlan& plan, const StepBalance& balance);

/// The first line: "step,time [s],mass [kg],..."; with its end, as the following.
std::string balanceHeader(const SimState& sim, const BalancePlan& plan);

std::string balanceRow(const SimState& sim, const BalancePlan& plan, const StepBalance& balance);

/// A line for each quantity: "heat: inlet +123 W, ... box +8.9 W, remainder 0.1 W".
std::vector<std::string> balanceLines(const SimState& sim, const BalancePlan& plan, const StepBalance& balance);

/// What rounding took of the changes of a quantity, over all steps that were measured.
struct LostChange {
    double moved = 0; ///< as in QuantityBalance, as the following
    double lost = 0;
    double kept = 0;
    double lostCells = 0;
};

/// Quantities of whose change more than a tenth is lost to rounding, and what helps; `steps` were measured.
std::vector<std::string> lostChangeLines(const SimState& sim,
                                         const BalancePlan& plan,
                                         const std::vector<LostChange>& lost,
                                         std::int64_t steps,
                                         bool isCompensated);

} // namespace norvane
