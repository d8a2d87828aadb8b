#include "display/color_tables.h"

#include "platform/letter_case.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace norvane {

namespace {

// Red, green and blue in turn, at even distances; between them colours follow straight lines.

// "viridis" by van der Walt and Smith (2015), in the public domain (CC0): every fifth of its 256 colours.
constexpr std::uint32_t viridis[] = {
    0x440154, 0x46085c, 0x471063, 0x481769, 0x481d6f, 0x482475, 0x472a7a, 0x46307e, 0x453781, 0x433d84, 0x414287,
    0x3f4889, 0x3d4e8a, 0x3a538b, 0x38598c, 0x355e8d, 0x33638d, 0x31688e, 0x2e6d8e, 0x2c718e, 0x2a768e, 0x297b8e,
    0x27808e, 0x25848e, 0x23898e, 0x218e8d, 0x20928c, 0x1f978b, 0x1e9c89, 0x1fa188, 0x21a585, 0x24aa83, 0x28ae80,
    0x2eb37c, 0x35b779, 0x3dbc74, 0x46c06f, 0x50c46a, 0x5ac864, 0x65cb5e, 0x70cf57, 0x7cd250, 0x89d548, 0x95d840,
    0xa2da37, 0xb0dd2f, 0xbddf26, 0xcae11f, 0xd8e219, 0xe5e419, 0xf1e51d, 0xfde725};

// "Cool to warm" by Moreland (2009), Diverging color maps for scientific visualization: his table of 33 colours.
constexpr std::uint32_t coolWarm[] = {
    0x3b4cc0, 0x445acc, 0x4d68d7, 0x5775e1, 0x6282ea, 0x6c8ef1, 0x779af7, 0x82a5fb, 0x8db0fe, 0x98b9ff, 0xa3c2ff,
    0xaec9fd, 0xb8d0f9, 0xc2d5f4, 0xccd9ee, 0xd5dbe6, 0xdddddd, 0xe5d8d1, 0xecd3c5, 0xf1ccb9, 0xf5c4ad, 0xf7bba0,
    0xf7b194, 0xf7a687, 0xf49a7b, 0xf18d6f, 0xec7f63, 0xe57058, 0xde604d, 0xd55042, 0xcb3e38, 0xc0282f, 0xb40426};

constexpr std::uint32_t grey[] = {0x202020, 0xfafafa};

constexpr ColorTable tables[] = {
    {"viridis", viridis},
    {"coolwarm", coolWarm},
    {"grey", grey},
};

Color colorOf(std::uint32_t code) {
    return {static_cast<std::uint8_t>(code >> 16 & 0xff), static_cast<std::uint8_t>(code >> 8 & 0xff),
            static_cast<std::uint8_t>(code & 0xff)};
}

} // namespace

Color ColorTable::at(double share) const {
    const auto last = static_cast<double>(nodes.size() - 1);
    const double place = std::isnan(share) ? 0 : std::clamp(share, 0.0, 1.0) * last;
    const auto low = static_cast<std::size_t>(std::min(place, last - 1));
    const double part = place - static_cast<double>(low);
    const Color a = colorOf(nodes[low]);
    const Color b = colorOf(nodes[low + 1]);
    const auto mixed = [part](std::uint8_t from, std::uint8_t to) {
        return static_cast<std::uint8_t>(std::lround((1 - part) * from + part * to));
    };
    return {mixed(a.red, b.red), mixed(a.green, b.green), mixed(a.blue, b.blue)};
}

std::span<const ColorTable> colorTables() { return tables; }

const ColorTable* colorTable(const std::string& name) {
    const auto found = std::find_if(std::begin(tables), std::end(tables),
                                    [&](const ColorTable& table) { return lowerCase(name) == table.name; });
    return found == std::end(tables) ? nullptr : found;
}

} // namespace norvane
