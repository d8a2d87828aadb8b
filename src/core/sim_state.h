#pragma once
// The one record of a simulation. Every floor reads and writes its fields directly.

#include "core/arrays.h"
#include "core/cell_text_table.h"

#include <cstdint>
#include <string>

namespace norvane {

/// Numbers of the Runge-Kutta slots: the first index of stageSpecies, stageEnergy and stageMomentum.
/// Slots 1 to 4 are the slopes (per second) of the four stages of the latest step; between steps they wait to be
/// combined by the first stage of the next one.
enum StageSlot : int {
    committedSlot = 0, ///< state at the start of the step in progress
    workSlot = 5,      ///< trial state from which primitives and slopes are computed
};

/// What a run has to do first; the value of SimState::runMode.
enum RunMode : std::int16_t {
    modeStart = 0,         ///< no geometry has been read since the program started
    modeModelStands = 1,   ///< a model stands: a build starts afresh, the log goes on
    modeGeometryRead = 2,  ///< a geometry was just read: a build starts afresh and empties the log
    modeContinuation = -1, ///< a build keeps state, step count and display settings
};

/// Masses of all species in all slots: [0..5][0..nsMax][0..nCells], kg in the cell.
struct SpeciesSlots : StageTable<float> {
    float& operator()(int slot, std::int64_t species, std::int64_t cell) { return this->slot(slot)(cell, species); }

    float operator()(int slot, std::int64_t species, std::int64_t cell) const {
        return this->slot(slot)(cell, species);
    }
};

/// Heat content in all slots: [0..5][0..nCells], J in the cell.
struct EnergySlots : StageTable<float> {
    float& operator()(int slot, std::int64_t cell) { return this->slot(slot)(cell, 0); }

    float operator()(int slot, std::int64_t cell) const { return this->slot(slot)(cell, 0); }
};

/// Momentum in all slots: [0..5][0..nCells][1..nDim], kg m/s, on the UPPER face of the cell in that dimension.
struct MomentumSlots : StageTable<float> {
    float& operator()(int slot, std::int64_t cell, std::int64_t dim) { return this->slot(slot)(cell, dim); }

    float operator()(int slot, std::int64_t cell, std::int64_t dim) const { return this->slot(slot)(cell, dim); }
};

/// How the latest run ended; for front ends that report it. Reset when a run starts.
struct RunOutcome {
    bool reachedStopStep = false;
    bool negativeDensity = false;
    bool stopFile = false;
};

/// Faults of output files that have been reported already: one message for a run (or for a click) is enough.
struct ReportedFaults {
    bool log = false;
    bool stopFile = false;
    bool plotFile = false;
    bool snapshot = false;
    std::uint32_t memory = 0; ///< outputs that ran short of it: bit k is that of the k-th of RunOperations
    bool geometry = false;    ///< the geometry file can't be read
    bool state = false;       ///< a save failed; its message comes each time, since each save is an act of its own
};

/// A sequence of random numbers that begins alike in every program, on every platform.
struct RandomSequence {
    std::uint64_t state = 0x4E6F7276616E65; ///< any fixed value will do
};

/// The most threads that a run may be given.
constexpr int maxThreads = 1024;

/// Index ranges are inclusive. Cells run from 1 to nCells, cell 0 is the template of the default cell; species run
/// from 0 to nsMax, dimensions from 1 to nDim. Units are SI. A value that a comment calls held is never integrated.
struct SimState {
    // --- run and model -------------------------------------------------------------------------------------------
    std::int16_t nDim = 0;  ///< dimensions in use; 0: no geometry is loaded
    std::int16_t nsMax = 0; ///< highest species index (key NS)
    std::int32_t nCells = 0;
    float dt = 0;                 ///< s, time step (DT)
    std::int32_t updateEvery = 0; ///< steps between plots (UT); 0: only the plot of the last step
    std::int32_t saveEvery = 0;   ///< steps between state saves (ST); 0: none
    std::int32_t frameEvery = 0;  ///< steps between snapshots (FT); 0: none
    std::int32_t logEvery = 0;    ///< steps between log lines (LT); 0 or less: none
    std::int32_t rampSteps = 0;   ///< length of the ramp of imposed velocities, in steps (TR)
    std::int16_t cyFlag = 0;      ///< value of key CY; kept, and read by nothing
    std::int32_t stepCount = 0;   ///< steps begun since the start of the run
    std::int32_t stepLimit = 0;   ///< steps that key NT asks for
    std::int32_t stopStep = 0;    ///< step at which the run ends; negative: no limit
    bool stopFlag = false;        ///< asks the run loop to end after the step in hand
    std::int16_t runMode = modeStart;
    bool batchMode = false;     ///< started by a program name that ends in "_"
    std::int16_t stageWork = 0; ///< slot that updatePrimitives works on: workSlot from the first run on
    float gasFactor = 0;        ///< J/(kg K), pressure[0] / (temperature[0] density[0])
    float rhoFloor = 0;         ///< kg/m3; a cell with no more than this does not donate in advection
    double sigmaRoot = 0;       ///< fourth root of the radiation constant
    bool radActive = false;     ///< view factors have been imported
    std::int32_t radPairCount = 0;
    std::int32_t openError = 0; ///< error number of the last open of a state, view factor or spectrum file

    // --- the table as read, and the names that follow from its file --------------------------------------------------
    CellTextTable grid; ///< texts of the table: columns [1..gridCols], rows [1..rowCount]
    std::int32_t gridCols = 0;
    std::int32_t firstLayerRow = 0; ///< row of the first L row; rows 1 to here hold defaults
    std::int32_t layerRows = 0;     ///< distance of two L rows: data rows of a layer plus 1
    std::string inputDir;           ///< folder of the geometry, no separator after it
    std::string fileName;           ///< name of the geometry file
    std::string baseName;           ///< fileName up to its first point
    std::string outName;            ///< name of the plot file

    // --- shape and geometry of the grid --------------------------------------------------------------------------
    Array<std::int16_t> cellCount;  ///< [0..nDim] cells along a dimension; element 0 holds nothing
    Array<std::int32_t> cellStride; ///< [1..nDim+1] distance of neighbours along a dimension; the last is nCells
    CellTable<float> cellSize;      ///< [0..nCells][1..nDim] m, edge length (DD)
    Array<float> cellHeight;        ///< [0..nCells] extent across the dimensions of the grid (HH)
    CellTable<float> cellPos;       ///< [0..nCells][1..nDim] m, lower edge of the cell
    Array<float> cellVolume;        ///< [0..nCells] m3
    CellTable<float> inverseSize;   ///< [0..nCells][1..nDim] 1/m
    CellTable<float> faceArea;      ///< [0..nCells][1..nDim] m2

    // --- material and coefficients -------------------------------------------------------------------------------
    Array<float> heatCapacity;       ///< [0..nCells] J/(kg K) (CP)
    Array<float> conductivity;       ///< [0..nCells] W/(m K) (LA)
    Array<float> viscosity;          ///< [0..nCells] Pa s (ET)
    CellTable<float> conductionCoef; ///< [0..nCells][1..nDim] W/K
    CellTable<float> viscousCoef;    ///< [0..nCells][1..nDim] kg/s
    Array<float> friction;           ///< [0..nCells] kg/s; RR times cellVolume once the model stands
    Array<float> gravity;            ///< [0..nDim] m/s2 (GG); element 0 holds nothing
    Array<float> paramGP;            ///< [0..1000] free parameters (GP); exists from program start
    Array<float> radFactor;          ///< [0..radPairCount] m2, exchange factor of a pair, used from 1
    Array<std::int32_t> radPair[2];  ///< [0..1][0..radPairCount] the two cells of a pair, used from pair 1

    // --- conserved state -----------------------------------------------------------------------------------------
    SpeciesSlots stageSpecies;
    EnergySlots stageEnergy;
    MomentumSlots stageMomentum;

    /// What rounding took from slot 0 in the latest commit, and the next one adds ((S5) of docs/equations.md); 0 where
    /// the quantity is held. They exist from the start of a run with `compensated` on (core/remainders.h). Whoever
    /// writes slot 0 from outside writes these as well, as a rule 0.
    CellTable<float> speciesRemainder;  ///< [0..nCells][0..nsMax] kg
    CellTable<float> energyRemainder;   ///< [0..nCells][0..0] J
    CellTable<float> momentumRemainder; ///< [0..nCells][1..nDim] kg m/s

    // --- primitive fields, derived from the work slot: what slopes and plots read --------------------------------
    Array<float> cellMass;          ///< [0..nCells] kg
    Array<float> density;           ///< [0..nCells] kg/m3 (RH)
    CellTable<float> concentration; ///< [0..nCells][0..nsMax] mass fractions (CC)
    Array<float> temperature;       ///< [0..nCells] K (TT)
    Array<float> pressure;          ///< [0..nCells] Pa (PP)
    CellTable<float> velocity;      ///< [0..nCells][1..nDim] m/s, on the upper face like the momentum
    CellTable<float> velocityInit;  ///< [0..nCells][1..nDim] m/s, start value or imposed velocity (VV)

    // --- wall codes: mostly their sign counts --------------------------------------------------------------------
    /// [0..nCells][0..nDim] (WV): 0 free, positive closed upper face, -2 imposed with a ramp, other negative imposed.
    /// Element 0 is the code of the whole cell; other than 0 it also takes drag and gravity from the cell.
    CellTable<std::int16_t> wallVelocity;
    Array<std::int16_t> wallPressure;    ///< [0..nCells] (WP): not 0: masses held; negative: pressure held, with a sink
    Array<std::int16_t> wallTemperature; ///< [0..nCells] (WT): positive: energy held; negative: temperature held
    Array<std::int16_t> wallConcentration; ///< [0..nCells] (WC): negative: concentrations held; 1: exchange of 0 and 1

    // --- what is shown -------------------------------------------------------------------------------------------
    std::int16_t showWhat = 0;         ///< quantity, 1 to 11 (SW)
    std::int16_t showDims = 0;         ///< component: 0 all together, or a dimension; a species index (SD)
    std::int16_t axisPair[2] = {0, 0}; ///< dimensions drawn across and downward
    Array<std::int16_t> sliceSel;      ///< [1..nDim] slice index; -2 marks the columns, -1 the rows
    Array<float> zoom;                 ///< [1..nDim] stretch of a dimension
    Array<float> offset;               ///< [1..nDim] m, subtracted from positions
    float scaleMin = 0;                ///< bottom of the colour scale (SI)
    float scaleMax = 0;                ///< top of the colour scale (SA)
    std::string graphTitle;

    // --- book-keeping of the loop --------------------------------------------------------------------------------
    int threads = 0;                        ///< of a run; 0: as suits the grid and the machine
    bool compensated = false;               ///< the next run keeps remainders
    std::uint64_t revision = 0;             ///< raised by whatever writes fields besides the stages of a run
    int runDepth = 0;                       ///< runs that are under way, each suspended in a yield of the next
    bool loading = false;                   ///< a load is under way
    std::string stopFileName = "checkstop"; ///< in the working directory, or a path
    bool onlyLooks = false;                 ///< a program that draws or exports: the stop file is left as it is
    RunOutcome outcome;
    ReportedFaults reported;
    RandomSequence spectrumRandom; ///< goes on from one spectrum to the next

    SimState() { paramGP.allocate(0, 1000); }
};

/// Creates, new and zero, every array whose range is tied to nCells, nsMax or nDim, all but cellCount and the radiation
/// table. Reads nDim, nsMax, nCells. Throws nothing: gives false, with every such array empty, when memory is short.
bool allocateState(SimState& sim);

/// Bytes that allocateState needs for such a grid, the texts of the table not counted.
double stateBytes(int nDim, int nsMax, std::int64_t nCells);

/// Bytes of the remainders of such a grid.
double remainderBytes(int nDim, int nsMax, std::int64_t nCells);

/// Forgets the geometry: runMode modeStart, nDim and nCells 0, arrays of a grid without cells, so that no command finds
/// a mix of two grids.
void clearGeometry(SimState& sim);

} // namespace norvane
