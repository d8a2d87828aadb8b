#pragma once
// Terms of the slopes that pass through no face, with the numbers of docs/equations.md. Each adds to slot `stage`
// [1..4], after the faces, drag and gravity. Faults: none; infinities and NaNs pass through.

#include "core/sim_state.h"

#include <cstdint>
#include <span>

namespace norvane {

/// A term of cells, which is planned only where it acts.
struct CellTerm {
    const char* name; ///< its heading in docs/equations.md

    /// The first of the cells [first .. end - 1] in which it acts, or does not; `end` where there is none.
    std::int32_t (*find)(const SimState& sim, bool acting, std::int32_t first, std::int32_t end);

    /// Adds it in the cells [first .. end - 1] of a row, in all of which it acts.
    void (*add)(SimState& sim, int stage, std::int32_t first, std::int32_t end);
};

/// In the order in which they are added.
std::span<const CellTerm> cellTerms();

/// (9) The balance of a pressure-held cell (wallPressure below 0): what the faces bring in leaves again, and what they
/// take away is made up, at the cell's own temperature and velocity. Nothing in other cells.
void addSink(SimState& sim, int stage, std::int32_t cell);

/// (10) Species 1 relaxes towards its balance with species 0 (wallConcentration 1), by a first-order rate that follows
/// the temperature; paramGP[11..15] are the factor (-), temperature (K) and limit (mass fraction) of the balance, the
/// temperature (K) of the rate, and its time constant (s) at 973 K. 208 kJ/mol at 16 g/mol pass from the heat to the
/// species. Nothing in other cells.
/// Source: law of Arrhenius for the rate, with a cap of half the species in one time step.
void addSpeciesExchange(SimState& sim, int stage, std::int32_t cell);

/// Whether (10) acts in a cell.
bool hasSpeciesExchange(const SimState& sim, std::int32_t cell);

/// What passes from species 1 to species 0 in a cell in which (10) acts, kg/s.
double speciesExchangeFlow(const SimState& sim, std::int32_t cell);

/// The heat that goes with such a flow, W: 208 kJ/mol at 16 g/mol.
inline double speciesExchangeHeat(double flow) { return flow * 208 * 1000 * 1000 / 16; }

/// (11) Adds the radiation between the cells of all pairs to the energy slopes, W. Cell 0 as second cell stands for the
/// surroundings at temperature[0]. A pair with a cell that the grid does not have is skipped.
/// Source: Stefan-Boltzmann law, with the exchange factor of the pair in m2.
void radiationPairs(SimState& sim, int stage);

/// What the first cell of a pair that is in the grid radiates to the second, W.
float radiatedPower(const SimState& sim, std::int32_t pair);

/// Whether both cells of a pair [1..radPairCount] exist, so that the stage does not skip it.
bool pairInGrid(const SimState& sim, std::int32_t pair);

} // namespace norvane
