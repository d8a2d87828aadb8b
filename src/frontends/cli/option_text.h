#pragma once
// The texts of options as values, and what is said of one that is none.

#include <optional>
#include <string>
#include <vector>

namespace norvane {

/// Prints what is wrong with an option, and gives false for the caller to pass on.
bool fault(const std::string& option, const std::string& given, const std::string& allowed);

std::optional<double> finiteNumber(const std::string& text);

/// A whole number of the range; none where the text is something else.
std::optional<int> wholeIn(const std::string& text, int low, int high);

/// The parts of a text between separators; one, empty, of an empty text.
std::vector<std::string> parts(const std::string& text, char separator);

/// "1 to 3".
std::string rangeText(int low, int high);

struct PixelSize {
    int width = 0;
    int height = 0;
};

/// "1200x900"; none, after a message, where it is no size of a picture.
std::optional<PixelSize> pictureSize(const std::string& text);

} // namespace norvane
