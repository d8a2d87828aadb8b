#pragma once
// The view factor file: pairs of cells that exchange heat by radiation, made elsewhere.

#include "core/sim_state.h"
#include "platform/interface.h"

namespace norvane {

/// Reads the view factor file, baseName + "_rad" in inputDir, into radPair and radFactor and switches radiation on. The
/// file holds three whole numbers, of which the third is the number of records, and records of four numbers: the first
/// cell [1..nCells], the second cell [-nCells..nCells] (0: the surroundings; the sign has no meaning) and two factors,
/// whose product is the exchange factor of the pair, m2. What follows the last record is not read.
/// Writes radActive, sigmaRoot, radPairCount, radPair, radFactor, openError. A loaded geometry is enough.
/// Faults, each reported by a message: no geometry; a file that can't be opened or read; text in the place of a number,
/// a negative number of records, a file that ends before the last of them, a cell beyond the grid; no memory for the
/// table. After each of them the earlier table is in force whole.
void importViewFactors(SimState& sim, Interface& ui);

} // namespace norvane
