#pragma once

#include <string>

namespace norvane {

/// A text as a JSON string, with its quotes. Bytes that are no UTF-8 are written as \xNN.
std::string jsonString(const std::string& text);

/// A number of JSON; null for what is not finite.
std::string jsonNumber(double value);

} // namespace norvane
