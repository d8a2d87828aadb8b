#pragma once
// What the fields of a run come to while it goes on: values that no gas has, extremes, and how near the step is to the
// largest stable one.

#include "core/sim_state.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace norvane {

/// A value that is not finite, or a temperature, pressure or density below 0. cell 0: none.
struct BadValue {
    std::int32_t cell = 0;
    const char* quantity = "";
    double value = 0;
    std::int32_t step = 0;
};

BadValue firstBadValue(const SimState& sim);

/// "point 153 is table cell C4: T 12.5 K, p 3 Pa, density -0.1 kg/m3"
std::string describedPoint(const SimState& sim, std::int32_t cell);

/// The smallest and the largest value of a quantity, with the first cell of each.
struct FieldExtremes {
    float low = 0;
    float high = 0;
    std::int32_t lowCell = 0;
    std::int32_t highCell = 0;
};

/// Of a quantity of the catalogue that has a value, for one of its components. Values that are not finite are left out.
FieldExtremes extremesOf(const SimState& sim, int quantity, int component);

/// Looks at a run from time to time.
struct RunWatch {
    BadValue bad;
    double largestFraction = 0; ///< of the largest stable step, over all looks
    std::int32_t limitingCell = 0;

    /// Looks for values that no gas has, and at the stable step where that takes no more than a fiftieth of the time.
    void look(const SimState& sim);

private:
    std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::duration spent_{};
};

} // namespace norvane
