#pragma once
// Colour tables of figures, as data.

#include "platform/surface.h"

#include <cstdint>
#include <span>
#include <string>

namespace norvane {

struct ColorTable {
    const char* name;
    std::span<const std::uint32_t> nodes; ///< 0xRRGGBB, two or more

    /// The colour at a share of the scale; shares below 0 and above 1 have the colours of its ends.
    Color at(double share) const;
};

/// viridis: an even one that runs from dark to light, so that it prints in grey; coolwarm: a diverging one, light in
/// its middle; grey. People who confuse red and green can tell their colours apart.
std::span<const ColorTable> colorTables();

/// Null where no table has this name, in either case.
const ColorTable* colorTable(const std::string& name);

} // namespace norvane
