#include "display/quantities.h"

#include "core/addressing.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace norvane {

namespace {

constexpr double freezingPoint = 273.15; // K

void addSquare(float& sum, double term) { sum = static_cast<float>(double(sum) + term * term); }

float rootOf(float sum) { return static_cast<float>(std::sqrt(double(sum))); }

float velocityValue(const SimState& sim, int component, std::int32_t cell) {
    if (component >= 1) return sim.velocity(cell, component);
    float sum = 0;
    for (int dim = 1; dim <= sim.nDim; ++dim) addSquare(sum, double(sim.velocity(cell, dim)));
    return rootOf(sum);
}

/// What flows to a neighbour that exists, up to the geometry of the face.
double conductionTerm(const SimState& sim, std::int32_t cell, std::int64_t neighbour) {
    return (double(sim.temperature[cell]) - double(sim.temperature[neighbour])) * double(sim.conductivity[cell]) / 1000;
}

float conductionValue(const SimState& sim, int component, std::int32_t cell) {
    if (component >= 1) {
        const std::int64_t neighbour = std::int64_t{cell} + sim.cellStride[component];
        const bool flows = inSameRow(sim, cell, neighbour, component) && sim.wallTemperature[cell] <= 0;
        return flows ? static_cast<float>(conductionTerm(sim, cell, neighbour)) : 0.0f;
    }
    // The total shows the gradient itself, so that a held energy does not count here.
    float sum = 0;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const std::int64_t neighbour = std::int64_t{cell} + sim.cellStride[dim];
        if (inSameRow(sim, cell, neighbour, dim)) addSquare(sum, conductionTerm(sim, cell, neighbour));
    }
    return rootOf(sum);
}

} // namespace

std::span<const char* const> quantityNames() {
    static constexpr const char* names[] = {"Temperature",   "Velocity", "Std Velocity", "Pressure", "Density",
                                            "Concentration", "X",        "dx",           "dh",       "at",
                                            "VectorPlot"};
    return names;
}

int drawnQuantity(int showWhat) { return std::max<int>(showWhat, showTemperature); }

bool hasValue(int quantity) { return quantity >= showTemperature && quantity <= showPlace; }

bool hasDirections(int quantity) {
    return quantity == showVelocity || quantity == showStdVelocity || quantity == showConduction
           || quantity == showCellSize || quantity == showPlace;
}

std::string dimensionMark(int dim) {
    constexpr std::string_view marks[] = {" X", " Y", " Z", "d4"};
    return dim >= 1 && dim <= 4 ? std::string(marks[dim - 1]) : std::string();
}

int correctedComponent(const SimState& sim, int quantity, int component) {
    switch (quantity) {
    case showVelocity:
    case showStdVelocity: return std::clamp<int>(component, 0, sim.nDim);
    case showConcentration: return std::clamp<int>(component, 0, sim.nsMax);
    case showConduction: return std::min<int>(component, sim.nDim);
    case showCellSize:
    case showPlace: return std::clamp<int>(component, 1, sim.nDim);
    default: return component;
    }
}

float cellValue(const SimState& sim, int quantity, int component, std::int32_t cell) {
    switch (quantity) {
    case showTemperature: return static_cast<float>(double(sim.temperature[cell]) - freezingPoint);
    case showVelocity: return velocityValue(sim, component, cell);
    case showStdVelocity:
        return static_cast<float>(double(velocityValue(sim, component, cell)) * double(sim.density[cell])
                                  / double(sim.density[0]));
    case showPressure: return sim.pressure[cell];
    case showDensity: return sim.density[cell];
    case showConcentration: return sim.concentration(cell, component);
    case showConduction: return conductionValue(sim, component, cell);
    case showCellSize: return sim.cellSize(cell, component);
    case showCellHeight: return sim.cellHeight[cell];
    case showPlace: return static_cast<float>(cellCoordinate(sim, cell, component));
    default: return 0;
    }
}

} // namespace norvane
