#include "verify/built_in.h"

#include "core/addressing.h"
#include "core/remainders.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

using S = SimState;
using P = CellPlaces;

template <int dim>
double place(const S&, const P& places, std::int32_t cell) {
    return places[dim - 1][cell];
}

template <int dim>
double sizeAlong(const S& sim, const P&, std::int32_t cell) {
    return dim <= sim.nDim ? double(sim.cellSize(cell, dim)) : 0;
}

template <int dim>
double coordinate(const S& sim, const P&, std::int32_t cell) {
    return dim <= sim.nDim ? cellCoordinate(sim, cell, dim) : 0;
}

template <int dim>
double velocityAlong(const S& sim, const P&, std::int32_t cell) {
    return dim <= sim.nDim ? double(sim.velocity(cell, dim)) : 0;
}

template <int dim>
double momentumAlong(const S& sim, const P&, std::int32_t cell) {
    return dim <= sim.nDim ? double(sim.stageMomentum(committedSlot, cell, dim)) : 0;
}

template <int species>
double fraction(const S& sim, const P&, std::int32_t cell) {
    return species <= sim.nsMax ? double(sim.concentration(cell, species)) : 0;
}

template <Array<float> SimState::*member>
double fieldOf(const S& sim, const P&, std::int32_t cell) {
    return double((sim.*member)[cell]);
}

/// Summed in double, unlike the mass that the program derives, and with the remainders of a compensated run.
double massOf(const S& sim, const P&, std::int32_t cell) {
    double mass = 0;
    for (int species = 0; species <= sim.nsMax; ++species) {
        mass += double(sim.stageSpecies(committedSlot, species, cell));
        if (hasRemainders(sim)) mass += double(sim.speciesRemainder(cell, species));
    }
    return mass;
}

double heatOf(const S& sim, const P&, std::int32_t cell) {
    const double heat = double(sim.stageEnergy(committedSlot, cell));
    return hasRemainders(sim) ? heat + double(sim.energyRemainder(cell, 0)) : heat;
}

constexpr CellValue valuesOfCells[] = {
    {"x", place<1>},
    {"y", place<2>},
    {"z", place<3>},
    {"dx", sizeAlong<1>},
    {"dy", sizeAlong<2>},
    {"dz", sizeAlong<3>},
    {"i", coordinate<1>},
    {"j", coordinate<2>},
    {"k", coordinate<3>},
    {"V", fieldOf<&S::cellVolume>},
    {"T", fieldOf<&S::temperature>},
    {"p", fieldOf<&S::pressure>},
    {"rho", fieldOf<&S::density>},
    {"u", velocityAlong<1>},
    {"v", velocityAlong<2>},
    {"w", velocityAlong<3>},
    {"c0", fraction<0>},
    {"c1", fraction<1>},
    {"c2", fraction<2>},
    {"mass", massOf},
    {"heat", heatOf},
    {"mu", momentumAlong<1>},
    {"mv", momentumAlong<2>},
    {"mw", momentumAlong<3>},
    {"cp", fieldOf<&S::heatCapacity>},
    {"la", fieldOf<&S::conductivity>},
    {"et", fieldOf<&S::viscosity>},
};

using D = double;

constexpr NumberFunction functionsOfNumbers[] = {
    {"+", 2, [](D a, D b) { return a + b; }},
    {"-", 2, [](D a, D b) { return a - b; }},
    {"*", 2, [](D a, D b) { return a * b; }},
    {"/", 2, [](D a, D b) { return a / b; }},
    {"^", 2, [](D a, D b) { return std::pow(a, b); }},
    {"<", 2, [](D a, D b) { return D(a < b); }},
    {">", 2, [](D a, D b) { return D(a > b); }},
    {"<=", 2, [](D a, D b) { return D(a <= b); }},
    {">=", 2, [](D a, D b) { return D(a >= b); }},
    {"==", 2, [](D a, D b) { return D(a == b); }},
    {"!=", 2, [](D a, D b) { return D(a != b); }},
    {"&", 2, [](D a, D b) { return D(a != 0 && b != 0); }},
    {"|", 2, [](D a, D b) { return D(a != 0 || b != 0); }},
    {"!", 1, [](D a, D) { return D(a == 0); }},
    {"abs", 1, [](D a, D) { return std::abs(a); }},
    {"sqrt", 1, [](D a, D) { return std::sqrt(a); }},
    {"exp", 1, [](D a, D) { return std::exp(a); }},
    {"log", 1, [](D a, D) { return std::log(a); }},
    {"sin", 1, [](D a, D) { return std::sin(a); }},
    {"cos", 1, [](D a, D) { return std::cos(a); }},
    {"tan", 1, [](D a, D) { return std::tan(a); }},
    {"asin", 1, [](D a, D) { return std::asin(a); }},
    {"acos", 1, [](D a, D) { return std::acos(a); }},
    {"atan", 1, [](D a, D) { return std::atan(a); }},
    {"sinh", 1, [](D a, D) { return std::sinh(a); }},
    {"cosh", 1, [](D a, D) { return std::cosh(a); }},
    {"tanh", 1, [](D a, D) { return std::tanh(a); }},
    {"erf", 1, [](D a, D) { return std::erf(a); }},
    {"erfc", 1, [](D a, D) { return std::erfc(a); }},
    {"lgamma", 1, [](D a, D) { return std::lgamma(a); }},
    {"floor", 1, [](D a, D) { return std::floor(a); }},
    {"atan2", 2, [](D a, D b) { return std::atan2(a, b); }},
    {"min", 2, [](D a, D b) { return std::fmin(a, b); }},
    {"max", 2, [](D a, D b) { return std::fmax(a, b); }},
};

} // namespace

CellPlaces placesOf(const SimState& sim) {
    CellPlaces places;
    for (int dim = 1; dim <= 3; ++dim) {
        std::vector<double>& along = places[dim - 1];
        along.assign(static_cast<std::size_t>(sim.nCells) + 1, 0);
        if (dim > sim.nDim) continue;
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
            const std::int64_t below = std::int64_t{cell} - sim.cellStride[dim];
            if (inSameRow(sim, cell, below, dim))
                along[cell] = along[below] + double(sim.cellSize(static_cast<std::int32_t>(below), dim));
        }
    }
    return places;
}

std::span<const CellValue> cellValues() { return valuesOfCells; }

std::span<const NumberFunction> numberFunctions() { return functionsOfNumbers; }

} // namespace norvane
