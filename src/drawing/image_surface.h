#pragma once
// Pictures of a plot: the operations of the drawing surface on an image in memory, or on the page of a vector file.
//
// Coordinate k is pixel k of its row or column, and what lies between is rounded. A box fills the pixels of its corners
// and all between, so the seam between two cells of a map is one pixel wide. A line takes the pixels of its ends and
// all between; with a width of 2 also those before them, so that the mark of a wall covers the seam and the edge of its
// own cell: the next cell, drawn later, leaves it whole. Nothing but text is smoothed: the image of a plot is the same
// everywhere but for its glyphs.

#include "platform/files.h"
#include "platform/surface.h"

#include <cairo.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace norvane {

enum class PictureFormat { bmp, png, svg, pdf };

/// The format that the ending of a file name means, whatever its case; none for any other ending.
std::optional<PictureFormat> pictureFormat(const std::string& fileName);

struct DestroyCairo {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }

    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

/// A text as a picture shows it.
struct DrawnText {
    std::string text;
    float x = 0;
    float y = 0;
    float size = 0;
    bool bold = false;
    Color color;
    bool operator==(const DrawnText&) const = default;
};

/// What a surface record draws on.
struct Picture {
    std::optional<PictureFormat> page; ///< svg or pdf: a page of such a file; none: an image
    int width = 0;                     ///< pixels
    int height = 0;                    ///< pixels
    std::string pageBytes;             ///< of the file that the page becomes
    std::vector<DrawnText> texts;      ///< since the picture was last cleared
    std::unique_ptr<cairo_surface_t, DestroyCairo> target;
    std::unique_ptr<cairo_t, DestroyCairo> context;
};

/// The largest picture, each way; a larger surface is cut off.
constexpr int largestPicture = 8192;

/// Connects the operations of a record with an image of its size, which they keep alive. The record must stay where it
/// is. Its savePicture writes a 24-bit bitmap.
std::shared_ptr<Picture> drawOnImage(Surface& surface);

/// Makes a record draw on an image as long as this lives; then the record is what it was before.
class DrawnSurface {
public:
    explicit DrawnSurface(Surface& surface) : surface_(surface), before_(surface), image_(drawOnImage(surface)) {}

    ~DrawnSurface() { surface_ = before_; }

    DrawnSurface(const DrawnSurface&) = delete;
    DrawnSurface& operator=(const DrawnSurface&) = delete;

    Picture& image() const { return *image_; }

private:
    Surface& surface_;
    const Surface before_;
    const std::shared_ptr<Picture> image_;
};

/// As drawOnImage, with the page of an SVG or PDF file; a pixel is 1/96 inch there. Its savePicture writes that file.
std::shared_ptr<Picture> drawOnPage(Surface& surface, PictureFormat format);

/// Writes the picture as a file, whole or not at all: an image as bmp or png, a page as what it is. Afterwards a page
/// is empty. Faults: those of files; a format that this picture can't take.
FileResult writePicture(Picture& picture, const std::string& path, PictureFormat format);

/// The colour of a pixel [0..width-1][0..height-1] of an image.
Color pixelAt(const Picture& image, int x, int y);

} // namespace norvane
