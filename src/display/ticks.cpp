#include "display/ticks.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace norvane {

namespace {

std::string fixedText(double value, int decimals) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed,
                                   std::clamp(decimals, 0, 20));
    return end.ec == std::errc() ? std::string(digits.data(), end.ptr) : std::string();
}

/// 10^exponent, exact as far as a double holds it.
double powerOfTen(int exponent) { return std::pow(10.0, exponent); }

/// The smallest of 1, 2, 5 times a power of ten that is not below `least`, as a digit and an exponent.
struct RoundStep {
    int digit = 1;
    int exponent = 0;

    double value() const { return digit * powerOfTen(exponent); }
};

RoundStep roundStep(double least) {
    RoundStep step;
    step.exponent = static_cast<int>(std::floor(std::log10(least)));
    for (const int digit : {1, 2, 5, 10}) {
        step.digit = digit;
        if (step.value() >= least * (1 - 1e-9)) break;
    }
    if (step.digit == 10) return {1, step.exponent + 1};
    return step;
}

std::string superscript(int number) {
    static constexpr const char* digits[] = {"\u2070", "\u00b9", "\u00b2", "\u00b3", "\u2074",
                                             "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
    std::string text = number < 0 ? "\u207b" : "";
    for (const char c : std::to_string(std::abs(number))) text += digits[c - '0'];
    return text;
}

bool isRange(Range range) {
    return std::isfinite(range.low) && std::isfinite(range.high) && std::isfinite(range.high - range.low)
           && range.high > range.low;
}

std::string decadeText(int digit, int exponent) {
    constexpr int plain = 4; // up to ten thousand and down to a ten-thousandth numbers are written as they are
    if (std::abs(exponent) < plain) return fixedText(digit * powerOfTen(exponent), -exponent);
    return (digit == 1 ? "" : std::to_string(digit) + "\u00b7") + "10" + superscript(exponent);
}

} // namespace

Ticks linearTicks(Range range, int most) {
    Ticks ticks;
    if (!isRange(range)) return ticks;
    const double span = range.high - range.low;
    RoundStep step = roundStep(span / std::max(most, 2));
    const double slack = 1e-6 * span; // an end that is a tick but for the rounding of singles counts
    const auto first = [&] { return std::ceil((range.low - slack) / step.value()); };
    const auto last = [&] { return std::floor((range.high + slack) / step.value()); };
    while (last() - first() + 1 > most) step = roundStep(step.value() * 1.01);
    const double largest = std::max(std::abs(range.low), std::abs(range.high));
    if (largest >= 1e6 || largest < 1e-2) ticks.exponent = static_cast<int>(std::floor(std::log10(largest) / 3)) * 3;
    const int decimals = ticks.exponent - step.exponent;
    const auto count = static_cast<int>(last() - first() + 1);
    for (int k = 0; k < count; ++k) {
        const double multiple = first() + k;
        ticks.places.push_back(multiple * step.value());
        const double shown = multiple * step.digit * powerOfTen(step.exponent - ticks.exponent);
        ticks.labels.push_back(fixedText(multiple == 0 ? 0 : shown, decimals)); // no "-0"
    }
    return ticks;
}

Ticks logTicks(Range range, int most) {
    Ticks ticks;
    if (!isRange(range) || !(range.low > 0)) return ticks;
    const int low = static_cast<int>(std::ceil(std::log10(range.low) - 1e-9));
    const int high = static_cast<int>(std::floor(std::log10(range.high) + 1e-9));
    if (range.high < 10 * range.low) return linearTicks(range, most); // powers of ten would be too few
    const int decades = high - low + 1;
    const int every = (decades + most - 1) / std::max(most, 1);
    const bool hasRoom = decades * 3 <= most;
    for (int exponent = low - 1; exponent <= high; ++exponent)
        for (const int digit : {1, 2, 5}) {
            const double place = digit * powerOfTen(exponent);
            const bool isInside = place >= range.low * (1 - 1e-9) && place <= range.high * (1 + 1e-9);
            if (!isInside || (digit == 1 ? (exponent - low) % every != 0 : !hasRoom)) continue;
            ticks.places.push_back(place);
            ticks.labels.push_back(decadeText(digit, exponent));
        }
    return ticks;
}

std::string unitText(const std::string& unit, int exponent) {
    if (exponent == 0) return unit.empty() ? "" : "[" + unit + "]";
    return "[10" + superscript(exponent) + (unit.empty() ? "" : " " + unit) + "]";
}

Range drawable(Range range) {
    const double largest = std::max(std::abs(range.low), std::abs(range.high));
    const double least = largest > 0 ? largest * 1e-6 : 1e-30;
    if (range.high - range.low > least) return range;
    const double margin = largest > 0 ? largest * 0.01 : 1;
    return {range.low - margin, range.high + margin};
}

} // namespace norvane
