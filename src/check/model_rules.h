#pragma once
// What is odd about a model that a table makes: cells that cannot do what they seem to be drawn for, and a time step
// that it is not stable with.

#include "check/cell_kinds.h"
#include "check/finding.h"
#include "check/stable_step.h"
#include "geometry/build_trace.h"

#include <vector>

namespace norvane {

/// What the texts of the table gave to each cell, gathered from a build. [0..nCells]
struct GivenKeys {
    std::vector<unsigned> velocities; ///< bit d: VV of dimension d
    std::vector<unsigned> codes;      ///< bit d: WV of dimension d
    std::vector<bool> heights;        ///< HH
    bool scale = false;               ///< SI or SA among the defaults

    explicit GivenKeys(std::int32_t cells);

    /// Takes one assignment; adds a finding for a height that a later one overwrites.
    void take(const Assignment& made, const SimState& sim, Findings& findings);
};

/// The speed in m/s that the pressures of a model at rest will start, or the largest velocity that is given, if
/// greater.
double startingSpeed(const SimState& sim, const std::vector<unsigned>& kinds);

/// Adds what is odd about a model that has just been built.
void checkModel(const SimState& sim,
                const GivenKeys& given,
                const std::vector<unsigned>& kinds,
                const StableStep& stable,
                Findings& findings);

/// The step that is worth writing: 0.9 of the smallest limit, with two digits, rounded down; 0: nothing limits it.
double suggestedStep(const StableStep& stable);

} // namespace norvane
