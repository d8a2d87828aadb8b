#pragma once
// The exponential, of operations that every machine rounds alike: those of C libraries differ in the last place.

#include <bit>
#include <cstdint>

namespace norvane {

/// 2^exponent, for exponents [-1022..1023].
constexpr double powerOfTwo(int exponent) {
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

/// e^x within 1 unit in the last place; NaN for NaN. Nothing but additions, multiplications, one division and choices.
///
/// x = k ln 2 + r with |r| <= ln 2 / 2, and e^r = 1 + 2 r / (r coth(r/2) - r), whose series in r^2 is that of the
/// Bernoulli numbers. Sources: argument reduction in two parts, Cody and Waite, Software Manual for the Elementary
/// Functions, 1980; r coth(r/2) = sum of 2 B(2n) r^2n / (2n)!, Abramowitz and Stegun, Handbook of Mathematical
/// Functions, 1964, 4.5.67.
constexpr double exponential(double x) {
    constexpr double log2e = 0x1.71547652b82fep+0;
    constexpr double ln2High = 0x1.62e42feep-1; // 32 bits, so that k times it is exact
    constexpr double ln2Low = 0x1.a39ef35793c76p-33;
    constexpr double overflow = 0x1.62e42fefa39efp+9;                     // from above it on, infinity
    constexpr double underflow = -745.2;                                  // below it, 0
    if (!(x <= overflow)) return x > overflow ? x * powerOfTwo(1023) : x; // infinity, or NaN
    if (x < underflow) return 0;

    const int k = static_cast<int>(x * log2e + (x < 0 ? -0.5 : 0.5));
    const double high = x - k * ln2High;
    const double low = k * ln2Low;
    const double r = high - low;
    const double s = r * r;
    const double series =
        s
        * (1 / 6.0
           + s
                 * (-1 / 360.0
                    + s
                          * (1 / 15120.0
                             + s
                                   * (-1 / 604800.0
                                      + s * (1 / 23950080.0 + s * (-691 / 653837184000.0 + s / 37362124800.0))))));
    const double c = r - series; // r coth(r/2) = 2 + series, so that e^r = 1 + r + r c / (2 - c)
    const double power = 1 + (high - (low - r * c / (2 - c)));
    const int half = k / 2; // 2^k in two steps, each of which exists; only a result below the normal ones is rounded
    return power * powerOfTwo(half) * powerOfTwo(k - half);
}

} // namespace norvane
