#include "frontends/cli/json_text.h"

#include "core/number_text.h"
#include "platform/terminal_text.h"

#include <cmath>
#include <cstdio>

namespace norvane {

std::string jsonString(const std::string& text) {
    std::string json = "\"";
    for (const char c : printable(text, true)) {
        if (c == '"' || c == '\\') json += '\\';
        if (static_cast<unsigned char>(c) >= 0x20) {
            json += c;
            continue;
        }
        char code[8];
        std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
        json += code;
    }
    return json + "\"";
}

std::string jsonNumber(double value) { return std::isfinite(value) ? generalText(static_cast<float>(value)) : "null"; }

} // namespace norvane
