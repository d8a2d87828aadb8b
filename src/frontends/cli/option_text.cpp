#include "frontends/cli/option_text.h"

#include "core/number_text.h"
#include "drawing/image_surface.h"
#include "platform/letter_case.h"
#include "platform/terminal_text.h"

#include <cmath>
#include <cstdio>

namespace norvane {

bool fault(const std::string& option, const std::string& given, const std::string& allowed) {
    std::fprintf(stderr, "%s: \"%s\" is not %s\n", option.c_str(), printableName(given).c_str(), allowed.c_str());
    return false;
}

std::optional<double> finiteNumber(const std::string& text) {
    std::size_t length = 0;
    const double value = numericPrefix(text, length);
    if (length == 0 || length != text.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<int> wholeIn(const std::string& text, int low, int high) {
    const std::optional<double> value = finiteNumber(text);
    if (!value || *value != std::floor(*value) || *value < low || *value > high) return std::nullopt;
    return static_cast<int>(*value);
}

std::vector<std::string> parts(const std::string& text, char separator) {
    std::vector<std::string> result{""};
    for (const char c : text) {
        if (c == separator)
            result.emplace_back();
        else
            result.back() += c;
    }
    return result;
}

std::string rangeText(int low, int high) { return std::to_string(low) + " to " + std::to_string(high); }

std::optional<PixelSize> pictureSize(const std::string& text) {
    const std::vector<std::string> sides = parts(lowerCase(text), 'x');
    const std::optional<int> width = sides.size() == 2 ? wholeIn(sides[0], 150, largestPicture) : std::nullopt;
    const std::optional<int> height = sides.size() == 2 ? wholeIn(sides[1], 60, largestPicture) : std::nullopt;
    if (width && height) return PixelSize{*width, *height};
    fault("--size", text,
          "WIDTHxHEIGHT in pixels, such as 1200x900, from 150x60 to " + std::to_string(largestPicture) + "x"
              + std::to_string(largestPicture));
    return std::nullopt;
}

} // namespace norvane
