#include "display/shown_quantity.h"

#include "platform/letter_case.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace norvane {

namespace {

std::string printedUnit(std::string unit) {
    static constexpr std::pair<std::string_view, std::string_view> forms[] = {{"degC", "\u00b0C"}, {"m3", "m\u00b3"}};
    for (const auto& [plain, printed] : forms)
        if (const std::size_t at = unit.find(plain); at != std::string::npos) unit.replace(at, plain.size(), printed);
    return unit;
}

std::string labelOf(const NamedQuantity& quantity) {
    static constexpr std::pair<std::string_view, std::string_view> labels[] = {
        {"T", "Temperature"}, {"p", "Pressure"}, {"rho", "Density"},       {"speed", "Speed"},
        {"mass", "Mass"},     {"dh", "Height"},  {"volume", "Cell volume"}};
    for (const auto& [name, label] : labels)
        if (quantity.name == name) return std::string(label);
    if (quantity.unit.empty() && quantity.location == Location::centre && !quantity.isOfGrid)
        return "Mass fraction of species " + std::to_string(quantity.component);
    const std::string name = quantity.isShort ? "Velocity" : quantity.name.substr(0, quantity.name.rfind(' '));
    if (quantity.dimension == 0) return quantity.name;
    const std::string known = name == "dx" ? "Cell size" : name == "at" ? "Place of the cell" : name;
    return known + " " + axisLetter(quantity.dimension);
}

ShownQuantity shownAs(const NamedQuantity& quantity) {
    ShownQuantity shown{quantity, labelOf(quantity), printedUnit(quantity.unit), quantity.isOfGrid, false};
    for (const std::string_view name : {"T", "Temperature", "X"})
        shown.inWalls = shown.inWalls || shown.quantity.name.substr(0, shown.quantity.name.find(' ')) == name;
    return shown;
}

} // namespace

bool hasComponents(int quantity) { return hasDirections(quantity) || quantity == showConcentration; }

ShownQuantity shownOf(const SimState& sim, int quantity, int component) {
    const bool isArrows = !hasValue(quantity);
    const int number = isArrows ? static_cast<int>(showVelocity) : quantity;
    const Quantity& entry = quantities()[static_cast<std::size_t>(number) - 1];
    const int shown = !hasComponents(number) || isArrows ? 0 : correctedComponent(sim, number, std::max(component, 0));
    // As the list of names calls it, which knows its unit, and which face its value lies on.
    const std::string name =
        entry.name
        + (hasComponents(number) && (shown > 0 || number == showConcentration) ? " " + std::to_string(shown)
                                                                               : std::string());
    std::vector<NamedQuantity> found;
    findQuantity(sim, name, found);
    ShownQuantity result = shownAs(found.at(0));
    result.isArrows = isArrows;
    return result;
}

int catalogueNumber(const std::string& name) {
    const auto plain = [](std::string text) {
        text = lowerCase(text);
        text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
        return text;
    };
    for (std::size_t k = 0; k < quantities().size(); ++k)
        if (plain(name) == plain(quantities()[k].name) || name == std::to_string(k + 1)) return static_cast<int>(k) + 1;
    return 0;
}

std::string chooseShown(const SimState& sim, const std::string& name, int component, ShownQuantity& shown) {
    if (const int number = catalogueNumber(name); number > 0) {
        shown = shownOf(sim, number, component);
        return {};
    }
    std::vector<NamedQuantity> found;
    std::string fault = findQuantity(sim, name, found);
    if (fault.empty()) shown = shownAs(found.front());
    return fault;
}

std::string axisLetter(int dim) {
    constexpr const char* letters[] = {"x", "y", "z"};
    return dim >= 1 && dim <= 3 ? letters[dim - 1] : "d" + std::to_string(dim);
}

std::string shortText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

std::string momentText(const SimState& sim) {
    const double seconds = double(sim.stepCount) * double(sim.dt);
    return "step " + std::to_string(sim.stepCount) + ", t = " + shortText(seconds) + " s";
}

} // namespace norvane
