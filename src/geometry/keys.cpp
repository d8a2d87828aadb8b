#include "geometry/keys.h"

#include <algorithm>
#include <stdexcept>

namespace norvane {

namespace {

using S = SimState;
using F = KeyForm;
using I = KeyIndex;
using R = KeyRange;

constexpr double none = Key::noStart;
constexpr unsigned anywhere = inDefaults | inCells;

constexpr Key table[] = {
    // read when the table is loaded
    {"NS", F::plain, inColumn1, I::none, &S::nsMax, 0, false, R::notNegative, "",
     "highest species; species 0 always exists"},
    {"L", F::plain, inColumn1, I::none, {}, none, false, R::any, "", "begins or ends a layer; its number is the mark"},
    // of the whole model
    {"DT", F::plain, inDefaults, I::none, &S::dt, 0.01, false, R::positive, "s", "time step"},
    {"UT", F::plain, inDefaults, I::none, &S::updateEvery, 25, false, R::notNegative, "steps", "steps between plots"},
    {"ST", F::plain, inDefaults, I::none, &S::saveEvery, 10000, false, R::notNegative, "steps",
     "steps between saves of the state"},
    {"FT", F::plain, inDefaults, I::none, &S::frameEvery, 1e7, false, R::notNegative, "steps",
     "steps between snapshots"},
    {"LT", F::plain, inDefaults, I::none, &S::logEvery, 0, false, R::notNegative, "steps",
     "steps between lines of the log"},
    {"CY", F::plain, inDefaults, I::none, &S::cyFlag, 0, false, R::any, "", "kept, and read by nothing"},
    {"TR", F::plain, inDefaults, I::none, &S::rampSteps, 1, false, R::positive, "steps",
     "length of the ramp of wall code -2"},
    {"NT", F::plain, inDefaults, I::none, &S::stepLimit, 0, false, R::any, "steps", "number of steps of a run"},
    {"SA", F::plain, inDefaults, I::none, &S::scaleMax, 1000, true, R::any, "", "top of the colour scale"},
    {"SI", F::plain, inDefaults, I::none, &S::scaleMin, 600, true, R::any, "", "bottom of the colour scale"},
    {"SW", F::plain, inDefaults, I::none, &S::showWhat, none, true, R::any, "",
     "quantity that is shown, by its number"},
    {"SD", F::plain, inDefaults, I::none, &S::showDims, none, true, R::any, "", "component or species that is shown"},
    // of a cell, or of the template
    {"CP", F::plain, anywhere, I::none, &S::heatCapacity, 1000, false, R::positive, "J/(kg K)", "heat capacity"},
    {"ET", F::plain, anywhere, I::none, &S::viscosity, 1e-5, false, R::notNegative, "Pa s", "viscosity"},
    {"RH", F::plain, anywhere, I::none, &S::density, 1, false, R::positive, "kg/m3",
     "density of the template; in a cell no effect"},
    {"LA", F::plain, anywhere, I::none, &S::conductivity, 0.02, false, R::notNegative, "W/(m K)", "heat conductivity"},
    {"TT", F::plain, anywhere, I::none, &S::temperature, 298.15, false, R::positive, "K", "temperature"},
    {"PP", F::plain, anywhere, I::none, &S::pressure, 101300, false, R::positive, "Pa", "pressure"},
    {"RR", F::plain, anywhere, I::none, &S::friction, 0, false, R::notNegative, "kg/(m3 s)", "drag", true},
    {"WV", F::list, anywhere, I::dimensionOr0, &S::wallVelocity, 0, false, R::any, "", "wall code of the velocity"},
    {"CC", F::list, anywhere, I::species, &S::concentration, 0, false, R::fraction, "",
     "mass fraction; species 0 fills up to 1"},
    {"VV", F::list, anywhere, I::dimension, &S::velocityInit, none, false, R::any, "m/s",
     "velocity at the start, or imposed"},
    {"FF", F::list, anywhere, I::none, {}, none, false, R::any, "", "accepted, without effect"},
    {"WT", F::plain, anywhere, I::none, &S::wallTemperature, 0, false, R::any, "", "wall code of the temperature"},
    {"WP", F::plain, anywhere, I::none, &S::wallPressure, none, false, R::any, "",
     "wall code of the masses and the pressure"},
    {"WC", F::plain, anywhere, I::none, &S::wallConcentration, none, false, R::any, "",
     "wall code of the concentrations"},
    {"GG", F::indexed, inDefaults, I::dimension, &S::gravity, 0, false, R::any, "m/s2", "gravity"},
    {"GP", F::indexed, inDefaults, I::parameter, &S::paramGP, none, false, R::any, "",
     "parameters; 11 to 15 of the reaction"},
    {"DD", F::indexed, anywhere, I::signedDimension, &S::cellSize, 0.01, false, R::positive, "m", "size of the cell"},
    {"HH", F::indexed, inCells, I::signedDimension, &S::cellHeight, 1, false, R::positive, "m",
     "height across the grid"},
};

/// Compares the members that a key and a field of cells name.
struct SameMember {
    template <class A, class B>
    bool operator()(A, B) const {
        return false;
    }

    template <class A>
    bool operator()(A a, A b) const {
        return a == b;
    }
};

} // namespace

std::span<const Key> allKeys() { return table; }

const Key& keyOf(std::string_view letters) {
    const auto* const found =
        std::find_if(std::begin(table), std::end(table), [&](const Key& key) { return key.letters == letters; });
    if (found == std::end(table)) throw std::invalid_argument("there is no key of these letters");
    return *found;
}

const CellField* fieldOf(const Key& key) {
    for (const CellField& field : cellFields())
        if (std::visit(SameMember(), key.target, field.member)) return &field;
    return nullptr;
}

} // namespace norvane
