#include "drawing/drawable_text.h"

#include <algorithm>

namespace norvane {

namespace {

/// The length of the UTF-8 character at the head of a text, 0 where its bytes are none.
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t k) { return k < text.size() ? static_cast<unsigned char>(text[k]) : 0u; };
    const unsigned head = byte(0);
    const std::size_t length = head < 0x80                   ? 1
                               : head >= 0xc2 && head < 0xe0 ? 2
                               : head < 0xf0                 ? 3
                               : head < 0xf5                 ? 4
                                                             : 0;
    if (head >= 0x80 && head < 0xc2) return 0;
    for (std::size_t k = 1; k < length; ++k)
        if ((byte(k) & 0xc0u) != 0x80u) return 0;
    const bool tooLong = (head == 0xe0 && byte(1) < 0xa0) || (head == 0xf0 && byte(1) < 0x90);
    const bool noCharacter = (head == 0xed && byte(1) >= 0xa0) || (head == 0xf4 && byte(1) >= 0x90);
    return tooLong || noCharacter ? 0 : length;
}

/// Places of Unicode that are no characters: U+FDD0 to U+FDEF, and the last two of each plane.
bool isNoncharacter(std::string_view character) {
    if (character.size() < 3) return false;
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(character[k]); };
    const std::size_t last = character.size() - 1;
    const bool endsPlane = byte(last) >= 0xBE && byte(last - 1) == 0xBF
                           && (character.size() == 3 ? byte(0) == 0xEF : (byte(1) & 0x0F) == 0x0F);
    const bool isReserved = byte(0) == 0xEF && byte(1) == 0xB7 && byte(2) >= 0x90 && byte(2) <= 0xAF;
    return endsPlane || (character.size() == 3 && isReserved);
}

} // namespace

std::string drawableText(std::string_view text) {
    std::string clean;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const bool isControl = static_cast<unsigned char>(text[0]) < ' ' || text[0] == '\x7f';
        if (length == 0 || isNoncharacter(text.substr(0, length)))
            clean += '?';
        else if (isControl)
            clean += ' ';
        else
            clean += text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return clean;
}

} // namespace norvane
