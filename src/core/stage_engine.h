#pragma once
// The stages of a step, row by row. A row is all cells that differ in dimension 1 alone; its cells lie behind one
// another in every component, so that each term is one loop over them (row_kernels.h). The result is that of the
// formulas cell by cell, bit for bit, for any instruction set and number of threads.

#include "core/row_kernels.h"
#include "core/sim_state.h"
#include "core/thread_team.h"
#include "platform/interface.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace norvane {

/// What a row needs beside the plain loops. Of dimension 1 the last cell is left out where its code is positive, as it
/// is by default; `closedEnd` stands for it.
struct RowTraits {
    bool heldSpecies = false;       ///< some wallPressure other than 0
    bool heldPressure = false;      ///< some wallPressure below 0
    bool heldEnergy = false;        ///< some wallTemperature other than 0
    bool closedEnergy = false;      ///< some wallTemperature above 0
    bool heldTemperature = false;   ///< some wallTemperature below 0
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

/// A coefficient of all cells. Rows with the bits of the row before, or of the row one sheet before, are read from that
/// one, which stays in the fastest cache, instead of from the cells.
struct Coefficient {
    const float* firstRow = nullptr;
    int rowCells = 0;
    std::vector<std::int32_t> sameAs; ///< [rows] the row to read

    /// `row` [0..rows-1].
    const float* row(std::int64_t row) const {
        return firstRow + std::int64_t{sameAs[static_cast<std::size_t>(row)]} * rowCells;
    }
};

/// Rows of one thread's own.
struct StageWorkspace {
    std::vector<const std::int16_t*> velocityCodes; ///< of the row in hand, for each component; null: nothing is held
    std::vector<std::int64_t> openFaces;            ///< whether the lower and the upper faces of a row carry
    std::vector<std::int32_t> faultyCells;          ///< cells whose density is not at least 0, in this stage
};

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
    bool enabled = true;
};

/// What all stages of a run share: it follows from the model and stays until the next build.
struct StagePlan {
    const RowKernels* kernels = nullptr;
    int rowCells = 0;             ///< cells of a row
    std::int64_t paddedCells = 0; ///< length of a row of a workspace
    std::int64_t rows = 0;
    std::int64_t sheetRows = 1; ///< rows of a sheet: a plane of dimensions 1 and 2 where there are more, else one row
    std::int64_t sheets = 0;
    std::int64_t reach = 0;                       ///< sheets from one to the farthest that its slopes read
    std::int64_t stripRows = 1;                   ///< rows of a sheet that are worked on together
    std::vector<RowTraits> rowTraits;             ///< [rows]
    std::vector<DimensionTraits> dimensionTraits; ///< [rows * nDim]
    std::vector<std::int32_t>
        imposedCells; ///< cells with a negative wall code, ascending: primitives are imposed there
    std::vector<std::int64_t> imposedOfRow; ///< [rows + 1] where the cells of a row begin in imposedCells
    std::vector<std::int32_t> sourceCells;  ///< cells with a sink or an exchange of species, ascending
    std::vector<std::int64_t> sourcesOfRow; ///< [rows + 1] where the cells of a row begin in sourceCells
    Coefficient volume;
    Coefficient capacity;
    Coefficient friction;
    std::vector<Coefficient> inverseSize; ///< [nDim], of dimension d at d - 1, as the following
    std::vector<Coefficient> area;
    std::vector<Coefficient> conduction;
    std::vector<Coefficient> viscous;
    std::vector<std::uint8_t> thinRow; ///< [rows] 1: not all cells are denser than rhoFloor in this stage
    RestingRows resting;
    std::vector<StageWorkspace> workspaces; ///< one for each thread
    std::unique_ptr<ThreadTeam> team;
};

/// Threads that suit a grid of so many cells on this machine.
int suitableThreads(std::int64_t cells);

/// Settles the rows of a model that has been built. `threads` 0: as suits the grid. Throws std::bad_alloc.
StagePlan planStages(const SimState& sim, int threads = 0, const RowKernels& kernels = bestRowKernels());

/// The same for derivePrimitives alone, which takes less.
StagePlan planPrimitives(const SimState& sim);

/// One stage [1..4] of a step: the work state, the primitives, the slopes.
///   stage 2, 3, 4:  q[5] = q[0] + h k[stage-1],   h = dt/2, dt/2, dt
///   stage 1:        q[5] = q[0] + ((2 k2 + k1) + 2 k3 + k4) dt / 6,   then q[0] = q[5]
/// q is each of stageSpecies (kg), stageEnergy (J), stageMomentum (kg m/s); dt in s. A quantity that a wall code holds
/// keeps its slot 5. Faults: a density that is not at least 0 shows a message for each such cell and sets stopFlag.
/// Source: classical fourth-order Runge-Kutta (Hairer, Norsett, Wanner, Solving ODEs I, II.1).
void runStage(SimState& sim, const Interface& ui, StagePlan& plan, int stage);

/// The parts of a stage alone. Primitives are derived from the slot stageWork.
void derivePrimitives(SimState& sim, const Interface& ui, StagePlan& plan);
void computeSlopes(SimState& sim, StagePlan& plan, int stage);

} // namespace norvane
