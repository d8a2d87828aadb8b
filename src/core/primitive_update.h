#pragma once

#include "core/sim_state.h"
#include "platform/run_events.h"

namespace norvane {

/// Derives the primitive fields of all cells from the work slot (stageWork), and imposes what wall codes hold: there a
/// primitive is kept and the work slot follows from it. In the order of the steps, for each cell:
///   cellMass       = sum of the species masses                        kg
///   density        = cellMass / cellVolume                            kg/m3
///   concentration  = species mass / cellMass                          -      (held: species masses follow)
///   temperature    = energy / (heatCapacity cellMass)                 K      (held: energy follows)
///   velocity       = momentum / cellMass                              m/s    (imposed: momentum follows)
///   pressure       = gasFactor cellMass temperature / cellVolume      Pa     (held: stays)
/// Faults: a density that is not at least 0 shows a message for each such cell and sets stopFlag; all fields are
/// computed all the same. Divisions by zero pass on as infinities and NaNs. Throws std::bad_alloc.
void updatePrimitives(SimState& sim, const RunEvents& events);

} // namespace norvane
