#pragma once
// The arithmetic of a stage on whole rows of cells: loops over blocks of as many cells as a register holds. One set of
// them is compiled for each instruction set; all give the same bits, those of the formulas cell by cell:
// expressions in double from left to right, one rounding to single at each store and each accumulation. Only a sum, a
// difference or a quotient of two singles is taken in single, which rounds to the same.

#include <cstdint>

namespace norvane {

/// Rows of several components of the same cells, at equal distances.
template <class Value>
struct ComponentRows {
    Value* first = nullptr;
    std::int64_t stride = 0; ///< from a component to the next one
    int count = 0;

    Value* row(int component) const { return first + component * stride; }
};

/// How the work state comes about: it stands already, is the trial state of a stage, or the state behind a step.
enum class Forming { none, trial, completed };

/// Conserved quantities of the cells of a row in all slots, a row for each component.
struct ConservedRows {
    float* work = nullptr;
    float* committed = nullptr;
    const float* slopes[5] = {}; ///< of the stages [1..4]
    int stage = 0;               ///< whose slope a trial state follows
    std::int64_t stride = 0;     ///< from a component to the next one
};

/// What the work state and the primitives of a row are formed of. A code row keeps values where its codes are as told;
/// it is null where no cell of the row has such a code.
struct PreparedRows {
    int count = 0; ///< cells
    Forming forming = Forming::none;
    double step = 0;        ///< s
    double gasFactor = 0;   ///< J/(kg K)
    float densityFloor = 0; ///< kg/m3
    bool held = false;      ///< there are code rows
    ConservedRows species;
    ConservedRows energy;
    ConservedRows momentum;
    const float* volume = nullptr;
    const float* capacity = nullptr;
    float* mass = nullptr;
    float* density = nullptr;
    ComponentRows<float> concentrations;
    float* temperature = nullptr;
    ComponentRows<float> velocities;
    float* pressure = nullptr;
    const std::int16_t* speciesCode = nullptr;          ///< other than 0 keeps the masses, negative the pressure
    const std::int16_t* energyCode = nullptr;           ///< other than 0 keeps the heat, negative the temperature
    const std::int16_t* concentrationCode = nullptr;    ///< negative keeps the concentrations
    const std::int16_t* const* velocityCodes = nullptr; ///< of the components: other than 0 keeps momentum, velocity
};

/// The faces below and above the cells of a row along one dimension, with what they carry. Each pointer leads to the
/// value of the first cell, or of its upper face; `...Lower`, `...Below` and `...Above` to the value of the first
/// cell's lower face or of its neighbour.
struct FaceRows {
    int count = 0;                           ///< cells
    int firstWithLower = 0;                  ///< cells from here on have a lower face
    int endWithUpper = 0;                    ///< cells before this one have an upper face
    int normal = 0;                          ///< the component of momentum that crosses the faces, from 0
    std::int64_t stride = 0;                 ///< from a cell to its upper neighbour
    bool startsSums = false;                 ///< the slopes begin with these faces, from 0
    bool constant = false;                   ///< all coefficients are the same along the row
    const std::int64_t* openLower = nullptr; ///< all bits: the face carries, 0: it does not; null: all do
    const std::int64_t* openUpper = nullptr; ///< the same; null together with openLower

    const float *inverseSizeLower = nullptr, *inverseSize = nullptr;
    const float *conductionLower = nullptr, *conduction = nullptr;
    const float *viscousLower = nullptr, *viscous = nullptr;
    const float *capacityBelow = nullptr, *capacity = nullptr, *capacityAbove = nullptr;
    const float* area = nullptr;

    const float* momentum = nullptr; ///< the normal component, of the work state
    ComponentRows<const float> concentrations;
    const float* temperature = nullptr;
    const float* pressure = nullptr;
    ComponentRows<const float> velocities;

    ComponentRows<float> speciesSlopes;
    float* energySlope = nullptr;
    ComponentRows<float> momentumSlopes;
};

/// The components of momentum in a row, and what acts on them besides the faces.
struct PullRows {
    int count = 0; ///< cells
    ComponentRows<float> slopes;
    ComponentRows<const float> velocities;
    const float* friction = nullptr;
    const float* mass = nullptr;
    const float* gravity = nullptr; ///< of each component
    bool held = false;              ///< the codes are not all 0, but for negative ones of components
    ComponentRows<const std::int16_t> velocityCodes;
    const std::int16_t* wholeCode = nullptr;
};

/// All rows begin at the cell that a pointer leads to, and have `count` cells.
struct RowKernels {
    const char* name; ///< of the instruction set

    /// Forms the work state, and the primitives from it. Tells whether all cells are denser than the floor.
    ///   trial:      work = committed + step slope
    ///   completed:  work = committed + ((2 k2 + k1) + 2 k3 + k4) step / 6,   then committed = work
    ///   mass = sum of the species, density = mass / volume, concentration = species / mass,
    ///   temperature = energy / (capacity mass), velocity = momentum / mass,
    ///   pressure = gasFactor mass temperature / volume
    bool (*prepare)(const PreparedRows& rows);
    /// Whether all values are above a floor; a NaN is not.
    bool (*allAbove)(int count, const float* value, float floor);

    /// open = whether the upper face of a cell carries: no positive code, and a donor denser than the floor.
    void (*openFaces)(int count,
                      std::int64_t stride,
                      std::int64_t* open,
                      const std::int16_t* code,
                      const float* velocity,
                      const float* density,
                      float floor);
    /// Adds to the slopes what both faces bring, the lower one first: of each face what it carries, for the upper one
    /// the force of the pressure, then conduction and viscous exchange.
    void (*addFaces)(const FaceRows& faces);

    /// Subtracts velocity friction, then adds gravity mass.
    void (*slowAndPull)(const PullRows& rows);
    /// slope = 0 where the code is positive
    void (*clearWherePositive)(int count, float* slope, const std::int16_t* code);
};

/// The kernels for the widest instruction set that this machine has.
const RowKernels& bestRowKernels();

/// All kernels that this machine can run, the widest last.
struct RowKernelList {
    const RowKernels* kernels[3];
    int count;
};

RowKernelList availableRowKernels();

} // namespace norvane
