#pragma once
// The arithmetic of a stage on whole rows of cells: plain loops without branches, which a compiler turns into vectors.
// One set of them is compiled for each instruction set; all give the same bits, those of the formulas cell by cell:
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

/// The faces below and above the cells of a row along one dimension, with what they carry. Each pointer leads to the
/// value of the first cell, or of its upper face; `...Lower`, `...Below` and `...Above` to the value of the first cell's
/// lower face or of its neighbour.
struct FaceRows {
    int count = 0;          ///< cells
    int firstWithLower = 0; ///< cells from here on have a lower face
    int endWithUpper = 0;   ///< cells before this one have an upper face
    int normal = 0;         ///< the component of momentum that crosses the faces, from 0
    std::int64_t stride = 0; ///< from a cell to its upper neighbour
    bool startsSums = false; ///< the slopes begin with these faces, from 0
    bool constant = false;   ///< all coefficients are the same along the row
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
};

/// All rows begin at the cell that a pointer leads to, and have `count` cells. A `code` row keeps what it says from
/// being written where its codes are not as told.
struct RowKernels {
    const char* name; ///< of the instruction set

    /// work = committed + h slope
    void (*formTrial)(int count, float* work, const float* committed, const float* slope, double h);
    /// The same where code is 0.
    void (*formTrialWhereFree)(
        int count, float* work, const float* committed, const float* slope, double h, const std::int16_t* code);
    /// work = committed + ((2 k2 + k1) + 2 k3 + k4) dt / 6, then committed = work
    void (*completeStep)(int count, float* work, float* committed, const float* const slopes[5], double dt);
    /// The same where code is 0; committed follows everywhere.
    void (*completeStepWhereFree)(
        int count, float* work, float* committed, const float* const slopes[5], double dt, const std::int16_t* code);

    /// sum = 0 + value, or sum = sum + value
    void (*startSum)(int count, float* sum, const float* value);
    void (*addToSum)(int count, float* sum, const float* value);
    /// quotient = a / b
    void (*divide)(int count, float* quotient, const float* a, const float* b);
    void (*divideWhereFree)(int count, float* quotient, const float* a, const float* b, const std::int16_t* code);
    void (*divideWhereNotNegative)(
        int count, float* quotient, const float* a, const float* b, const std::int16_t* code);
    /// temperature = energy / (capacity mass)
    void (*temperature)(int count, float* temperature, const float* energy, const float* capacity, const float* mass);
    void (*temperatureWhereNotNegative)(int count,
                                        float* temperature,
                                        const float* energy,
                                        const float* capacity,
                                        const float* mass,
                                        const std::int16_t* code);
    /// pressure = gasFactor mass temperature / volume
    void (*pressure)(
        int count, float* pressure, double gasFactor, const float* mass, const float* temperature, const float* volume);
    void (*pressureWhereNotNegative)(int count,
                                     float* pressure,
                                     double gasFactor,
                                     const float* mass,
                                     const float* temperature,
                                     const float* volume,
                                     const std::int16_t* code);
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
    void (*dragAndGravity)(const PullRows& rows);
    /// The same for one component where the code of the whole cell is 0, the drag only where the code is not positive. Before that the
    /// slope becomes 0 where the code is positive.
    void (*dragAndGravityWhereFree)(int count,
                                    float* slope,
                                    const float* velocity,
                                    const float* friction,
                                    double gravity,
                                    const float* mass,
                                    const std::int16_t* code,
                                    const std::int16_t* wholeCode);
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
