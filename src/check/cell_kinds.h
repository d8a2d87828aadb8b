#pragma once
// What each cell of a model is, as a person would say it: gas, wall, inlet, outlet, held, heated, reacting, radiating.

#include "core/neighbours.h"
#include "core/sim_state.h"

#include <cstdint>
#include <vector>

namespace norvane {

/// Added up: a cell may be several things at once.
enum CellKind : unsigned {
    kindGas = 0,
    kindWall = 1,      ///< no face is open
    kindInlet = 2,     ///< masses are held, and an imposed velocity leads away from it
    kindOutlet = 4,    ///< the pressure is held, with a sink
    kindHeld = 8,      ///< masses are held
    kindHeated = 16,   ///< the temperature or the energy is held
    kindReacting = 32, ///< species 0 and 1 are exchanged
    kindRadiating = 64,
};

/// Of a model that stands: [0..nCells], element 0 is unused.
std::vector<unsigned> cellKinds(const SimState& sim);

/// The faces that join cells to one part.
enum class FaceRule : std::uint8_t {
    open, ///< that let gas through
    free, ///< of these, all whose velocity is not imposed
};

/// Parts of the gas between which no such face leads: the number of the part of each cell [0..nCells], from 1; 0: a
/// wall.
struct GasParts {
    std::vector<std::int32_t> partOf;
    std::int32_t count = 0;
};

GasParts gasParts(const SimState& sim, const std::vector<unsigned>& kinds, FaceRule rule);

} // namespace norvane
