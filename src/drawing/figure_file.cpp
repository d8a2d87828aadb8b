#include "drawing/figure_file.h"

#include "drawing/drawable_text.h"
#include "drawing/picture_file.h"
#include "drawing/svg_text.h"

#include <cairo-pdf.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>

namespace norvane {

namespace {

constexpr double pointsPerUnit = 72.0 / 96.0;
constexpr double quarterTurn = 1.5707963267948966;

void setColor(cairo_t* context, Color color) {
    cairo_set_source_rgb(context, color.red / 255.0, color.green / 255.0, color.blue / 255.0);
}

bool isPlace(Point point) { return std::isfinite(point.x) && std::isfinite(point.y); }

/// Cairo's own coordinates end not far beyond.
Point within(Point point) {
    constexpr double farthest = 1e6;
    return {std::clamp(point.x, -farthest, farthest), std::clamp(point.y, -farthest, farthest)};
}

/// Lays the points as a path. A place that is none interrupts it.
void layPath(cairo_t* context, std::span<const Point> points) {
    bool goesOn = false;
    for (const Point& point : points) {
        const Point at = within(point);
        if (!isPlace(point))
            goesOn = false;
        else if (goesOn)
            cairo_line_to(context, at.x, at.y);
        else {
            cairo_move_to(context, at.x, at.y);
            goesOn = true;
        }
    }
}

void layBox(cairo_t* context, Point low, Point high) {
    const Point a = within(low);
    const Point b = within(high);
    cairo_rectangle(context, a.x, a.y, b.x - a.x, b.y - a.y);
}

void fillBox(const Picture& picture, Point low, Point high, Color color) {
    if (!isPlace(low) || !isPlace(high)) return;
    cairo_t* context = picture.context.get();
    // A page has no pixels to end at, and readers smooth the edges: a little overlap hides the seams.
    const double overlap = picture.page ? 0.25 : 0;
    setColor(context, color);
    layBox(context, low, {high.x + overlap, high.y + overlap});
    cairo_set_antialias(context, CAIRO_ANTIALIAS_NONE);
    cairo_fill(context);
    cairo_set_antialias(context, CAIRO_ANTIALIAS_DEFAULT);
}

void stroke(cairo_t* context, std::span<const Point> points, const Pen& pen) {
    setColor(context, pen.color);
    cairo_set_line_width(context, pen.width);
    cairo_set_dash(context, pen.dashes.data(), static_cast<int>(pen.dashes.size()), 0);
    layPath(context, points);
    cairo_stroke(context);
}

void setFont(cairo_t* context, const Lettering& lettering) {
    cairo_select_font_face(context, figureFont, CAIRO_FONT_SLANT_NORMAL,
                           lettering.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context, std::clamp(lettering.size, 1.0, 200.0));
}

double lengthOf(cairo_t* context, const std::string& text, const Lettering& lettering) {
    setFont(context, lettering);
    cairo_text_extents_t extents;
    cairo_text_extents(context, drawableText(text).c_str(), &extents);
    return extents.x_advance;
}

void write(cairo_t* context, const std::string& text, Point at, const Lettering& lettering) {
    if (!isPlace(at)) return;
    const double length = lengthOf(context, text, lettering);
    const double share = lettering.anchor == TextAnchor::start ? 0 : lettering.anchor == TextAnchor::middle ? 0.5 : 1;
    cairo_save(context);
    setColor(context, lettering.color);
    cairo_translate(context, within(at).x, within(at).y);
    if (lettering.upward) cairo_rotate(context, -quarterTurn);
    cairo_move_to(context, -share * length, 0);
    cairo_show_text(context, drawableText(text).c_str());
    cairo_new_path(context);
    cairo_restore(context);
}

std::unique_ptr<cairo_surface_t, DestroyCairo> imageOf(const PixelRaster& raster) {
    std::unique_ptr<cairo_surface_t, DestroyCairo> image(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, raster.width, raster.height));
    unsigned char* bytes = cairo_image_surface_get_data(image.get());
    if (bytes == nullptr || raster.width < 1) return image;
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(image.get());
    for (int row = 0; row < raster.height; ++row) {
        auto* pixels = static_cast<std::uint32_t*>(static_cast<void*>(bytes + row * stride));
        const Color* colors = raster.pixels.data() + std::ptrdiff_t{row} * raster.width;
        for (int column = 0; column < raster.width; ++column)
            pixels[column] = std::uint32_t{colors[column].red} << 16 | std::uint32_t{colors[column].green} << 8
                             | colors[column].blue;
    }
    cairo_surface_mark_dirty(image.get());
    return image;
}

bool isWhole(const PixelRaster& raster) {
    return raster.width >= 1 && raster.height >= 1
           && raster.pixels.size() == static_cast<std::size_t>(raster.width) * static_cast<std::size_t>(raster.height);
}

void paint(cairo_t* context, Point low, Point high, const PixelRaster& raster) {
    if (!isPlace(low) || !isPlace(high) || !isWhole(raster)) return;
    const auto image = imageOf(raster);
    cairo_save(context);
    cairo_translate(context, low.x, low.y);
    cairo_scale(context, (high.x - low.x) / raster.width, (high.y - low.y) / raster.height);
    cairo_set_source_surface(context, image.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST);
    cairo_set_antialias(context, CAIRO_ANTIALIAS_NONE);
    cairo_rectangle(context, 0, 0, raster.width, raster.height);
    cairo_fill(context);
    cairo_restore(context);
}

int pixelCount(double length) { return static_cast<int>(std::clamp(std::round(length), 1.0, double{largestPicture})); }

std::shared_ptr<Picture> startPicture(const Canvas& canvas, PictureFormat format) {
    auto picture = std::make_shared<Picture>();
    const bool isPage = format == PictureFormat::pdf;
    picture->width = pixelCount(canvas.width * (isPage ? 1 : canvas.scale));
    picture->height = pixelCount(canvas.height * (isPage ? 1 : canvas.scale));
    if (isPage) {
        picture->page = format;
        picture->target.reset(cairo_pdf_surface_create_for_stream(
            appendBytes, &picture->pageBytes, picture->width * pointsPerUnit, picture->height * pointsPerUnit));
    } else {
        picture->target.reset(cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture->width, picture->height));
    }
    picture->context.reset(cairo_create(picture->target.get()));
    cairo_t* context = picture->context.get();
    setColor(context, {255, 255, 255});
    cairo_paint(context);
    const double scale = isPage ? pointsPerUnit : canvas.scale;
    cairo_scale(context, scale, scale);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    return picture;
}

void connectPicture(Canvas& canvas, const std::shared_ptr<Picture>& picture) {
    canvas.fill = [picture](std::span<const Point> corners, Color color) {
        setColor(picture->context.get(), color);
        layPath(picture->context.get(), corners);
        cairo_fill(picture->context.get());
    };
    canvas.box = [picture](Point low, Point high, Color color) { fillBox(*picture, low, high, color); };
    canvas.stroke = [picture](std::span<const Point> points, const Pen& pen) {
        stroke(picture->context.get(), points, pen);
    };
    canvas.write = [picture](const std::string& text, Point at, const Lettering& lettering) {
        write(picture->context.get(), text, at, lettering);
    };
    canvas.paint = [picture](Point low, Point high, const PixelRaster& raster) {
        paint(picture->context.get(), low, high, raster);
    };
    canvas.clip = [picture](Point low, Point high) {
        if (!isPlace(low) || !isPlace(high)) return;
        layBox(picture->context.get(), low, high);
        cairo_clip(picture->context.get());
    };
    canvas.unclip = [picture] { cairo_reset_clip(picture->context.get()); };
}

std::string rasterBytes(const PixelRaster& raster) {
    Picture picture;
    if (!isWhole(raster)) return {};
    picture.target = imageOf(raster);
    return pngBytes(picture);
}

FileResult writeBytes(const std::string& path, const std::string& bytes) {
    if (bytes.empty()) return {ENOMEM, cairo_status_to_string(CAIRO_STATUS_NO_MEMORY)};
    return replaceFile(path, bytes);
}

} // namespace

void connectTextWidth(Canvas& canvas) {
    // Without the grid of any pixels, so that a figure is laid out alike on all kinds of files.
    const std::shared_ptr<cairo_surface_t> target(cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1),
                                                  cairo_surface_destroy);
    const std::shared_ptr<cairo_t> context(cairo_create(target.get()), cairo_destroy);
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_set_font_options(context.get(), options);
    cairo_font_options_destroy(options);
    canvas.textWidth = [target, context](const std::string& text, const Lettering& lettering) {
        return lengthOf(context.get(), text, lettering);
    };
}

FigureFile connectFigure(Canvas& canvas, PictureFormat format) {
    FigureFile figure;
    figure.format = format;
    canvas.isPage = format == PictureFormat::svg || format == PictureFormat::pdf;
    connectTextWidth(canvas);
    if (format == PictureFormat::svg) {
        figure.svgText = connectSvg(canvas, rasterBytes);
        return figure;
    }
    figure.picture = startPicture(canvas, format);
    connectPicture(canvas, figure.picture);
    return figure;
}

FileResult writeFigure(const FigureFile& figure, const std::string& path) {
    if (figure.format == PictureFormat::svg) return writeBytes(path, figure.svgText());
    Picture& picture = *figure.picture;
    const bool isPdf = figure.format == PictureFormat::pdf;
    if (isPdf) cairo_surface_finish(picture.target.get());
    const cairo_status_t status =
        isPdf ? cairo_surface_status(picture.target.get()) : cairo_status(picture.context.get());
    if (status != CAIRO_STATUS_SUCCESS) return {EIO, cairo_status_to_string(status)};
    return writeBytes(path, isPdf                                 ? picture.pageBytes
                            : figure.format == PictureFormat::png ? pngBytes(picture)
                                                                  : bitmapBytes(picture));
}

} // namespace norvane
