#pragma once
// The state file of a geometry: the committed state of a run as text, to be taken up again later.

#include "core/sim_state.h"
#include "platform/interface.h"

namespace norvane {

/// Writes the state file, baseName + "_state" in inputDir, over an earlier one: nCells and three times stepCount, a
/// line each, then blocks with one value for each cell [1..nCells] and a line for each row of cells, an empty line
/// after each block:
///   A  stageMomentum of slot 0, dimension by dimension    kg m/s
///   B  stageEnergy of slot 0                              J
///   C  stageSpecies of slot 0, species by species         kg
///   D  velocity density / density[0], by dimension        m/s      from here on for people: nothing reads them back
///   E  temperature - 273.15                               deg C
///   F  concentration, species by species                  -
/// Slot 0 is the state before the step that stepCount has counted; the slopes of that step are not in the file.
/// Faults, each reported by a message: no geometry; a file that can't be opened or written; no memory for the text.
/// openError becomes the error of the open, and reported.state marks a fault; nothing else of the state changes. Gives
/// true when the file is written.
bool saveState(SimState& sim, Interface& ui);

/// Builds the model afresh and takes stepCount and groups A to C of the state file into it: slots 0 and 5, with slopes
/// 0 and the primitives derived from them. The file is checked up to the end of group C before anything is taken.
/// Faults, each reported by a message. No geometry, or a file that can't be opened or read: nothing has changed.
/// Another number of cells, a file that ends early, text in the place of a number: the freshly built model stays. Gives
/// true when the state is taken.
bool recallState(SimState& sim, Interface& ui);

/// The step count that a state file begins with; -1 where there is none.
std::int32_t savedStep(const SimState& sim);

} // namespace norvane
