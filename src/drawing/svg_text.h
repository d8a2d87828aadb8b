#pragma once
// SVG files as text. Written here and not by Cairo, which turns letters into shapes: a text stays a text that can be
// searched, edited and read back.

#include "platform/canvas.h"

#include <functional>
#include <string>

namespace norvane {

constexpr const char* figureFont = "DejaVu Sans";

/// Connects the operations of a canvas, all but textWidth, with an SVG picture of its size. `pngOf` gives the PNG file
/// of a raster. What is given back makes the whole file of what was drawn so far.
std::function<std::string()> connectSvg(Canvas& canvas, std::function<std::string(const PixelRaster&)> pngOf);

} // namespace norvane
