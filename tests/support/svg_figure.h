#pragma once
// What the SVG file of a figure shows, read back from its text: letters, lines, and the values that the axes give them.

#include "platform/canvas.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace norvane {

struct SvgText {
    Point at;
    std::string anchor; ///< empty: its start
    std::string text;
};

struct SvgPath {
    std::vector<Point> points;
    double width = 0; ///< of the stroke; 0: filled
    std::string color;
};

struct SvgBox {
    Point low;
    Point high;
    std::string color;
};

/// Places of labels and their values; places between follow a straight line.
struct SvgAxis {
    std::vector<double> places;
    std::vector<double> values;

    double valueAt(double place) const {
        const double share = (place - places.front()) / (places.back() - places.front());
        return values.front() + share * (values.back() - values.front());
    }

    double placeOf(double value) const {
        const double share = (value - values.front()) / (values.back() - values.front());
        return places.front() + share * (places.back() - places.front());
    }
};

class SvgFigure {
public:
    explicit SvgFigure(const std::string& file) {
        for (std::size_t at = file.find("\n<"); at != std::string::npos; at = file.find("\n<", at + 1)) {
            const std::string line = file.substr(at + 1, file.find('\n', at + 1) - at - 1);
            if (line.rfind("<text", 0) == 0) texts.push_back(textOf(line));
            if (line.rfind("<path", 0) == 0) paths.push_back(pathOf(line));
            if (line.rfind("<rect", 0) == 0) boxes.push_back(boxOf(line));
        }
    }

    std::vector<SvgText> texts;
    std::vector<SvgPath> paths;
    std::vector<SvgBox> boxes;

    /// The colour of the last box over a point.
    std::string colorAt(Point at) const {
        std::string color;
        for (const SvgBox& box : boxes)
            if (at.x > box.low.x && at.x < box.high.x && at.y > box.low.y && at.y < box.high.y) color = box.color;
        return color;
    }

    bool shows(const std::string& text) const {
        return std::any_of(texts.begin(), texts.end(), [&](const SvgText& each) { return each.text == text; });
    }

    /// The upright axes with labels of an anchor ("end": at the left, "": at the right), in order of drawing. Their
    /// labels go upward, so that the next one that is lower begins another axis.
    std::vector<SvgAxis> uprightAxes(const std::string& anchor) const {
        constexpr double middleOfLetters = 0.36 * 12;
        std::vector<SvgAxis> axes;
        double before = -1;
        for (const SvgText& each : texts) {
            if (each.anchor != anchor || !isNumber(each.text)) continue;
            const double y = each.at.y - middleOfLetters;
            if (before < 0 || y > before) axes.emplace_back();
            axes.back().places.push_back(y);
            axes.back().values.push_back(std::strtod(each.text.c_str(), nullptr));
            before = y;
        }
        return axes;
    }

    SvgAxis levelAxis() const {
        SvgAxis axis;
        for (const SvgText& each : texts) {
            if (each.anchor != "middle" || !isNumber(each.text)) continue;
            axis.places.push_back(each.at.x);
            axis.values.push_back(std::strtod(each.text.c_str(), nullptr));
        }
        return axis;
    }

    std::vector<SvgPath> pathsOfWidth(double width) const {
        std::vector<SvgPath> found;
        std::copy_if(paths.begin(), paths.end(), std::back_inserter(found),
                     [&](const SvgPath& path) { return path.width == width; });
        return found;
    }

private:
    static bool isNumber(const std::string& text) {
        char* end = nullptr;
        std::strtod(text.c_str(), &end);
        return !text.empty() && *end == '\0';
    }

    static std::string attribute(const std::string& line, const std::string& name) {
        const std::size_t at = line.find(" " + name + "=\"");
        if (at == std::string::npos) return {};
        const std::size_t from = at + name.size() + 3;
        return line.substr(from, line.find('"', from) - from);
    }

    static double number(const std::string& line, const std::string& name) {
        return std::strtod(attribute(line, name).c_str(), nullptr);
    }

    static SvgText textOf(const std::string& line) {
        const std::size_t from = line.find('>') + 1;
        std::string text = line.substr(from, line.rfind("</text>") - from);
        for (const auto& [entity, letter] : {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}})
            for (std::size_t at = text.find(entity); at != std::string::npos; at = text.find(entity, at + 1))
                text.replace(at, std::string(entity).size(), letter);
        return {{number(line, "x"), number(line, "y")}, attribute(line, "text-anchor"), text};
    }

    static SvgBox boxOf(const std::string& line) {
        const Point low{number(line, "x"), number(line, "y")};
        return {low, {low.x + number(line, "width"), low.y + number(line, "height")}, attribute(line, "fill")};
    }

    static SvgPath pathOf(const std::string& line) {
        SvgPath path{{}, number(line, "stroke-width"), attribute(line, "stroke")};
        if (path.color.empty()) path.color = attribute(line, "fill");
        std::string data = attribute(line, "d");
        std::replace_if(
            data.begin(), data.end(), [](char c) { return c == 'M' || c == 'L' || c == 'Z'; }, ' ');
        const char* at = data.c_str();
        for (char* end = nullptr;; at = end) {
            Point point;
            point.x = std::strtod(at, &end);
            if (end == at) return path;
            at = end;
            point.y = std::strtod(at, &end);
            path.points.push_back(point);
        }
    }
};

} // namespace norvane
