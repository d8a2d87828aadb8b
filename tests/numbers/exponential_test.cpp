// The exponential of the species exchange, against one of a higher precision.

#include "core/exponential.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace norvane {
namespace {

TEST(exponential, isWithinOneUnitInTheLastPlace) {
    if constexpr (std::numeric_limits<long double>::digits < 64) GTEST_SKIP() << "no higher precision on this machine";
    std::mt19937_64 random(1);
    double worst = 0;
    for (int k = 0; k < 1000000; ++k) {
        const double unit = double(random() >> 11) * 0x1p-53 - 0.5;
        const double x = k % 4 == 0   ? unit * 80
                         : k % 4 == 1 ? unit * 1400
                         : k % 4 == 2 ? unit * 1.4
                                      : std::ldexp(unit, -static_cast<int>(random() % 60));
        const long double exact = std::exp(static_cast<long double>(x));
        const double rounded = static_cast<double>(exact);
        const double place = std::nextafter(rounded, std::numeric_limits<double>::infinity()) - rounded;
        worst = std::max(worst, static_cast<double>(std::abs(exponential(x) - exact) / place));
    }
    EXPECT_LT(worst, 1);
}

TEST(exponential, endsAreThoseOfTheFunction) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double zero : {0.0, -0.0, 1e-320, -1e-18}) EXPECT_EQ(exponential(zero), 1);
    for (const double large : {709.79, 1e308, infinity}) EXPECT_EQ(exponential(large), infinity);
    for (const double small : {-745.2, -1e308, -infinity}) EXPECT_EQ(exponential(small), 0);
    EXPECT_TRUE(std::isnan(exponential(std::numeric_limits<double>::quiet_NaN())));
    EXPECT_NEAR(exponential(0x1.62e42fefa39efp+9) / std::numeric_limits<double>::max(), 1, 1e-12);
    EXPECT_EQ(exponential(-745.1), std::numeric_limits<double>::denorm_min());
    EXPECT_NEAR(exponential(-740) / 4.19956e-322, 1, 1e-2); // subnormal
}

} // namespace
} // namespace norvane
