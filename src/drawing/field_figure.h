#pragma once
// Figures of a plane of cells for a report: one panel or several, each a colour map with axes in metres and a colour
// bar, and what the marks in it mean.

#include "drawing/field_map.h"
#include "drawing/flow_marks.h"

#include <string>
#include <vector>

namespace norvane {

struct FieldPanel {
    std::string label;
    std::string unit;
    std::vector<float> values;    ///< of the cells of the plane
    std::vector<float> contoured; ///< as many: those that contour lines follow
    ColorScale scale;
    bool reachesBelow = false; ///< there are values below the scale: its bar ends in a point
    bool reachesAbove = false;
    std::vector<double> contours; ///< levels
    bool hasNoLogarithm = false;  ///< gas without a value on the logarithmic scale is white
    bool hasArrows = false;
    bool hasStreamlines = false;
};

struct FieldFigure {
    std::string title;
    std::string subtitle;
    Plane plane;
    double stretchAcross = 1; ///< of the metres across against those down; 1: true proportions
    bool fillsCanvas = false; ///< whatever the proportions
    std::vector<FieldPanel> panels;
};

/// Gives a canvas of this width the height that the figure needs, and makes it narrower where the figure is; with true
/// proportions it fits tightly.
void fitCanvas(const FieldFigure& figure, Canvas& canvas);

/// Draws the figure over the whole canvas, as large as fits. The plane has an extent above 0 each way.
void drawFigure(const SimState& sim, const FieldFigure& figure, const Canvas& canvas);

} // namespace norvane
