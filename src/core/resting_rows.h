#pragma once
// Rows that need no work while nothing happens in them.

#include "core/sim_state.h"

#include <cstdint>
#include <vector>

namespace norvane {

struct StagePlan;

/// Rows where nothing happens, by flags of each row. Gas that is exactly uniform and at rest has slopes of exactly
/// zero; a row whose slopes are zero in all stages keeps its state and primitives to the bit, and one whose neighbours
/// keep theirs too would find the same slopes again: neither needs to be computed until a wave comes in.
struct RestingRows {
    std::vector<std::uint8_t> mayRest;    ///< no wall code but a closed end, no sink, no exchange
    std::vector<std::uint8_t> zeroSlopes; ///< a bit for each stage [1..4]: all slopes are positive zeros
    std::vector<std::uint8_t> settled;    ///< forming the state again would change nothing
    std::vector<std::uint8_t> unchanged;  ///< nothing was formed in this stage
    std::vector<std::uint8_t> quiet;      ///< stages in which the slopes followed from the same values, up to 4
    std::uint64_t revision = 0;           ///< SimState::revision when the flags were right
    bool enabled = true;                  ///< false: every row is computed, to measure what resting saves
};

/// Sets the flags of a plan whose rows are settled otherwise.
void planResting(const SimState& sim, StagePlan& plan);

/// Before a stage: forgets which rows rest where something else than the stages has written fields.
void reviewResting(const SimState& sim, StagePlan& plan);

/// Whether the state of a row has to be formed in this stage.
bool hasToBePrepared(StagePlan& plan, std::int64_t row);

/// Behind the preparation of a row in a stage [1..4].
void notePrepared(StagePlan& plan, int stage, std::int64_t row);

/// Whether the slopes of a row have to be computed in this stage, all neighbours being prepared.
bool hasToBeFinished(const SimState& sim, StagePlan& plan, std::int64_t row);

/// Behind the slopes of a row.
void noteFinished(const SimState& sim, StagePlan& plan, int stage, std::int64_t row);

} // namespace norvane
