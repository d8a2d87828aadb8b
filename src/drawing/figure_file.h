#pragma once
// Pictures of figures: a canvas on an image, a page of a PDF file, or an SVG file.

#include "drawing/image_surface.h"
#include "platform/canvas.h"
#include "platform/files.h"

#include <functional>
#include <memory>
#include <string>

namespace norvane {

/// What a canvas draws on.
struct FigureFile {
    PictureFormat format = PictureFormat::png;
    std::shared_ptr<Picture> picture;     ///< none for SVG; its pixels are those of pixelAt
    std::function<std::string()> svgText; ///< what was drawn, as a whole SVG file
};

/// Connects the lengths of texts, by which a figure is laid out, before its size is known.
void connectTextWidth(Canvas& canvas);

/// Connects the operations of a canvas with a white picture of its size, at most largestPicture pixels each way, which
/// they keep alive. Lengths of text are those of the font DejaVu Sans, in which Cairo draws; an SVG file names the font
/// and holds its texts as such, to be searched and edited.
FigureFile connectFigure(Canvas& canvas, PictureFormat format);

/// Writes the figure as a file, whole or not at all. Once for a PDF file. Faults: those of files, of memory, of Cairo.
FileResult writeFigure(const FigureFile& figure, const std::string& path);

} // namespace norvane
