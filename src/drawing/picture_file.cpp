#include "drawing/picture_file.h"

#include <cstdint>
#include <exception>

namespace norvane {

namespace {

void appendNumber(std::string& bytes, std::uint32_t number, int length) {
    for (int k = 0; k < length; ++k) bytes += static_cast<char>(number >> 8 * k & 0xff);
}

} // namespace

std::string bitmapBytes(const Picture& image) {
    constexpr std::uint32_t headerLength = 14 + 40;
    constexpr std::uint32_t dotsPerMetre = 3780; // 96 to an inch
    const auto width = static_cast<std::uint32_t>(image.width);
    const auto height = static_cast<std::uint32_t>(image.height);
    const std::uint32_t rowLength = (width * 3 + 3) / 4 * 4;
    const std::uint32_t pixelsLength = rowLength * height;

    std::string bytes = "BM";
    bytes.reserve(headerLength + pixelsLength);
    for (const std::uint32_t number : {headerLength + pixelsLength, 0u, headerLength, 40u, width, height})
        appendNumber(bytes, number, 4);
    appendNumber(bytes, 1, 2);  // planes
    appendNumber(bytes, 24, 2); // bits of a pixel
    for (const std::uint32_t number : {0u, pixelsLength, dotsPerMetre, dotsPerMetre, 0u, 0u})
        appendNumber(bytes, number, 4);
    for (int y = image.height - 1; y >= 0; --y) { // the bottom row comes first
        for (int x = 0; x < image.width; ++x) {
            const Color color = pixelAt(image, x, y);
            for (const std::uint8_t level : {color.blue, color.green, color.red}) bytes += static_cast<char>(level);
        }
        bytes.append(rowLength - width * 3, '\0');
    }
    return bytes;
}

std::string pngBytes(const Picture& image) {
    std::string bytes;
    const bool made =
        cairo_surface_write_to_png_stream(image.target.get(), appendBytes, &bytes) == CAIRO_STATUS_SUCCESS;
    return made ? bytes : std::string();
}

cairo_status_t appendBytes(void* text, const unsigned char* bytes, unsigned int length) try {
    static_cast<std::string*>(text)->append(bytes, bytes + length);
    return CAIRO_STATUS_SUCCESS;

} catch (const std::exception&) { // no memory; nothing may pass through Cairo

    return CAIRO_STATUS_NO_MEMORY;
}

} // namespace norvane
