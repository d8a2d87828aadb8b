#pragma once
// Round places along an axis, and their labels.

#include <string>
#include <vector>

namespace norvane {

/// The ends of an axis or of a colour scale.
struct Range {
    double low = 0;
    double high = 1;
};

struct Ticks {
    std::vector<double> places; ///< ascending, within the range
    std::vector<std::string> labels;
    int exponent = 0; ///< the labels count in this power of ten, a multiple of 3, which belongs to the unit
};

/// Multiples of 1, 2 or 5 times a power of ten, at most `most` of them (2 or more); none where the ends are no
/// ascending finite numbers. Numbers from 0.01 to below a million are written as they are.
Ticks linearTicks(Range range, int most);

/// Powers of ten, with 2 and 5 times them where they are few; as linearTicks where the range is below a factor of ten.
/// None where the ends are not above 0.
Ticks logTicks(Range range, int most);

/// The unit in brackets with the power of ten that the labels count in: "[10\u00b3 Pa]"; empty where there is neither.
std::string unitText(const std::string& unit, int exponent);

/// A range that can be drawn: of equal ends, or ends that differ by no more than the rounding of a single, it takes in
/// some more on both sides.
Range drawable(Range range);

} // namespace norvane
