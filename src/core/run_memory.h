#pragma once
// What a run keeps from one step to the next: all that has to be stored for a run that goes on to give the same bits.
// The rest of SimState follows from the table, and the same build makes the same of it; fingerprints tell whether it
// did.

#include "core/sim_state.h"

#include <cstdint>
#include <vector>

namespace norvane {

/// Raised by whoever changes the bits that a step or a build gives.
constexpr std::int32_t arithmeticVersion = 1;

/// A field of cells that the stages change.
struct KeptField {
    const char* name;
    const char* unit;
    const char* meaning;
    int slots = 1;              ///< of a step
    int components = 1;         ///< dimensions or species
    const char* kind = "";      ///< of its components: "dimension", "species"; empty: one value a cell
    std::vector<float*> arrays; ///< [slots * components], components of slot 0 first: the values of cells 1 to nCells
};

/// All of a grid that has been allocated, the remainders of a compensated run included.
std::vector<KeptField> keptFields(SimState& sim);

/// Of all that a build makes of a table and no stage changes: CRC-64 of its bits.
std::uint64_t modelFingerprint(const SimState& sim);

/// Of the radiation pairs in force; 0: none.
std::uint64_t radiationFingerprint(const SimState& sim);

} // namespace norvane
