#include "frontends/cli/command_options.h"

#include "core/number_text.h"
#include "core/quantities.h"
#include "platform/terminal_text.h"

#include <cmath>

namespace norvane {

std::string notEmpty(const std::string& text) { return text.empty() ? "it is empty" : ""; }

std::string positiveTime(const std::string& text) {
    std::size_t length = 0;
    const double seconds = numericPrefix(text, length);
    const bool isTime = length > 0 && length == text.size() && std::isfinite(seconds) && seconds > 0;
    return isTime ? "" : "\"" + printableName(text) + "\" is no time in seconds above 0";
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
