// Numbers as text: what the files show, and what is read back from a table.

#include "core/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace norvane {
namespace {

std::string framed(float value) {
    std::string text;
    appendFramed(text, value);
    return text;
}

TEST(numberText, singlesHaveSevenDigitsAndLeaveTheDecimalFormAtItsEnds) {
    EXPECT_EQ(generalText(0.5f), "0.5");
    EXPECT_EQ(generalText(-0.0f), "0");
    EXPECT_EQ(generalText(101300.0f), "101300");
    EXPECT_EQ(generalText(-298.15f), "-298.15");
    EXPECT_EQ(generalText(1.0f / 3), "0.3333333");
    EXPECT_EQ(generalText(9999999.0f), "9999999");
    EXPECT_EQ(generalText(1e7f), "1E+07");
    EXPECT_EQ(generalText(12345678.0f), "1.234568E+07");
    EXPECT_EQ(generalText(0.00001f), "0.00001");
    EXPECT_EQ(generalText(9.5e-6f), "9.5E-06");
    EXPECT_EQ(generalText(std::numeric_limits<float>::denorm_min()), "1.401298E-45");
}

TEST(numberText, theFormIsSettledAfterRounding) {
    EXPECT_EQ(generalText(9999999.6), "9999999.6");
    EXPECT_EQ(generalText(9.9999999e-6f), "0.00001");
    EXPECT_EQ(generalText(999999999999999.9), "1E+15");
    EXPECT_EQ(generalText(24.999999999999996), "25");
}

/// Leaves the letter e all over the stack below the caller.
[[gnu::noinline]] void litterStack() {
    volatile char litter[4096];
    for (volatile char& c : litter) c = 'e';
}

TEST(numberText, doesNotDependOnWhatLiesInMemory) {
    litterStack();
    EXPECT_EQ(generalText(1.562615e-20f), "1.562615E-20");
    litterStack();
    EXPECT_EQ(generalText(1.25e-30), "1.25E-30");
}

TEST(numberText, framesPutASignOrABlankInFront) {
    EXPECT_EQ(framed(1.5f), " 1.5 ");
    EXPECT_EQ(framed(-1.5f), "-1.5 ");
    EXPECT_EQ(framed(std::numeric_limits<float>::infinity()), " inf ");
    EXPECT_EQ(framed(-std::numeric_limits<float>::infinity()), "-inf ");
    EXPECT_EQ(framed(std::nanf("")), " nan ");
    std::string text;
    appendFramed(text, std::int64_t{-12});
    appendFramed(text, std::int64_t{0});
    EXPECT_EQ(text, "-12  0 ");
}

TEST(numberText, aPrefixEndsWhereTheNumberEnds) {
    EXPECT_EQ(numericPrefix("  300 PP 2E5"), 300);
    EXPECT_EQ(numericPrefix("2E5"), 2e5);
    EXPECT_EQ(numericPrefix("-9.81;"), -9.81);
    EXPECT_EQ(numericPrefix(".5.7"), 0.5);
    EXPECT_EQ(numericPrefix("+3."), 3);
    EXPECT_EQ(numericPrefix("1E"), 1);
    EXPECT_EQ(numericPrefix("1E+"), 1);
    EXPECT_EQ(numericPrefix("1 000"), 1);
    for (const char* text : {"", " ", "-", ".", "+.", "E5", "x1", "\t1", "nan", "inf", "- 1"})
        EXPECT_EQ(numericPrefix(text), 0) << '"' << text << '"';
    EXPECT_EQ(numericPrefix("1E999"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(numericPrefix("-1E999999999999999999999"), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(numericPrefix("1E-999999999999999999999"), 0);
    EXPECT_EQ(numericPrefix("0E999"), 0);
    EXPECT_EQ(numericPrefix(std::string(400, '9') + "E-400"), 1);
}

TEST(numberText, wholeNumbersRoundHalvesToEvenAndStopAtTheirLimits) {
    EXPECT_EQ(toInt16(2.5), 2);
    EXPECT_EQ(toInt16(3.5), 4);
    EXPECT_EQ(toInt16(-2.5), -2);
    EXPECT_EQ(toInt16(40000), 32767);
    EXPECT_EQ(toInt16(-1e300), -32768);
    EXPECT_EQ(toInt32(1e12), 2147483647);
    EXPECT_EQ(toInt32(std::nan("")), 0);
}

} // namespace
} // namespace norvane
