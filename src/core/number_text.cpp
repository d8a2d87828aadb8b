#include "core/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace norvane {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Writes the general text of a finite magnitude other than 0 to `to` and gives its end. `digits` is the number of
/// significant digits; whether the number has an exponent is settled after rounding to them.
template <class T> char* writeMagnitude(char* to, T magnitude, int digits) {
    char scientific[40];
    const auto written =
        std::to_chars(scientific, scientific + sizeof scientific, magnitude, std::chars_format::scientific, digits - 1);
    const char* mark = written.ptr;
    while (*mark != 'e') --mark;
    int exponent = 0;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), written.ptr, exponent);

    const char first = scientific[0];
    const char* fraction = scientific + 2; // behind the first digit and the point
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

template <class T> NumberText magnitudeText(T value, int digits) {
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

template <class T> std::string signedText(T value, int digits) {
    const NumberText number = magnitudeText(value, digits);
    std::string text = number.negative ? "-" : "";
    return text.append(number.text, number.length);
}

template <class T> void appendInFrame(std::string& text, T value, int digits) {
    const NumberText number = magnitudeText(value, digits);
    text += number.negative ? '-' : ' ';
    text.append(number.text, number.length);
    text += ' ';
}

constexpr int singleDigits = 7;
constexpr int doubleDigits = 15;

/// Reads the digits of text[from..] and gives the position behind them.
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

template <class Integer> Integer limited(double value) {
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
