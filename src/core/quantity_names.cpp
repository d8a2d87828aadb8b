#include "core/quantity_names.h"

#include "core/field_value.h"
#include "core/nearest.h"
#include "platform/letter_case.h"

#include <algorithm>

namespace norvane {

namespace {

using S = SimState;
using C = QuantityComponents;

float speedValue(const SimState& sim, int, std::int32_t cell) { return cellValue(sim, showVelocity, 0, cell); }

struct ShortName {
    const char* name;
    const char* unit;
    const char* meaning;
    Location location;
    C components;
    bool isOfGrid;
    bool isUsual; ///< in a table for which nobody has chosen
    float (*value)(const SimState& sim, int component, std::int32_t cell);
};

constexpr ShortName shortNames[] = {
    {"T", "K", "temperature", Location::centre, C::one, false, true, fieldValue<&S::temperature>},
    {"p", "Pa", "pressure", Location::centre, C::one, false, true, fieldValue<&S::pressure>},
    {"rho", "kg/m3", "density", Location::centre, C::one, false, true, fieldValue<&S::density>},
    {"u", "m/s", "velocity along dimension", Location::upperFace, C::dimensions, false, true,
     componentValue<&S::velocity>},
    {"speed", "m/s", "root of the squares of the velocities of the upper faces", Location::upperFace, C::one, false,
     false, speedValue},
    {"c", "", "mass fraction of species", Location::centre, C::species, false, true, componentValue<&S::concentration>},
    {"mass", "kg", "mass in the cell", Location::centre, C::one, false, false, fieldValue<&S::cellMass>},
    {"volume", "m3", "volume of the cell", Location::centre, C::one, true, false, fieldValue<&S::cellVolume>},
};

/// The first three dimensions of the velocity have names of their own.
constexpr const char* velocityNames[] = {"", "u", "v", "w"};

std::string shortNameOf(const ShortName& entry, int component) {
    if (entry.components == C::one) return entry.name;
    if (entry.components == C::dimensions && component <= 3) return velocityNames[component];
    return entry.name + std::to_string(component);
}

/// Files that are read by programs of any kind hold ASCII units.
std::string asciiUnit(std::string unit) {
    static constexpr const char* pairs[][2] = {{"\u00b0C", "degC"}, {"\u00b3", "3"}};
    for (const auto& [from, to] : pairs)
        if (const std::size_t at = unit.find(from); at != std::string::npos)
            unit.replace(at, std::string_view(from).size(), to);
    return unit;
}

std::pair<int, int> componentRange(const SimState& sim, C components) {
    switch (components) {
    case C::dimensions: return {1, sim.nDim};
    case C::totalAndDimensions: return {0, sim.nDim};
    case C::species: return {0, sim.nsMax};
    default: return {0, 0};
    }
}

void addShortNames(const SimState& sim, bool onlyUsual, std::vector<NamedQuantity>& all) {
    for (const ShortName& entry : shortNames) {
        const bool isAlone = entry.components == C::species && sim.nsMax == 0; // its mass fraction is 1 everywhere
        if (onlyUsual && (!entry.isUsual || isAlone)) continue;
        const auto [first, last] = componentRange(sim, entry.components);
        for (int k = first; k <= last; ++k) {
            const std::string number = entry.components == C::one ? "" : " " + std::to_string(k);
            const int dimension = entry.components == C::dimensions ? k : 0;
            all.push_back({shortNameOf(entry, k), entry.unit, entry.meaning + number, entry.location, dimension,
                           entry.isOfGrid, true, k, entry.value});
        }
    }
}

void addCatalogue(const SimState& sim, std::vector<NamedQuantity>& all) {
    int place = 0;
    for (const Quantity& entry : quantities()) {
        ++place;
        if (entry.value == nullptr) continue;
        const bool isOfGrid = place == showCellSize || place == showCellHeight || place == showPlace;
        const auto [first, last] = componentRange(sim, entry.components);
        for (int k = first; k <= last; ++k) {
            const bool isTotal = entry.components == C::one || (entry.components == C::totalAndDimensions && k == 0);
            const std::string name = entry.name + (isTotal ? "" : " " + std::to_string(k));
            const int dimension = entry.components == C::species ? 0 : k;
            all.push_back(
                {name, asciiUnit(entry.unit), name, entry.location, dimension, isOfGrid, false, k, entry.value});
        }
    }
}

/// In small letters and without blanks: two names that differ in these alone are one.
std::string plainForm(std::string_view name) {
    std::string plain = lowerCase(name);
    plain.erase(std::remove(plain.begin(), plain.end(), ' '), plain.end());
    return plain;
}

/// "u2" as well as "v".
bool isCalled(const NamedQuantity& quantity, const std::string& plain) {
    const bool isVelocity = quantity.isShort && quantity.dimension > 0;
    return plainForm(quantity.name) == plain || (isVelocity && plain == "u" + std::to_string(quantity.dimension));
}

std::string unknownName(std::string_view name, const std::vector<NamedQuantity>& all) {
    std::vector<std::string> plain;
    std::string shorts;
    std::string longs;
    for (const NamedQuantity& quantity : all) {
        plain.push_back(plainForm(quantity.name));
        std::string& list = quantity.isShort ? shorts : longs;
        list += (list.empty() ? "" : ", ") + quantity.name;
    }
    const std::string nearest = nearestWord(plainForm(name), plain);
    const auto found = std::find(plain.begin(), plain.end(), nearest);
    const std::string hint =
        nearest.empty() ? "" : " Did you mean \"" + all[static_cast<std::size_t>(found - plain.begin())].name + "\"?";
    return "\"" + std::string(name) + "\" is no quantity of this geometry, which has " + shorts + "; also " + longs
           + "." + hint;
}

} // namespace

std::string headingOf(const NamedQuantity& quantity) {
    return quantity.unit.empty() ? quantity.name : quantity.name + " [" + quantity.unit + "]";
}

std::vector<NamedQuantity> namedQuantities(const SimState& sim) {
    std::vector<NamedQuantity> all;
    addShortNames(sim, false, all);
    addCatalogue(sim, all);
    return all;
}

std::string findQuantity(const SimState& sim, std::string_view name, std::vector<NamedQuantity>& found) {
    const std::vector<NamedQuantity> all = namedQuantities(sim);
    const std::string plain = plainForm(name);
    const auto quantity =
        std::find_if(all.begin(), all.end(), [&](const NamedQuantity& each) { return isCalled(each, plain); });
    if (quantity == all.end()) return unknownName(name, all);
    found.push_back(*quantity);
    return {};
}

std::string findQuantities(const SimState& sim, std::string_view list, std::vector<NamedQuantity>& found) {
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        std::string fault = findQuantity(sim, list.substr(begin, end - begin), found);
        if (!fault.empty()) return fault;
        begin = end + 1;
    }
    return {};
}

std::vector<NamedQuantity> usualQuantities(const SimState& sim) {
    std::vector<NamedQuantity> usual;
    addShortNames(sim, true, usual);
    return usual;
}

} // namespace norvane
