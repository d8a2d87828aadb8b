#include "display/shown_quantity.h"

#include "core/number_text.h"
#include "platform/letter_case.h"

#include <cmath>
#include <string_view>

namespace norvane {

namespace {

struct Symbol {
    std::string_view letters;
    ShownQuantity shown;
};

constexpr Symbol symbols[] = {
    {"t", {showTemperature, 0}}, {"p", {showPressure, 0}}, {"rho", {showDensity, 0}},    {"u", {showVelocity, 1}},
    {"v", {showVelocity, 2}},    {"w", {showVelocity, 3}}, {"speed", {showVelocity, 0}},
};

/// A whole number from 0 that is all of a text.
std::optional<int> wholeNumber(std::string_view text) {
    constexpr std::size_t mostDigits = 6;
    if (text.empty() || text.size() > mostDigits) return std::nullopt;
    int number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        number = 10 * number + (c - '0');
    }
    return number;
}

bool exists(const SimState& sim, const ShownQuantity& shown) {
    return correctedComponent(sim, shown.quantity, shown.component) == shown.component;
}

} // namespace

std::optional<ShownQuantity> quantityNamed(const SimState& sim, const std::string& name, int component) {
    const std::string text = lowerCase(name);
    const auto count = static_cast<int>(quantities().size());
    const std::optional<int> number = wholeNumber(text);
    for (int quantity = 1; quantity <= count; ++quantity)
        if (number == quantity || lowerCase(quantities()[static_cast<std::size_t>(quantity) - 1].name) == text)
            return ShownQuantity{quantity, correctedComponent(sim, quantity, component)};
    for (const Symbol& symbol : symbols)
        if (symbol.letters == text) return exists(sim, symbol.shown) ? std::optional(symbol.shown) : std::nullopt;
    const std::optional<int> species = text.size() > 1 && text[0] == 'c' ? wholeNumber(text.substr(1)) : std::nullopt;
    if (!species || *species > sim.nsMax) return std::nullopt;
    return ShownQuantity{showConcentration, *species};
}

std::string shownName(const ShownQuantity& shown) {
    const std::string along = shown.component >= 1 ? " " + axisLetter(shown.component) : "";
    switch (shown.quantity) {
    case showConcentration: return "Mass fraction of species " + std::to_string(shown.component);
    case showCellSize: return "Cell size" + along;
    case showCellHeight: return "Cell height";
    case showPlace: return "Place of the cell" + along;
    case showVectors: return "Velocity";
    default: break;
    }
    const std::string name = quantities()[static_cast<std::size_t>(drawnQuantity(shown.quantity)) - 1].name;
    return hasDirections(shown.quantity) ? name + along : name;
}

std::string shownUnit(const ShownQuantity& shown) {
    return quantities()[static_cast<std::size_t>(drawnQuantity(shown.quantity)) - 1].unit;
}

std::string axisLetter(int dim) {
    constexpr const char* letters[] = {"x", "y", "z"};
    return dim >= 1 && dim <= 3 ? letters[dim - 1] : "d" + std::to_string(dim);
}

bool holdsInWalls(int quantity) {
    return quantity == showTemperature || quantity == showConduction || quantity == showCellSize
           || quantity == showCellHeight || quantity == showPlace;
}

std::string momentText(const SimState& sim) {
    const auto seconds = static_cast<float>(double(sim.stepCount) * double(sim.dt));
    return "step " + std::to_string(sim.stepCount) + ", t = " + generalText(seconds) + " s";
}

} // namespace norvane
