#pragma once
// The arithmetic of a stage on whole rows of cells: plain loops without branches, which a compiler turns into vectors.
// One set of them is compiled for each instruction set; all give the same bits, those of the formulas cell by cell:
// expressions in double from left to right, one rounding to single at each store and each accumulation. Only a sum, a
// difference or a quotient of two singles is taken in single, which rounds to the same.

#include <cstdint>

namespace norvane {

/// The two faces of the cells of a row along one dimension. Pointers lead to the first cell of the row.
struct FaceRows {
    int count = 0;                     ///< cells
    std::int64_t stride = 0;           ///< from a cell to its upper neighbour
    bool hasLower = false;             ///< the lower neighbours exist
    bool hasUpper = false;             ///< the upper neighbours exist
    const double* flowLower = nullptr; ///< kg/s up through the lower face
    const double* flowUpper = nullptr; ///< kg/s up through the upper face
    const float* velocity = nullptr;   ///< along the dimension: [i] of the upper face, [i - stride] of the lower one
    const std::int32_t* openLower = nullptr; ///< 0: nothing is carried through; null: all faces of the row are open
    const std::int32_t* openUpper = nullptr; ///< the same; null together with openLower
};

/// A coefficient of the cells of a row.
struct CoefficientRow {
    const float* here = nullptr;
    std::int64_t stride = 0; ///< to the same row of the upper neighbours; 0 where the coefficient is one for all rows
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

    /// flow = inverseSize momentum
    void (*massFlow)(int count, double* flow, const float* inverseSize, const float* momentum);
    /// open = whether the upper face of a cell carries: no positive code, and a donor denser than the floor.
    void (*openFaces)(int count,
                      std::int64_t stride,
                      std::int32_t* open,
                      const std::int16_t* code,
                      const float* velocity,
                      const float* density,
                      float floor);

    /// Adds what both faces carry of a value for each mass, in the order lower, upper.
    void (*carry)(const FaceRows& faces, float* slope, const float* value);
    /// The same for heat, with the conduction through each face behind what it carries.
    void (*carryHeat)(const FaceRows& faces,
                      float* slope,
                      const CoefficientRow& capacity,
                      const float* temperature,
                      const CoefficientRow& conduction);
    /// The same for a component of momentum, with the viscous exchange. `pressure` is null for the components across
    /// the dimension of the faces; else its force on the upper face stands between flow and exchange.
    void (*carryMomentum)(const FaceRows& faces,
                          float* slope,
                          const float* velocity,
                          const CoefficientRow& viscous,
                          const float* pressure,
                          const float* area);

    /// Subtracts velocity friction, then adds gravity mass.
    void (*dragAndGravity)(
        int count, float* slope, const float* velocity, const float* friction, double gravity, const float* mass);
    /// The same where the code of the whole cell is 0, the drag only where the code is not positive. Before that the
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
