#pragma once

#include "core/sim_state.h"

namespace norvane {

/// What negative wall codes impose on a cell whose mass, density and free primitives are known: there the primitive is
/// kept, or set to the imposed velocity, and the work state follows from it (docs/equations.md, (P3), (P4), (P5)).
void imposeHeldValues(SimState& sim, std::int32_t cell);

} // namespace norvane
