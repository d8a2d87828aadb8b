#pragma once

#include "core/sim_state.h"

namespace norvane {

/// Adds to the slopes of a cell all that passes through one of its faces: advection with first-order upwinding, the
/// pressure force, heat conduction and viscous exchange.
///   stage      slot [1..4] that is written, at this cell only
///   cell       [1..nCells]
///   faceIndex  [1..2 nDim]; odd: lower face, even: upper face, dimension by dimension
/// Reads the primitive fields, the momentum of the work slot, coefficients and wall codes. A face is visited from both
/// of its cells, and both visits form the same flow. Faults: none; infinities and NaNs pass through.
void faceTerms(SimState& sim, int stage, std::int32_t cell, int faceIndex);

} // namespace norvane
