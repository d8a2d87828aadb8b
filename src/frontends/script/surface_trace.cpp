#include "frontends/script/surface_trace.h"

#include "frontends/script/script_text.h"

#include <charconv>
#include <initializer_list>

namespace norvane {

namespace {

/// The shortest text that reads back as the same single.
std::string shortest(float value) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string numbers(std::initializer_list<float> values) {
    std::string text;
    for (const float value : values) text += " " + shortest(value);
    return text;
}

std::string colorText(Color color) {
    return " " + std::to_string(color.red) + "," + std::to_string(color.green) + "," + std::to_string(color.blue);
}

} // namespace

void traceSurface(Surface& surface, const std::function<void(const std::string& line)>& print) {
    surface.cls = [print, next = surface.cls] {
        print("draw: cls");
        next();
    };
    surface.print = [print, &surface, next = surface.print](const std::string& text) {
        print("draw: text" + numbers({surface.currentX, surface.currentY, surface.fontSize})
              + (surface.fontBold ? " bold" : " plain") + colorText(surface.foreColor) + " \"" + escaped(text) + "\"");
        next(text);
    };
    surface.line = [print, &surface, next = surface.line](float x1, float y1, float x2, float y2) {
        print("draw: line" + numbers({x1, y1, x2, y2}) + " " + std::to_string(surface.drawWidth)
              + colorText(surface.foreColor));
        next(x1, y1, x2, y2);
    };
    surface.box = [print, &surface, next = surface.box](float x1, float y1, float x2, float y2) {
        print("draw: box" + numbers({x1, y1, x2, y2}) + colorText(surface.foreColor));
        next(x1, y1, x2, y2);
    };
    surface.setAutoRedraw = [print, next = surface.setAutoRedraw](bool on) {
        print(on ? "draw: autoredraw on" : "draw: autoredraw off");
        next(on);
    };
    surface.savePicture = [print, next = surface.savePicture](const std::string& path) {
        print("draw: save " + escaped(path));
        return next(path);
    };
}

} // namespace norvane
