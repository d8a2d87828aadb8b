#include "platform/terminal_text.h"

namespace norvane {

namespace {

unsigned char byteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

/// Bytes of the UTF-8 character at a place; 0 where there is none.
std::size_t characterBytes(std::string_view text, std::size_t at) {
    const unsigned char lead = byteAt(text, at);
    const std::size_t length = lead < 0x80                   ? 1
                               : lead >= 0xC2 && lead < 0xE0 ? 2
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xF0 && lead < 0xF5 ? 4
                                                             : 0;
    for (std::size_t k = 1; k < length; ++k)
        if (byteAt(text, at + k) < 0x80 || byteAt(text, at + k) > 0xBF) return 0;
    return length;
}

bool isControl(std::string_view text, std::size_t at, std::size_t length) {
    const unsigned char lead = byteAt(text, at);
    return lead < 0x20 || lead == 0x7F || (length == 2 && lead == 0xC2 && byteAt(text, at + 1) < 0xA0);
}

void appendEscaped(std::string& safe, std::string_view bytes) {
    constexpr const char* digits = "0123456789abcdef";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        safe += {'\\', 'x', digits[value >> 4], digits[value & 15]};
    }
}

} // namespace

std::string printable(std::string_view text, bool lines) {
    std::string safe;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = characterBytes(text, at);
        const std::string_view character = text.substr(at, length == 0 ? 1 : length);
        const bool stays = lines && (character == "\n" || character == "\t");
        if (length == 0 || (isControl(text, at, length) && !stays))
            appendEscaped(safe, character);
        else
            safe += character;
        at += character.size();
    }
    return safe;
}

} // namespace norvane
