#include "drawing/svg_text.h"

#include "drawing/drawable_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <utility>

namespace norvane {

namespace {

struct SvgPicture {
    std::string body;
    int clips = 0; ///< boxes that were clipped to so far; each has a name of its own
    std::function<std::string(const PixelRaster&)> pngOf;
};

/// Hundredths of a unit, without zeros at the end.
std::string numberText(double value) {
    constexpr double farthest = 1e6;
    std::array<char, 32> digits{};
    const double limited = std::isnan(value) ? 0 : std::fmin(std::fmax(value, -farthest), farthest);
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), limited, std::chars_format::fixed, 2);
    std::string text(digits.data(), end.ptr);
    while (text.back() == '0') text.pop_back();
    if (text.back() == '.') text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string attribute(const char* name, double value) {
    return std::string(" ") + name + "=\"" + numberText(value) + '"';
}

std::string colorText(Color color) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text = "#";
    for (const std::uint8_t level : {color.red, color.green, color.blue}) {
        text += digits[level >> 4];
        text += digits[level & 15];
    }
    return text;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : drawableText(text)) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else
            result += c;
    }
    return result;
}

std::string base64(const std::string& bytes) {
    constexpr const char* digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const auto byte = [&](std::size_t k) {
            return at + k < bytes.size() ? static_cast<unsigned>(static_cast<unsigned char>(bytes[at + k])) : 0u;
        };
        const unsigned group = byte(0) << 16 | byte(1) << 8 | byte(2);
        for (unsigned k = 0; k < 4; ++k) text += at + k > bytes.size() ? '=' : digits[group >> (18 - 6 * k) & 63];
    }
    return text;
}

bool isPlace(Point point) { return std::isfinite(point.x) && std::isfinite(point.y); }

std::string pathText(std::span<const Point> points) {
    std::string text;
    bool goesOn = false;
    for (const Point& point : points) {
        if (isPlace(point)) text += (goesOn ? 'L' : 'M') + numberText(point.x) + ' ' + numberText(point.y);
        goesOn = isPlace(point);
    }
    return text;
}

std::string boxText(Point low, Point high) {
    return attribute("x", low.x) + attribute("y", low.y) + attribute("width", high.x - low.x)
           + attribute("height", high.y - low.y);
}

void stroke(SvgPicture& svg, std::span<const Point> points, const Pen& pen) {
    svg.body += "<path d=\"" + pathText(points) + "\" fill=\"none\" stroke=\"" + colorText(pen.color) + '"'
                + attribute("stroke-width", pen.width);
    for (std::size_t k = 0; k < pen.dashes.size(); ++k)
        svg.body += (k == 0 ? " stroke-dasharray=\"" : " ") + numberText(pen.dashes[k]);
    svg.body += pen.dashes.empty() ? "/>\n" : "\"/>\n";
}

void write(SvgPicture& svg, const std::string& text, Point at, const Lettering& lettering) {
    if (!isPlace(at)) return;
    svg.body += "<text" + attribute("x", at.x) + attribute("y", at.y) + attribute("font-size", lettering.size);
    if (lettering.bold) svg.body += " font-weight=\"bold\"";
    if (lettering.anchor != TextAnchor::start)
        svg.body += lettering.anchor == TextAnchor::middle ? " text-anchor=\"middle\"" : " text-anchor=\"end\"";
    if (lettering.upward) svg.body += " transform=\"rotate(-90 " + numberText(at.x) + ' ' + numberText(at.y) + ")\"";
    svg.body += " fill=\"" + colorText(lettering.color) + "\">" + escaped(text) + "</text>\n";
}

void paint(SvgPicture& svg, Point low, Point high, const PixelRaster& raster) {
    const std::string png = svg.pngOf(raster);
    if (png.empty() || !isPlace(low) || !isPlace(high)) return;
    svg.body += "<image" + boxText(low, high)
                + " preserveAspectRatio=\"none\" style=\"image-rendering:pixelated\" "
                  "xlink:href=\"data:image/png;base64,"
                + base64(png) + "\"/>\n";
}

void clip(SvgPicture& svg, Point low, Point high) {
    const std::string name = "clip" + std::to_string(++svg.clips);
    svg.body += "<clipPath id=\"" + name + "\"><rect" + boxText(low, high) + "/></clipPath>\n<g clip-path=\"url(#"
                + name + ")\">\n";
}

std::string fileText(const SvgPicture& svg, double width, double height) {
    const std::string size = numberText(width) + ' ' + numberText(height);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
           "xmlns:xlink=\"http://www.w3.org/1999/xlink\""
           + attribute("width", width) + attribute("height", height) + " viewBox=\"0 0 " + size + "\" font-family=\""
           + figureFont + ", Verdana, sans-serif\" stroke-linejoin=\"round\">\n<rect" + boxText({0, 0}, {width, height})
           + " fill=\"#ffffff\"/>\n" + svg.body + "</svg>\n";
}

} // namespace

std::function<std::string()> connectSvg(Canvas& canvas, std::function<std::string(const PixelRaster&)> pngOf) {
    const auto svg = std::make_shared<SvgPicture>();
    svg->pngOf = std::move(pngOf);
    canvas.fill = [svg](std::span<const Point> corners, Color color) {
        svg->body += "<path d=\"" + pathText(corners) + "Z\" fill=\"" + colorText(color) + "\"/>\n";
    };
    canvas.box = [svg](Point low, Point high, Color color) {
        if (!isPlace(low) || !isPlace(high)) return;
        svg->body +=
            "<rect" + boxText(low, high) + " fill=\"" + colorText(color) + "\" shape-rendering=\"crispEdges\"/>\n";
    };
    canvas.stroke = [svg](std::span<const Point> points, const Pen& pen) { stroke(*svg, points, pen); };
    canvas.write = [svg](const std::string& text, Point at, const Lettering& lettering) {
        write(*svg, text, at, lettering);
    };
    canvas.paint = [svg](Point low, Point high, const PixelRaster& raster) { paint(*svg, low, high, raster); };
    canvas.clip = [svg](Point low, Point high) { clip(*svg, low, high); };
    canvas.unclip = [svg] { svg->body += "</g>\n"; };
    return [svg, width = canvas.width, height = canvas.height] { return fileText(*svg, width, height); };
}

} // namespace norvane
