#pragma once
// The arithmetic of a stage on whole rows of cells: loops over blocks of as many cells as a register holds. One set of
// them is compiled for each instruction set; all give the same bits, those of docs/equations.md cell by cell:
// expressions in double from left to right, one rounding to float at each store and each accumulation. Only a sum, a
// difference or a quotient of two floats is taken in float, which rounds to the same.

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

/// The work state is kept, formed as the trial state of a stage, or as the state at the end of a completed step. The
/// compensated ones add the remainders of the committed state; the completed one leaves new remainders.
enum class Forming { none, trial, completed, compensatedTrial, compensated };

/// Conserved quantities of the cells of a row in all slots, a row for each component: kg, J or kg m/s, slopes per s.
struct ConservedRows {
    float* work = nullptr;
    float* committed = nullptr;
    float* remainder = nullptr;  ///< of the committed state; null where none is kept
    const float* slopes[5] = {}; ///< of the stages [1..4]
    int stage = 0;               ///< whose slope a trial state follows
    std::int64_t stride = 0;     ///< from a component to the next one
};

/// What the work state and the primitives of a row are formed of. A row of codes is null if no cell has one of the
/// codes named; otherwise the cells that have one keep their value.
struct PrimitiveRows {
    int count = 0; ///< cells
    Forming forming = Forming::none;
    double increment = 0;   ///< s, of time
    double gasFactor = 0;   ///< J/(kg K)
    float densityFloor = 0; ///< kg/m3
    bool held = false;      ///< there are rows of codes
    ConservedRows species;
    ConservedRows energy;
    ConservedRows momentum;
    const float* volume = nullptr;                      ///< m3
    const float* capacity = nullptr;                    ///< J/(kg K)
    float* mass = nullptr;                              ///< kg
    float* density = nullptr;                           ///< kg/m3
    ComponentRows<float> concentrations;                ///< mass fractions
    float* temperature = nullptr;                       ///< K
    ComponentRows<float> velocities;                    ///< m/s
    float* pressure = nullptr;                          ///< Pa
    const std::int16_t* speciesCode = nullptr;          ///< other than 0 keeps the masses, negative the pressure
    const std::int16_t* energyCode = nullptr;           ///< other than 0 keeps the heat, negative the temperature
    const std::int16_t* concentrationCode = nullptr;    ///< negative keeps the concentrations
    const std::int16_t* const* velocityCodes = nullptr; ///< of the components: other than 0 keeps momentum, velocity
};

/// The faces below and above the cells of a row along one dimension, and what passes through them. Each pointer leads
/// to the value of the first cell, or of its upper face; `...Lower`, `...Below` and `...Above` to the value of the
/// first cell's lower face or of its neighbour.
struct FaceRows {
    int count = 0;                           ///< cells
    int firstWithLower = 0;                  ///< cells from here on have a lower face
    int endWithUpper = 0;                    ///< cells before this one have an upper face
    int normal = 0;                          ///< the component of momentum normal to the faces, from 0
    std::int64_t toLower = 0;                ///< from a cell to its lower neighbour; 0 where no cell has one
    std::int64_t toUpper = 0;                ///< from a cell to its upper neighbour; 0 where no cell has one
    bool startsSums = false;                 ///< the slopes begin with these faces, from 0
    bool constant = false;                   ///< all coefficients are the same along the row
    bool sumsInDouble = false;               ///< the slopes are rounded after both faces, not after each term
    const std::int64_t* lowerMask = nullptr; ///< all bits: the face is open to the mass flow, 0: not; null: all are
    const std::int64_t* upperMask = nullptr; ///< the same; null together with lowerMask

    const float *inverseSizeLower = nullptr, *inverseSize = nullptr;                     ///< 1/m
    const float *conductionLower = nullptr, *conduction = nullptr;                       ///< W/K
    const float *viscousLower = nullptr, *viscous = nullptr;                             ///< kg/s
    const float *capacityBelow = nullptr, *capacity = nullptr, *capacityAbove = nullptr; ///< J/(kg K)
    const float* area = nullptr;                                                         ///< m2

    const float* momentum = nullptr;           ///< kg m/s, the normal component, of the work state
    ComponentRows<const float> concentrations; ///< mass fractions
    const float* temperature = nullptr;        ///< K
    const float* pressure = nullptr;           ///< Pa
    ComponentRows<const float> velocities;     ///< m/s

    ComponentRows<float> speciesSlopes;  ///< kg/s
    float* energySlope = nullptr;        ///< W
    ComponentRows<float> momentumSlopes; ///< N
};

/// Forces on the momentum of the cells of a row, beside those of their faces: drag (N) and gravity (N).
struct CellForceRows {
    int count = 0;                         ///< cells
    ComponentRows<float> slopes;           ///< N
    ComponentRows<const float> velocities; ///< m/s
    const float* friction = nullptr;       ///< kg/s
    const float* mass = nullptr;           ///< kg
    const float* gravity = nullptr;        ///< m/s2, of each component
    bool held = false;                     ///< there are positive codes of components, or codes of whole cells
    ComponentRows<const std::int16_t> velocityCodes;
    const std::int16_t* wholeCode = nullptr;
};

/// All rows begin at the cell that a pointer leads to, and have `count` cells. Rows never alias, but for the neighbours
/// of one field. Numbers in brackets are those of docs/equations.md.
struct RowKernels {
    const char* name; ///< of the instruction set

    /// (S1) to (S5), (P1) to (P6). Gives whether all cells are denser than the floor.
    bool (*recoverPrimitives)(const PrimitiveRows& rows);

    /// mask = whether the upper face of a cell is open: no positive code, and a donor denser than the floor.
    void (*maskFaces)(int count,
                      std::int64_t stride,
                      std::int64_t* mask,
                      const std::int16_t* code,
                      const float* velocity,
                      const float* density,
                      float floor);
    /// (1) to (6) of both faces, the lower one first.
    void (*addFaceTerms)(const FaceRows& faces);

    /// (7), (8)
    void (*addDragAndGravity)(const CellForceRows& rows);
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
