// Values that come to rest, and those that only seem to.

#include "check/steady.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>

namespace norvane {
namespace {

struct Signal {
    const char* what;
    std::function<double(double time)> value;
    bool isSteady; ///< within 0.01 over the last 1 s of 10 s
};

TEST(steady, isWhatStaysWithinTheToleranceOfItsMeanOverTheWindow) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Signal signals[] = {
        {"constant", [](double) { return 300.0; }, true},
        {"zero", [](double) { return 0.0; }, true},
        {"a slow rise", [](double t) { return 300 + 2 * t; }, true},
        {"a fast rise", [](double t) { return 300 + 4 * t; }, false},
        {"a wave", [](double t) { return 300 + 1.6 * std::sin(7 * t); }, false},
        {"an approach", [](double t) { return 300 + 100 * std::exp(-t); }, true},
        {"dies out", [](double t) { return 5 * std::exp(-2 * t); }, true},
        {"dies out slowly", [](double t) { return 5 * std::exp(-0.2 * t); }, false},
        {"negative", [](double t) { return -300 - 4 * t; }, false},
        {"a NaN before", [=](double t) { return t < 5 ? nan : 300.0; }, true},
        {"a NaN within", [=](double t) { return t < 9.5 ? nan : 300.0; }, false},
        {"infinite", [](double) { return std::numeric_limits<double>::infinity(); }, false},
    };
    for (const Signal& signal : signals)
        for (const int steps : {1000, 200000})
            for (const double kept : {0.0, 1.0}) {
                SteadyRows rows({"a [K]"}, kept);
                for (int k = 0; k <= steps; ++k) {
                    const double time = 10.0 * k / steps;
                    rows.add(time, std::array{signal.value(time)});
                }
                EXPECT_EQ(rows.isSteady(1, 0.01), signal.isSteady) << signal.what << ", " << steps << " steps";
                EXPECT_EQ(rows.trends(1)->front().isSteady(0.01), signal.isSteady) << signal.what;
                SteadyRows taken({"a [K]"}, kept);
                EXPECT_TRUE(taken.take(rows.text()));
                EXPECT_EQ(taken.text(), rows.text());
            }
}

TEST(steady, comparesSmallValuesWithTheLargestOfTheirUnit) {
    SteadyRows rows({"a:u [m/s]", "b:u [m/s]", "b:c0"}, 0);
    for (int k = 0; k < 200; ++k) rows.add(k, std::array{20.0, 1e-7 * std::sin(k), 1e-7 * std::sin(k)});
    const auto trends = rows.trends(100);
    ASSERT_TRUE(trends);
    EXPECT_LT((*trends)[1].change, 1e-6) << "rounding beside a velocity of 20 m/s";
    EXPECT_GT((*trends)[2].change, 1) << "nothing else has this unit";
}

TEST(steady, isNotKnownBeforeTheRowsFillTheWindow) {
    SteadyRows rows({"a"}, 0);
    for (int k = 0; k < SteadyRows::fewestRows - 1; ++k) rows.add(k, std::array{1.0});
    EXPECT_FALSE(rows.isSteady(10, 0.1)) << "too few rows";
    rows.add(99, std::array{1.0});
    EXPECT_TRUE(rows.isSteady(10, 0.1));
    EXPECT_FALSE(rows.isSteady(100, 0.1)) << "99 s of rows";
    EXPECT_EQ(rows.span(), 99);
    const std::string text = rows.text();
    for (const std::string& other : {std::string(), text.substr(2), text.substr(0, text.size() - 1), text + "1 ",
                                     "1 1 7fffffff 1 " + text.substr(8), std::string("x ")})
        EXPECT_FALSE(rows.take(other)) << other;
    EXPECT_FALSE(SteadyRows({"a", "b"}, 0).take(text));
    EXPECT_EQ(rows.text(), text);
}

} // namespace
} // namespace norvane
