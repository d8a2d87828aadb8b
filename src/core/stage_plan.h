#pragma once
// What the stages of a run know about a model beforehand: the kinds of its rows, and how threads share them.

#include "core/row_kernels.h"
#include "core/sim_state.h"
#include "core/source_terms.h"
#include "core/thread_team.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace norvane {

/// What a row needs beside the plain loops. Of dimension 1 the last cell is left out where its code is positive, as it
/// is by default; `closedEnd` says so.
struct RowTraits {
    bool heldSpecies = false;       ///< some wallPressure other than 0
    bool heldEnergy = false;        ///< some wallTemperature other than 0
    bool closedEnergy = false;      ///< some wallTemperature above 0
    bool heldConcentration = false; ///< some wallConcentration below 0
    bool wholeCodes = false;        ///< some wallVelocity of the whole cell other than 0
    bool closedVelocity = false;    ///< some wallVelocity of a dimension above 0
    bool closedEnd = false;         ///< the last cell has a positive wallVelocity in dimension 1
};

/// The same for one dimension of a row, about its wallVelocity.
struct DimensionTraits {
    bool held = false;     ///< some code other than 0
    bool closed = false;   ///< some positive code
    bool constant = false; ///< the coefficients of the row's faces along the dimension are the same in all its cells
};

/// One value a cell. `sameAs` maps a row to an earlier one with the same bits, the one before or that of the plane
/// before: on uniform grids all rows read the same one, which stays in the first-level cache.
struct Coefficient {
    const float* firstRow = nullptr;
    int rowCells = 0;
    std::vector<std::int32_t> sameAs; ///< [rows] the row to read

    /// `row` [0..rows-1].
    const float* row(std::int64_t row) const {
        return firstRow + std::int64_t{sameAs[static_cast<std::size_t>(row)]} * rowCells;
    }
};

/// Flags for skipping quiescent rows. Gas that is exactly uniform and at rest has slopes of exactly zero; a row whose
/// slopes are zero in all stages keeps its state and primitives to the bit, and one whose neighbours keep theirs too
/// would find the same slopes again: neither is computed until a wave comes in (resting_rows.h).
struct RestingRows {
    std::vector<std::uint8_t> mayRest;    ///< no wall code but a closed end, no term that acts in single cells
    std::vector<std::uint8_t> zeroSlopes; ///< a bit for each stage [1..4]: all slopes are positive zeros
    std::vector<std::uint8_t> settled;    ///< forming the state again would change nothing
    std::vector<std::uint8_t> unchanged;  ///< nothing was formed in this stage
    std::vector<std::uint8_t> quiet;      ///< stages in which the slopes followed from the same values, up to 4
    std::uint64_t revision = 0;           ///< SimState::revision when the flags were right
    bool enabled = true;                  ///< false: every row is computed, to measure what resting saves
};

/// Neighbouring cells [first .. end - 1] of a row in which a term acts.
struct TermRun {
    const CellTerm* term;
    std::int32_t first;
    std::int32_t end;
};

/// Buffers of one thread's own.
struct StageWorkspace {
    std::vector<const std::int16_t*> velocityCodes; ///< of the row in hand, for each component; null: nothing is held
    std::vector<std::int64_t> faceMasks;            ///< whether the lower and the upper faces of a row are open
    double seconds = 0;                             ///< that the thread worked in this stage
    bool hasFaults = false;                         ///< it met a density that is not at least 0, in this stage
};

/// Constant during a run: kernels, layout, traits, coefficients. Changed by the stages: thinRow, resting, workspaces,
/// partition.
struct StagePlan {
    const RowKernels* kernels = nullptr;
    int rowCells = 0;             ///< cells of a row
    std::int64_t paddedCells = 0; ///< length of a row of a workspace
    std::int64_t rows = 0;
    std::int64_t planeRows = 1; ///< rows of a plane: of dimensions 1 and 2 where there are more, else one row
    std::int64_t planes = 0;
    std::int64_t stencilWidth = 0;                ///< planes on either side that the slopes of a plane read
    std::int64_t tileRows = 1;                    ///< rows of a plane that are worked on together
    std::vector<RowTraits> rowTraits;             ///< [rows]
    std::vector<DimensionTraits> dimensionTraits; ///< [rows * nDim]
    std::vector<std::int32_t> imposedCells;       ///< cells with a negative wall code, ascending
    std::vector<std::int64_t> imposedOfRow;       ///< [rows + 1] where the cells of a row begin in imposedCells
    std::vector<TermRun> termRuns;                ///< of all rows, within a row in the order of the terms
    std::vector<std::int64_t> termsOfRow;         ///< [rows + 1] where those of a row begin in termRuns
    Coefficient volume;
    Coefficient capacity;
    Coefficient friction;
    std::vector<Coefficient> inverseSize; ///< [nDim], of dimension d at d - 1, as the following
    std::vector<Coefficient> area;
    std::vector<Coefficient> conduction;
    std::vector<Coefficient> viscous;
    std::vector<std::uint8_t> thinRow; ///< [rows] 1: not all cells are denser than rhoFloor in this stage
    RestingRows resting;
    std::vector<StageWorkspace> workspaces;  ///< one for each thread
    std::vector<std::int64_t> partition;     ///< [threads + 1] planes of thread t: partition[t] .. partition[t + 1] - 1
    std::vector<std::int64_t> nextPartition; ///< that of the next stage
    std::unique_ptr<ThreadTeam> team;
};

/// The first cell of a row [0..rows-1].
inline std::int64_t firstCell(const StagePlan& plan, std::int64_t row) { return 1 + row * plan.rowCells; }

/// The rows below and above a row along a dimension; the row itself where it has no such neighbour.
struct NeighbourRows {
    std::int64_t below;
    std::int64_t above;
};

/// `dim` [2..nDim].
NeighbourRows neighbourRows(const SimState& sim, const StagePlan& plan, std::int64_t row, int dim);

/// Whether two runs of values have the same bits.
bool sameBits(const float* a, const float* b, int count);

/// Threads that suit a grid of so many cells on this machine.
int suitableThreads(std::int64_t cells);

/// Plans the rows of a model that has been built. `threads` 0: as suits the grid. Throws std::bad_alloc.
StagePlan planStages(const SimState& sim, int threads = 0, const RowKernels& kernels = bestRowKernels());

/// The same for primitives alone, which takes less.
StagePlan planPrimitives(const SimState& sim);

} // namespace norvane
