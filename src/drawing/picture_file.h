#pragma once
// Files of pictures.

#include "drawing/image_surface.h"

#include <string>

namespace norvane {

/// The bytes of an image as a 24-bit bitmap file, the common kind without compression.
std::string bitmapBytes(const Picture& image);

/// The bytes of an image as a PNG file; empty when Cairo can't make them.
std::string pngBytes(const Picture& image);

/// Takes the bytes that Cairo writes into the std::string that `text` points to.
cairo_status_t appendBytes(void* text, const unsigned char* bytes, unsigned int length);

} // namespace norvane
