#pragma once
// The drawing surface of a plot, as a record of the operations that a plot needs.

#include <cstdint>
#include <functional>
#include <string>

namespace norvane {

struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    bool operator==(const Color&) const = default;
};

/// Coordinates are pixels from the top left corner, y downward. The plot sets the settings and calls the operations; a
/// front end fills the operations in. An operation that is not filled in draws nothing.
struct Surface {
    static constexpr Color background{0, 192, 0};

    // Settings that the following operations use.
    float scaleWidth = 568;  ///< inner size
    float scaleHeight = 690; ///< inner size
    Color foreColor;
    int drawWidth = 1;  ///< thickness of lines
    float fontSize = 8; ///< points
    bool fontBold = false;
    float currentX = 0; ///< where the next text begins, its top left corner
    float currentY = 0;

    /// Gives the image the size scaleWidth by scaleHeight; called by the plot when it has set them anew.
    std::function<void()> resized = [] {};
    /// Fills the surface with its background.
    std::function<void()> cls = [] {};
    /// Draws a text at currentX, currentY in foreColor.
    std::function<void(const std::string& text)> print = [](const std::string&) {};
    /// Draws a straight line of drawWidth in foreColor.
    std::function<void(float x1, float y1, float x2, float y2)> line = [](float, float, float, float) {};
    /// Fills the box with these opposite corners with foreColor.
    std::function<void(float x1, float y1, float x2, float y2)> box = [](float, float, float, float) {};
    /// On: drawing goes to the image that the surface keeps, which savePicture writes.
    std::function<void(bool on)> setAutoRedraw = [](bool) {};
    /// Writes the image as a bitmap file, whole or not at all; gives the reason of a failure, empty when it is written.
    std::function<std::string(const std::string& path)> savePicture = [](const std::string&) { return std::string(); };
};

} // namespace norvane
