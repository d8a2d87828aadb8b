#include "frontends/cli/command_options.h"

#include "core/number_text.h"
#include "core/quantities.h"
#include "platform/terminal_text.h"

#include <cmath>

namespace norvane {

namespace {

bool isPositive(const std::string& text) {
    std::size_t length = 0;
    const double number = numericPrefix(text, length);
    return length > 0 && length == text.size() && std::isfinite(number) && number > 0;
}

} // namespace

std::string notEmpty(const std::string& text) { return text.empty() ? "it is empty" : ""; }

std::string positiveTime(const std::string& text) {
    return isPositive(text) ? "" : "\"" + printableName(text) + "\" is no time in seconds above 0";
}

std::string positiveNumber(const std::string& text) {
    return isPositive(text) ? "" : "\"" + printableName(text) + "\" is no number above 0";
}

void addGeometry(CLI::App* command, std::string& geometry) {
    command->add_option("GEOMETRY", geometry, "the table of the geometry, a .gmt file")->required();
}

std::string listedQuantities() {
    std::string text;
    int number = 0;
    for (const Quantity& quantity : quantities()) {
        text += (number > 0 ? ", " : "") + std::to_string(number + 1) + " " + quantity.name;
        ++number;
    }
    return text;
}

} // namespace norvane
