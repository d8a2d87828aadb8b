#pragma once
// Numbers as text, both ways: the one place that settles digits, exponents and prefixes.

#include <cstdint>
#include <string>
#include <string_view>

namespace norvane {

/// The general text of a number: at most 7 significant digits of a single (15 of a double), no trailing zeros, decimal
/// form where the rounded number is from 1e-5 up to below 1e7 (1e15), otherwise a form such as 1.234568E+07. Zero of
/// either sign is "0"; values that are not finite are "nan", "inf", "-inf".
std::string generalText(float value);
std::string generalText(double value);

/// Adds a number in the frame of the system's text files: a blank or the minus sign, the general text, one blank.
void appendFramed(std::string& text, float value);
void appendFramed(std::string& text, double value);
void appendFramed(std::string& text, std::int64_t value);

/// The number at the head of a text: blanks, an optional sign, digits with at most one decimal point, and an optional
/// exponent with the letter E in either case. Reading stops at the first character that can't go on with the number.
/// Gives 0 where no number stands at the head, infinity where it is too large.
double numericPrefix(std::string_view text);

/// As numericPrefix; `length` is the number of characters that were read, blanks included, 0 where there was no number.
double numericPrefix(std::string_view text, std::size_t& length);

/// The nearest whole number, halves to the even one, limited to the range of the type. A NaN gives 0.
std::int16_t toInt16(double value);
std::int32_t toInt32(double value);

} // namespace norvane
