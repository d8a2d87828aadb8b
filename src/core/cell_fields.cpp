#include "core/cell_fields.h"

namespace norvane {

namespace {

using S = SimState;
using C = FieldComponents;
constexpr FieldStart kept = FieldStart::kept;
constexpr FieldStart fromTemplate = FieldStart::fromTemplate;

constexpr CellField table[] = {
    {"cellSize", &S::cellSize, C::dimensions, fromTemplate, "m", "size of the cell"},
    {"cellPos", &S::cellPos, C::dimensions, kept, "m", "lower edge of the cell"},
    {"inverseSize", &S::inverseSize, C::dimensions, kept, "1/m", "1 over the size"},
    {"faceArea", &S::faceArea, C::dimensions, kept, "m2", "volume over size"},
    {"conductionCoef", &S::conductionCoef, C::dimensions, kept, "W/K", "conductivity x volume / size^2"},
    {"viscousCoef", &S::viscousCoef, C::dimensions, kept, "kg/s", "viscosity x volume / size^2"},
    {"velocity", &S::velocity, C::dimensions, FieldStart::zero, "m/s", "velocity on the upper face"},
    {"velocityInit", &S::velocityInit, C::dimensions, kept, "m/s", "velocity at the start, or imposed"},
    {"cellHeight", &S::cellHeight, C::one, fromTemplate, "m", "height across the grid"},
    {"cellVolume", &S::cellVolume, C::one, kept, "m3", "volume"},
    {"heatCapacity", &S::heatCapacity, C::one, fromTemplate, "J/(kg K)", "heat capacity"},
    {"conductivity", &S::conductivity, C::one, fromTemplate, "W/(m K)", "heat conductivity"},
    {"viscosity", &S::viscosity, C::one, fromTemplate, "Pa s", "viscosity"},
    {"friction", &S::friction, C::one, fromTemplate, "kg/s", "drag, once a model stands"},
    {"cellMass", &S::cellMass, C::one, kept, "kg", "mass"},
    {"density", &S::density, C::one, fromTemplate, "kg/m3", "density"},
    {"temperature", &S::temperature, C::one, fromTemplate, "K", "temperature"},
    {"pressure", &S::pressure, C::one, fromTemplate, "Pa", "pressure"},
    {"concentration", &S::concentration, C::species, fromTemplate, "", "mass fraction"},
    {"stageSpecies", &S::stageSpecies, C::species, kept, "kg", "masses of the species in the slots of a step"},
    {"stageEnergy", &S::stageEnergy, C::one, kept, "J", "heat content in the slots of a step"},
    {"stageMomentum", &S::stageMomentum, C::dimensions, kept, "kg m/s", "momentum in the slots of a step"},
    // Component 0, the code of the whole cell, is not copied: see copyTemplate.
    {"wallVelocity", &S::wallVelocity, C::cellAndDimensions, fromTemplate, "", "wall code of the velocity"},
    {"wallPressure", &S::wallPressure, C::one, kept, "", "wall code of the masses and the pressure"},
    {"wallTemperature", &S::wallTemperature, C::one, fromTemplate, "", "wall code of the temperature"},
    {"wallConcentration", &S::wallConcentration, C::one, kept, "", "wall code of the concentrations"},
};

constexpr CellField remainderTable[] = {
    {"speciesRemainder", &S::speciesRemainder, C::species, kept, "kg", "what the masses lost to rounding"},
    {"energyRemainder", &S::energyRemainder, C::one, kept, "J", "what the heat content lost to rounding"},
    {"momentumRemainder", &S::momentumRemainder, C::dimensions, kept, "kg m/s", "what the momentum lost to rounding"},
};

template <class T>
void addKind(FieldSize& size, Array<T> SimState::*) {
    size.valueBytes = sizeof(T);
}

template <class T>
void addKind(FieldSize& size, CellTable<T> SimState::*) {
    size.valueBytes = sizeof(T);
}

template <class Slots>
void addKind(FieldSize& size, Slots SimState::*) {
    size.valueBytes = sizeof(float);
    size.arrays *= Slots::slots;
}

} // namespace

std::span<const CellField> cellFields() { return table; }

std::span<const CellField> remainderFields() { return remainderTable; }

ComponentRange componentRange(FieldComponents components, int nDim, int nsMax) {
    switch (components) {
    case FieldComponents::dimensions: return {1, nDim};
    case FieldComponents::cellAndDimensions: return {0, nDim};
    case FieldComponents::species: return {0, nsMax};
    default: return {0, 0};
    }
}

FieldSize sizeOf(const CellField& field, int nDim, int nsMax) {
    FieldSize size{static_cast<std::size_t>(componentRange(field.components, nDim, nsMax).count())};
    std::visit([&](auto member) { addKind(size, member); }, field.member);
    return size;
}

} // namespace norvane
