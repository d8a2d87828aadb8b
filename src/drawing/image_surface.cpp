#include "drawing/image_surface.h"

#include "drawing/drawable_text.h"
#include "drawing/picture_file.h"
#include "platform/letter_case.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <string_view>

// Called by the leak detection of a program that is built with it: fonts that Cairo has looked up stay in memory for
// good, in tables whose pointers the detection can't follow.
extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }

extern "C" const char* __lsan_default_options();

extern "C" const char* __lsan_default_options() { return "print_suppressions=0"; }

namespace norvane {

namespace {

constexpr double pixelsPerPoint = 96.0 / 72.0;
constexpr double farthest = 1e6; // pixels; Cairo's own coordinates end not far beyond

int pixelCount(float length) {
    const bool isNumber = length >= 1;
    return isNumber ? static_cast<int>(std::min(std::round(length), float{largestPicture})) : 1;
}

void setColor(cairo_t* context, Color color) {
    cairo_set_source_rgb(context, color.red / 255.0, color.green / 255.0, color.blue / 255.0);
}

void paintBackground(Picture& picture) {
    picture.texts.clear();
    setColor(picture.context.get(), Surface::background);
    cairo_paint(picture.context.get());
}

cairo_surface_t* createTarget(Picture& picture) {
    const double width = picture.width;
    const double height = picture.height;
    if (!picture.page) return cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height);
    if (*picture.page == PictureFormat::pdf)
        return cairo_pdf_surface_create_for_stream(appendBytes, &picture.pageBytes, width / pixelsPerPoint,
                                                   height / pixelsPerPoint);
    cairo_surface_t* target = cairo_svg_surface_create_for_stream(appendBytes, &picture.pageBytes, width, height);
    cairo_svg_surface_set_document_unit(target, CAIRO_SVG_UNIT_PX);
    return target;
}

/// Starts anew with an empty picture. What was drawn on a page goes with it, and does not linger below the background.
void startPicture(Picture& picture) {
    picture.context.reset();
    picture.target.reset();
    picture.pageBytes.clear(); // after the target, which may write its end
    picture.target.reset(createTarget(picture));
    picture.context.reset(cairo_create(picture.target.get()));
    cairo_t* context = picture.context.get();
    if (picture.page == PictureFormat::pdf) cairo_scale(context, 1 / pixelsPerPoint, 1 / pixelsPerPoint);
    cairo_set_antialias(context, CAIRO_ANTIALIAS_NONE);
    cairo_set_line_cap(context, CAIRO_LINE_CAP_SQUARE); // a line takes the pixels of both ends
    paintBackground(picture);
}

void sizePicture(Picture& picture, const Surface& surface) {
    const int width = pixelCount(surface.scaleWidth);
    const int height = pixelCount(surface.scaleHeight);
    if (width == picture.width && height == picture.height) return;
    picture.width = width;
    picture.height = height;
    startPicture(picture);
}

void clearPicture(Picture& picture, Surface& surface) {
    if (picture.page)
        startPicture(picture);
    else
        paintBackground(picture);
    surface.currentX = 0;
    surface.currentY = 0;
}

/// The pixel that a coordinate names.
double pixelOf(float coordinate) { return std::floor(std::clamp<double>(coordinate, -farthest, farthest) + 0.5); }

/// Whole pixels along a row or column.
struct PixelSpan {
    double first = 0;
    double length = 0;
};

PixelSpan spanBetween(float a, float b) {
    const double first = pixelOf(std::min(a, b));
    return {first, pixelOf(std::max(a, b)) + 1 - first};
}

/// The width of a line whose pixels are `pixel`.
PixelSpan spanAcross(double pixel, int lineWidth) {
    const int before = lineWidth / 2;
    return {pixel - before, double(lineWidth)};
}

/// Straight into the memory of an image: a plot may fill a million boxes, and Cairo's own way takes many times as long.
void fillPixels(const Picture& image, Color color, PixelSpan x, PixelSpan y) {
    cairo_surface_t* target = image.target.get();
    cairo_surface_flush(target);
    unsigned char* bytes = cairo_image_surface_get_data(target);
    if (bytes == nullptr) return; // no memory for an image of this size
    const auto inside = [](double place, int size) { return static_cast<int>(std::clamp<double>(place, 0, size)); };
    const int left = inside(x.first, image.width);
    const int right = inside(x.first + x.length, image.width);
    const int top = inside(y.first, image.height);
    const int bottom = inside(y.first + y.length, image.height);
    const std::uint32_t pixel = std::uint32_t{color.red} << 16 | std::uint32_t{color.green} << 8 | color.blue;
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(target);
    for (int row = top; row < bottom; ++row) {
        auto* pixels = static_cast<std::uint32_t*>(static_cast<void*>(bytes + row * stride));
        std::fill(pixels + left, pixels + right, pixel);
    }
    cairo_surface_mark_dirty_rectangle(target, left, top, right - left, bottom - top);
}

void fillBox(const Picture& picture, const Surface& surface, PixelSpan x, PixelSpan y) {
    if (!picture.page) return fillPixels(picture, surface.foreColor, x, y);
    cairo_t* context = picture.context.get();
    setColor(context, surface.foreColor);
    cairo_rectangle(context, x.first, y.first, x.length, y.length);
    cairo_fill(context);
}

/// A line that is neither level nor upright.
void strokeLine(const Picture& picture, Color color, int lineWidth, float x1, float y1, float x2, float y2) {
    cairo_t* context = picture.context.get();
    const double middle = lineWidth % 2 == 0 ? 0 : 0.5; // of the pixels that the line takes
    setColor(context, color);
    cairo_set_line_width(context, lineWidth);
    cairo_move_to(context, pixelOf(x1) + middle, pixelOf(y1) + middle);
    cairo_line_to(context, pixelOf(x2) + middle, pixelOf(y2) + middle);
    cairo_stroke(context);
}

void drawLine(const Picture& picture, const Surface& surface, float x1, float y1, float x2, float y2) {
    const int lineWidth = std::clamp(surface.drawWidth, 1, 100);
    if (pixelOf(x1) == pixelOf(x2))
        fillBox(picture, surface, spanAcross(pixelOf(x1), lineWidth), spanBetween(y1, y2));
    else if (pixelOf(y1) == pixelOf(y2))
        fillBox(picture, surface, spanBetween(x1, x2), spanAcross(pixelOf(y1), lineWidth));
    else
        strokeLine(picture, surface.foreColor, lineWidth, x1, y1, x2, y2);
}

bool areNumbers(float x1, float y1, float x2, float y2) {
    return !std::isnan(x1) && !std::isnan(y1) && !std::isnan(x2) && !std::isnan(y2);
}

/// Whether a text has to be drawn. A plot repeats its texts over the old picture, and smoothed letters drawn over
/// themselves would grow bolder each time.
bool isNewText(Picture& picture, const Surface& surface, const std::string& text) {
    constexpr std::size_t mostTexts = 100;
    const DrawnText drawn{
        text, surface.currentX, surface.currentY, surface.fontSize, surface.fontBold, surface.foreColor};
    if (std::find(picture.texts.begin(), picture.texts.end(), drawn) != picture.texts.end()) return false;
    if (picture.texts.size() >= mostTexts) picture.texts.clear();
    picture.texts.push_back(drawn);
    return true;
}

/// Cairo looks for the family among the fonts of the system, takes another where it is missing, and draws with strokes
/// of its own where there are no fonts at all.
void printText(Picture& picture, Surface& surface, const std::string& text) {
    cairo_t* context = picture.context.get();
    cairo_select_font_face(context, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                           surface.fontBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context, std::clamp(double(surface.fontSize), 1.0, 200.0) * pixelsPerPoint);
    cairo_font_extents_t font;
    cairo_font_extents(context, &font);
    const std::string clean = drawableText(text);
    const bool hasPlace = std::isfinite(surface.currentX) && std::isfinite(surface.currentY);
    if (hasPlace && !clean.empty() && isNewText(picture, surface, clean)) {
        setColor(context, surface.foreColor);
        cairo_move_to(context, std::clamp<double>(surface.currentX, -farthest, farthest),
                      std::clamp<double>(surface.currentY, -farthest, farthest) + font.ascent);
        cairo_show_text(context, clean.c_str());
        cairo_new_path(context);
    }
    surface.currentX = 0;
    surface.currentY += static_cast<float>(font.height);
}

std::shared_ptr<Picture> connect(Surface& surface, std::optional<PictureFormat> page) {
    auto picture = std::make_shared<Picture>();
    picture->page = page;
    sizePicture(*picture, surface);
    surface.resized = [picture, &surface] { sizePicture(*picture, surface); };
    surface.cls = [picture, &surface] { clearPicture(*picture, surface); };
    surface.print = [picture, &surface](const std::string& text) { printText(*picture, surface, text); };
    surface.line = [picture, &surface](float x1, float y1, float x2, float y2) {
        if (areNumbers(x1, y1, x2, y2)) drawLine(*picture, surface, x1, y1, x2, y2);
    };
    surface.box = [picture, &surface](float x1, float y1, float x2, float y2) {
        if (areNumbers(x1, y1, x2, y2)) fillBox(*picture, surface, spanBetween(x1, x2), spanBetween(y1, y2));
    };
    // The image is always kept, so there is nothing to switch.
    surface.setAutoRedraw = [](bool) {};
    surface.savePicture = [picture](const std::string& path) {
        return writePicture(*picture, path, picture->page.value_or(PictureFormat::bmp)).reason;
    };
    return picture;
}

std::string endPage(Picture& page) {
    cairo_surface_finish(page.target.get());
    std::string bytes = page.pageBytes;
    startPicture(page);
    return bytes;
}

} // namespace

std::optional<PictureFormat> pictureFormat(const std::string& fileName) {
    constexpr std::string_view endings[] = {".bmp", ".png", ".svg", ".pdf"};
    for (int k = 0; k < 4; ++k) {
        const std::string_view ending = endings[k];
        if (fileName.size() > ending.size() && endsLike(fileName, ending)) return static_cast<PictureFormat>(k);
    }
    return {};
}

std::shared_ptr<Picture> drawOnImage(Surface& surface) { return connect(surface, {}); }

std::shared_ptr<Picture> drawOnPage(Surface& surface, PictureFormat format) { return connect(surface, format); }

FileResult writePicture(Picture& picture, const std::string& path, PictureFormat format) {
    const bool wantsPage = format == PictureFormat::svg || format == PictureFormat::pdf;
    if (wantsPage ? picture.page != format : picture.page.has_value())
        return {EINVAL, "the picture was not drawn for this kind of file"};
    const cairo_status_t status = cairo_status(picture.context.get());
    if (status != CAIRO_STATUS_SUCCESS) return {EIO, cairo_status_to_string(status)};
    const std::string bytes = wantsPage                      ? endPage(picture)
                              : format == PictureFormat::png ? pngBytes(picture)
                                                             : bitmapBytes(picture);
    if (bytes.empty()) return {ENOMEM, cairo_status_to_string(CAIRO_STATUS_NO_MEMORY)};
    return replaceFile(path, bytes);
}

Color pixelAt(const Picture& image, int x, int y) {
    cairo_surface_flush(image.target.get());
    const unsigned char* bytes = cairo_image_surface_get_data(image.target.get());
    if (bytes == nullptr) return Surface::background; // no memory for an image of this size
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(image.target.get());
    std::uint32_t pixel = 0;
    std::copy_n(bytes + y * stride + x * 4, 4, reinterpret_cast<unsigned char*>(&pixel));
    return {static_cast<std::uint8_t>(pixel >> 16 & 0xff), static_cast<std::uint8_t>(pixel >> 8 & 0xff),
            static_cast<std::uint8_t>(pixel & 0xff)};
}

} // namespace norvane
