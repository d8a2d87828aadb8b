#pragma once
// What the stages of a run know about a model beforehand: the kinds of its rows, and how they are shared out.

#include "core/resting_rows.h"
#include "core/row_kernels.h"
#include "core/sim_state.h"
#include "core/thread_team.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace norvane {

/// What a row needs beside the plain loops. Of dimension 1 the last cell is left out where its code is positive, as it
/// is by default; `closedEnd` stands for it.
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
    double seconds = 0;                             ///< that the thread worked in this stage
    std::vector<std::int32_t> faultyCells;          ///< cells whose density is not at least 0, in this stage
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
    std::vector<std::int64_t> nextShares;   ///< those of the next stage
    std::vector<std::int64_t> shares;       ///< [threads + 1] the sheets of thread t: shares[t] .. shares[t + 1] - 1
    std::unique_ptr<ThreadTeam> team;
};

/// The first cell of a row [0..rows-1].
inline std::int64_t firstCell(const StagePlan& plan, std::int64_t row) { return 1 + row * plan.rowCells; }

/// Whether two runs of values have the same bits.
bool sameBits(const float* a, const float* b, int count);

/// Threads that suit a grid of so many cells on this machine.
int suitableThreads(std::int64_t cells);

/// Settles the rows of a model that has been built. `threads` 0: as suits the grid. Throws std::bad_alloc.
StagePlan planStages(const SimState& sim, int threads = 0, const RowKernels& kernels = bestRowKernels());

/// The same for derivePrimitives alone, which takes less.
StagePlan planPrimitives(const SimState& sim);

} // namespace norvane
