#include "core/quantities.h"

#include "core/addressing.h"
#include "core/field_value.h"

#include <algorithm>
#include <cmath>
#include <iterator>

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

float celsiusValue(const SimState& sim, int, std::int32_t cell) {
    return static_cast<float>(double(sim.temperature[cell]) - freezingPoint);
}

float stdVelocityValue(const SimState& sim, int component, std::int32_t cell) {
    return static_cast<float>(double(velocityValue(sim, component, cell)) * double(sim.density[cell])
                              / double(sim.density[0]));
}

float placeValue(const SimState& sim, int component, std::int32_t cell) {
    return static_cast<float>(cellCoordinate(sim, cell, component));
}

using S = SimState;
using C = QuantityComponents;
constexpr Location centre = Location::centre;
constexpr Location upperFace = Location::upperFace;

constexpr Quantity catalogue[] = {
    {"Temperature", "\u00b0C", centre, C::one, celsiusValue},
    {"Velocity", "m/s", upperFace, C::totalAndDimensions, velocityValue},
    {"Std Velocity", "m/s", upperFace, C::totalAndDimensions, stdVelocityValue},
    {"Pressure", "Pa", centre, C::one, fieldValue<&S::pressure>},
    {"Density", "kg/m\u00b3", centre, C::one, fieldValue<&S::density>},
    {"Concentration", "", centre, C::species, componentValue<&S::concentration>},
    {"X", "kW/m", upperFace, C::totalAndDimensions, conductionValue},
    {"dx", "m", centre, C::dimensions, componentValue<&S::cellSize>},
    {"dh", "m", centre, C::one, fieldValue<&S::cellHeight>},
    {"at", "", centre, C::dimensions, placeValue},
    {"VectorPlot", "m/s", upperFace, C::one, nullptr},
};

/// Null for a number that is none in the catalogue.
const Quantity* quantityOf(int quantity) {
    const bool exists = quantity >= 1 && quantity <= static_cast<int>(std::size(catalogue));
    return exists ? &catalogue[quantity - 1] : nullptr;
}

} // namespace

std::span<const Quantity> quantities() { return catalogue; }

int drawnQuantity(int showWhat) { return std::max<int>(showWhat, showTemperature); }

bool hasValue(int quantity) {
    const Quantity* const found = quantityOf(quantity);
    return found != nullptr && found->value != nullptr;
}

bool hasDirections(int quantity) {
    const Quantity* const found = quantityOf(quantity);
    return found != nullptr
           && (found->components == QuantityComponents::dimensions
               || found->components == QuantityComponents::totalAndDimensions);
}

int correctedComponent(const SimState& sim, int quantity, int component) {
    // A negative component of the conduction stays, and draws as the total.
    if (quantity == showConduction) return std::min<int>(component, sim.nDim);
    const Quantity* const found = quantityOf(quantity);
    switch (found != nullptr ? found->components : QuantityComponents::one) {
    case QuantityComponents::dimensions: return std::clamp<int>(component, 1, sim.nDim);
    case QuantityComponents::totalAndDimensions: return std::clamp<int>(component, 0, sim.nDim);
    case QuantityComponents::species: return std::clamp<int>(component, 0, sim.nsMax);
    default: return component;
    }
}

float cellValue(const SimState& sim, int quantity, int component, std::int32_t cell) {
    return hasValue(quantity) ? quantityOf(quantity)->value(sim, component, cell) : 0;
}

} // namespace norvane
