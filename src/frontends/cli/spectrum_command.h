#pragma once

#include <string>

namespace norvane {

struct SpectrumOptions {
    std::string geometry;
    std::string output; ///< empty: NV_spectrum beside the geometry
    int points = 100;
    bool state = false; ///< recalls the saved state
};

/// Writes the velocity spectrum of a geometry beside it, without a window. Gives the exit status.
int writeSpectrumOf(const SpectrumOptions& options);

} // namespace norvane
