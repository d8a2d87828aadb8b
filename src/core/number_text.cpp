#include "core/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace norvane {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// The significant digits of a magnitude, without a point, and the decimal exponent of the first of them.
struct Digits {
    char text[40];
    int exponent = 0;
};

/// The digits of any magnitude but 0, rounded to `count` of them by its exact value, halves to even.
template <class T>
void roundToDigits(T magnitude, int count, Digits& digits) {
    const auto written = std::to_chars(digits.text, digits.text + sizeof digits.text, magnitude,
                                       std::chars_format::scientific, count - 1);
    const char* mark = written.ptr - 1; // not written.ptr: what lies there may happen to be an 'e'
    while (*mark != 'e') --mark;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), written.ptr, digits.exponent);
    digits.text[1] = digits.text[0]; // over the point
    std::copy(digits.text + 1, digits.text + 1 + count, digits.text);
}

constexpr int singleDigits = 7;
constexpr int doubleDigits = 15;

constexpr double exactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

double timesPowerOfTen(double value, int power) {
    return power < 0 ? value / exactPowers[-power] : value * exactPowers[power];
}

/// The same for nearly all singles, several times faster: one product with a power of ten that a double holds exactly
/// is off by 1e-9 at most, so that it rounds as the exact value does unless its fraction is that close to a half.
bool roundQuickly(float magnitude, Digits& digits) {
    if (!(magnitude > 1e-15f && magnitude < 1e27f)) return false;
    int exponent = std::ilogb(magnitude) * 1233 >> 12; // log10(2) is 1233/4096; one too low at times
    double scaled = timesPowerOfTen(magnitude, singleDigits - 1 - exponent);
    if (scaled >= 1e7) scaled = timesPowerOfTen(magnitude, singleDigits - 1 - ++exponent);
    auto whole = static_cast<std::uint32_t>(scaled);
    const double fraction = scaled - whole;
    if (scaled < 1e6 || std::abs(fraction - 0.5) < 1e-6) return false;
    if (fraction > 0.5) ++whole;
    if (whole == 10'000'000) {
        whole = 1'000'000;
        ++exponent;
    }
    for (int k = singleDigits - 1; k >= 0; --k, whole /= 10) digits.text[k] = static_cast<char>('0' + whole % 10);
    digits.exponent = exponent;
    return true;
}

void findDigits(float magnitude, Digits& digits) {
    if (!roundQuickly(magnitude, digits)) roundToDigits(magnitude, singleDigits, digits);
}

void findDigits(double magnitude, Digits& digits) { roundToDigits(magnitude, doubleDigits, digits); }

/// Writes the general text of a finite magnitude other than 0 to `to` and gives its end. `digits` is the number of
/// significant digits; whether the number has an exponent is settled after rounding to them.
template <class T>
char* writeMagnitude(char* to, T magnitude, int digits) {
    Digits found;
    findDigits(magnitude, found);
    const int exponent = found.exponent;
    const char first = found.text[0];
    const char* fraction = found.text + 1;
    int fractionDigits = digits - 1;
    while (fractionDigits > 0 && fraction[fractionDigits - 1] == '0') --fractionDigits;

    const bool decimal = exponent >= -5 && exponent < digits;
    if (!decimal) {
        *to++ = first;
        if (fractionDigits > 0) *to++ = '.';
        for (int k = 0; k < fractionDigits; ++k) *to++ = fraction[k];
        *to++ = 'E';
        *to++ = exponent < 0 ? '-' : '+';
        const int size = exponent < 0 ? -exponent : exponent;
        if (size < 10) *to++ = '0';
        return std::to_chars(to, to + 4, size).ptr;
    }
    if (exponent < 0) {
        *to++ = '0';
        *to++ = '.';
        for (int k = -1; k > exponent; --k) *to++ = '0';
        *to++ = first;
        for (int k = 0; k < fractionDigits; ++k) *to++ = fraction[k];
        return to;
    }
    *to++ = first;
    for (int k = 0; k < exponent; ++k) *to++ = k < fractionDigits ? fraction[k] : '0';
    if (fractionDigits > exponent) {
        *to++ = '.';
        for (int k = exponent; k < fractionDigits; ++k) *to++ = fraction[k];
    }
    return to;
}

struct NumberText {
    char text[40];
    std::size_t length;
    bool negative; ///< the sign stands apart from the text
};

template <class T>
NumberText magnitudeText(T value, int digits) {
    NumberText result{{}, 0, false};
    const char* word = std::isnan(value) ? "nan" : std::isinf(value) ? "inf" : value == 0 ? "0" : nullptr;
    result.negative = value < 0;
    char* to = result.text;
    if (word != nullptr) {
        while (*word != 0) *to++ = *word++;
    } else {
        to = writeMagnitude(to, result.negative ? -value : value, digits);
    }
    result.length = static_cast<std::size_t>(to - result.text);
    return result;
}

template <class T>
std::string signedText(T value, int digits) {
    const NumberText number = magnitudeText(value, digits);
    std::string text = number.negative ? "-" : "";
    return text.append(number.text, number.length);
}

template <class T>
void appendInFrame(std::string& text, T value, int digits) {
    const NumberText number = magnitudeText(value, digits);
    text += number.negative ? '-' : ' ';
    text.append(number.text, number.length);
    text += ' ';
}

/// Reads the digits of text[from..] and gives the position after them.
std::size_t skipDigits(std::string_view text, std::size_t from) {
    while (from < text.size() && isDigit(text[from])) ++from;
    return from;
}

/// The value of a well-formed decimal number that from_chars found out of range: infinity or 0.
double outOfRangeValue(std::string_view mantissa, std::string_view exponentDigits, bool exponentNegative) {
    std::int64_t place = 0; // decimal exponent of the first digit that is not 0
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t leading = mantissa.find_first_of("123456789");
    if (leading == std::string_view::npos) return 0;
    place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(leading);
    std::int64_t exponent = 0;
    for (char digit : exponentDigits)
        if (exponent < 1'000'000'000'000) exponent = exponent * 10 + (digit - '0');
    place += exponentNegative ? -exponent : exponent;
    return place > 0 ? std::numeric_limits<double>::infinity() : 0;
}

} // namespace

std::string generalText(float value) { return signedText(value, singleDigits); }

std::string generalText(double value) { return signedText(value, doubleDigits); }

void appendFramed(std::string& text, float value) { appendInFrame(text, value, singleDigits); }

void appendFramed(std::string& text, double value) { appendInFrame(text, value, doubleDigits); }

void appendFramed(std::string& text, std::int64_t value) {
    char digits[24];
    const auto written = std::to_chars(digits, digits + sizeof digits, value);
    if (value >= 0) text += ' ';
    text.append(digits, static_cast<std::size_t>(written.ptr - digits));
    text += ' ';
}

double numericPrefix(std::string_view text, std::size_t& length) {
    length = 0;
    std::size_t at = 0;
    while (at < text.size() && text[at] == ' ') ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;

    const std::size_t begin = at;
    at = skipDigits(text, at);
    std::size_t digits = at - begin;
    if (at < text.size() && text[at] == '.') {
        const std::size_t behind = skipDigits(text, at + 1);
        digits += behind - at - 1;
        at = behind;
    }
    if (digits == 0) return 0;
    const std::string_view mantissa = text.substr(begin, at - begin);

    std::string_view exponent;
    bool exponentNegative = false;
    if (at < text.size() && (text[at] == 'E' || text[at] == 'e')) {
        std::size_t from = at + 1;
        exponentNegative = from < text.size() && text[from] == '-';
        if (from < text.size() && (text[from] == '-' || text[from] == '+')) ++from;
        const std::size_t behind = skipDigits(text, from);
        if (behind > from) {
            exponent = text.substr(from, behind - from);
            at = behind;
        }
    }
    length = at;

    double value = 0;
    const auto read = std::from_chars(text.data() + begin, text.data() + at, value);
    if (read.ec == std::errc::result_out_of_range) value = outOfRangeValue(mantissa, exponent, exponentNegative);
    return negative ? -value : value;
}

double numericPrefix(std::string_view text) {
    std::size_t length = 0;
    return numericPrefix(text, length);
}

namespace {

template <class Integer>
Integer limited(double value) {
    if (std::isnan(value)) return 0;
    const double whole = std::nearbyint(value); // the default rounding mode: halves to even
    if (whole <= std::numeric_limits<Integer>::min()) return std::numeric_limits<Integer>::min();
    if (whole >= std::numeric_limits<Integer>::max()) return std::numeric_limits<Integer>::max();
    return static_cast<Integer>(whole);
}

} // namespace

std::int16_t toInt16(double value) { return limited<std::int16_t>(value); }

std::int32_t toInt32(double value) { return limited<std::int32_t>(value); }

} // namespace norvane
