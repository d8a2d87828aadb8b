#include "exchange/csv_text.h"

#include <charconv>
#include <cmath>

namespace norvane {

std::string csvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string field = "\"";
    for (const char c : text) field += c == '"' ? std::string("\"\"") : std::string(1, c);
    return field + '"';
}

void appendNineDigits(std::string& text, double value) {
    if (std::isnan(value)) { // its sign says nothing
        text += "nan";
        return;
    }
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 9);
    text.append(digits, end.ptr);
}

} // namespace norvane
