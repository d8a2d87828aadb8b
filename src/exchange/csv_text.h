#pragma once
// Tables as comma-separated values after RFC 4180: what spreadsheets and every language's reader take.

#include <string>
#include <string_view>

namespace norvane {

inline constexpr std::string_view csvLineEnd = "\r\n";

/// A field as it stands in a line: in quotes where it holds a comma, a quote or a line end.
std::string csvField(std::string_view text);

/// Adds a number with at most 9 significant digits, from which a single comes back to the bit. Values that are not
/// finite are "nan", "inf" and "-inf". The same in every locale.
void appendNineDigits(std::string& text, double value);

} // namespace norvane
