#include "geometry/text_encoding.h"

#include <cstdint>
#include <string_view>

namespace norvane {

namespace {

enum class Encoding { bytes, utf16Little, utf16Big };

Encoding encodingOf(std::string_view bytes) {
    if (bytes.substr(0, 2) == "\xFF\xFE") return Encoding::utf16Little;
    if (bytes.substr(0, 2) == "\xFE\xFF") return Encoding::utf16Big;
    if (bytes.size() >= 2 && bytes.size() % 2 == 0) {
        if (bytes[0] != 0 && bytes[1] == 0) return Encoding::utf16Little;
        if (bytes[0] == 0 && bytes[1] != 0) return Encoding::utf16Big;
    }
    return Encoding::bytes;
}

void appendUtf8(std::string& text, std::uint32_t point) {
    const auto add = [&](std::uint32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (point < 0x80) {
        add(point);
    } else if (point < 0x800) {
        add(0xC0 | point >> 6);
        add(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        add(0xE0 | point >> 12);
        add(0x80 | (point >> 6 & 0x3F));
        add(0x80 | (point & 0x3F));
    } else {
        add(0xF0 | point >> 18);
        add(0x80 | (point >> 12 & 0x3F));
        add(0x80 | (point >> 6 & 0x3F));
        add(0x80 | (point & 0x3F));
    }
}

std::string fromUtf16(std::string_view bytes, bool big) {
    const auto unit = [&](std::size_t at) -> std::uint32_t {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        return big ? std::uint32_t{first} << 8 | second : std::uint32_t{second} << 8 | first;
    };
    std::string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        std::uint32_t point = unit(at);
        const bool isHigh = point >= 0xD800 && point < 0xDC00;
        if (isHigh && at + 3 < bytes.size() && unit(at + 2) >= 0xDC00 && unit(at + 2) < 0xE000) {
            point = 0x10000 + ((point - 0xD800) << 10) + (unit(at + 2) - 0xDC00);
            at += 2;
        } else if (point >= 0xD800 && point < 0xE000) {
            point = 0xFFFD; // half of a pair
        }
        appendUtf8(text, point);
    }
    return text;
}

} // namespace

std::string toUtf8(std::string bytes) {
    const Encoding encoding = encodingOf(bytes);
    if (encoding != Encoding::bytes) bytes = fromUtf16(bytes, encoding == Encoding::utf16Big);
    if (bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) bytes.erase(0, 3); // also what a UTF-16 mark has become
    return bytes;
}

} // namespace norvane
