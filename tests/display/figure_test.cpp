// Figures for reports: what is computed for them, single pixels, and the numbers of their axes read back.

#include "display/contour_lines.h"
#include "display/plane_flow.h"
#include "drawing/field_figure.h"
#include "drawing/figure_file.h"
#include "support/run_program.h"
#include "support/svg_figure.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace norvane {
namespace {

using testing::HasSubstr;

/// 4 x 3 cells of 0.1 m: a wall at the top right, a held cell at the bottom left, 300 to 330 K to the right.
constexpr const char* table = "DD 0;0.1:TT 300\t\t\t\n"
                              "L\t\t\t\n"
                              "\tTT 310\tTT 320\tWV 0;2:TT 900\n"
                              "\tTT 310\tTT 320\tTT 330\n"
                              "WP 1\tTT 310\tTT 320\tTT 330\n"
                              "L\t\t\t";

TEST(colorTables, areEvenOrDiverge) {
    const auto lightness = [](Color c) { return 0.2126 * c.red + 0.7152 * c.green + 0.0722 * c.blue; };
    const ColorTable* viridis = colorTable("Viridis");
    ASSERT_NE(viridis, nullptr);
    for (int k = 0; k < 100; ++k) EXPECT_LT(lightness(viridis->at(k / 100.0)), lightness(viridis->at((k + 1) / 100.0)));
    EXPECT_EQ(viridis->at(-3), (Color{68, 1, 84}));
    EXPECT_EQ(viridis->at(std::nan("")), viridis->at(0));
    EXPECT_EQ(colorTable("coolwarm")->at(0.5), (Color{221, 221, 221}));
    EXPECT_EQ(colorTable("rainbow"), nullptr);
}

TEST(planes, leaveWallsOutAndKnowHeldCells) {
    TestProgram test;
    test.build(table);
    const Plane plane = planeOf(test.sim);
    EXPECT_EQ(plane.columns * 100 + plane.rows, 403);
    EXPECT_TRUE(plane.walls[3] && !plane.walls[7] && plane.held[8] && !plane.held[9]);
    EXPECT_NEAR(plane.across.high, 0.4, 1e-6);
    ShownQuantity shown;
    EXPECT_EQ(chooseShown(test.sim, "T", 0, shown), "");
    bool found = false;
    EXPECT_EQ(extentOf(planeValues(test.sim, plane, shown, false), found).high, 330);
    EXPECT_EQ(extentOf(planeValues(test.sim, plane, shown, true), found).high, 900);
    EXPECT_THAT(chooseShown(test.sim, "pres", 0, shown), HasSubstr("no quantity of this geometry"));
    EXPECT_EQ(positive({-1, 0, 1e-9f, 5}, 3, found).low, 5e-3);
    positive({-1, 0}, 3, found);
    EXPECT_FALSE(found);
}

TEST(contours, lieWhereALineBetweenCentresHasTheirValue) {
    TestProgram test;
    test.build(table);
    const Plane plane = planeOf(test.sim);
    ShownQuantity shown;
    chooseShown(test.sim, "T", 0, shown);
    const std::vector<float> values = planeValues(test.sim, plane, shown, false);
    const std::vector<Point> line = contourLines(test.sim, plane, values, 312);
    ASSERT_EQ(line.size(), 4u); // one line through two quads, ended by a point that is none
    for (const std::size_t k : {0u, 1u, 2u}) EXPECT_NEAR(line[k].x, 0.17, 1e-6);
    EXPECT_NEAR(std::abs(line[2].y - line[0].y), 0.2, 1e-6);
    EXPECT_TRUE(std::isnan(line[3].x));
    // The wall takes the quad at the top right with it.
    EXPECT_EQ(contourLines(test.sim, plane, values, 325).size(), 3u);
    std::vector<float> peak(12, 1.0f);
    peak[5] = 3;
    const std::vector<Point> ring = contourLines(test.sim, plane, peak, 2);
    ASSERT_EQ(ring.size(), 6u);
    EXPECT_EQ(ring[0].x, ring[4].x);
    EXPECT_EQ(ring[0].y, ring[4].y);
}

TEST(streamlines, followTheFacesKeepTheirDistanceAndStayInTheGas) {
    TestProgram test;
    test.build("DD 0;1\t\t\t\t\t\nL\t\t\t\t\t\nWV 0;2\tWV 0;2\tWV 0;2\tWV 0;2\tWV 0;2\tWV 0;2\n\t\t\t\t\t\n\t\t\t\t\t\n"
               "L\t\t\t\t\t");
    for (std::int32_t cell = 7; cell <= 18; ++cell) test.sim.velocity(cell, 1) = -2;
    const Plane plane = planeOf(test.sim);
    const std::vector<Streamline> lines = streamlines(test.sim, plane, 0.9);
    ASSERT_EQ(lines.size(), 1u); // the second row of gas is nearer than two squares of the distance
    EXPECT_GT(lines[0].points.front().x, 5.5);
    EXPECT_LT(lines[0].points.back().x, 0.5);
    for (const Point& point : lines[0].points) EXPECT_NEAR(point.y, 1.5, 1e-9);
    EXPECT_EQ(centreVelocity(test.sim, plane, 0).x, 0); // a wall
    EXPECT_EQ(centreVelocity(test.sim, plane, 6).x, -2);
    for (std::int32_t cell = 1; cell <= 18; ++cell) test.sim.velocity(cell, 1) = 0;
    EXPECT_TRUE(streamlines(test.sim, plane, 0.9).empty());
}

TEST(figures, colourThePixelsOfTheirCells) {
    TestProgram test;
    test.build(table);
    FieldFigure figure;
    figure.plane = planeOf(test.sim);
    ShownQuantity shown;
    chooseShown(test.sim, "T", 0, shown);
    FieldPanel panel;
    panel.values = planeValues(test.sim, figure.plane, shown, false);
    panel.scale = {{300, 330}, false, colorTable("viridis")};
    figure.panels.push_back(panel);
    const AxisFrame frame{100, 50, 180, 110}; // 20 units a cell
    Canvas canvas;
    canvas.width = 300;
    canvas.height = 200;
    canvas.scale = 2;
    const FigureFile file = connectFigure(canvas, PictureFormat::png);
    fillCells(test.sim, figure.plane, panel.values, panel.scale, placeMap(figure.plane, frame), canvas);
    const auto at = [&](double x, double y) {
        return pixelAt(*file.picture, static_cast<int>(x * 2), static_cast<int>(y * 2));
    };
    EXPECT_EQ(at(99.5, 60), paperColor);
    EXPECT_EQ(at(100, 50), panel.scale.of(300));
    EXPECT_EQ(at(119.5, 50), panel.scale.of(300));
    EXPECT_EQ(at(120, 50), panel.scale.of(310));
    EXPECT_EQ(at(159.5, 69.5), panel.scale.of(320));
    EXPECT_EQ(at(160, 69.5), wallFill);
    EXPECT_EQ(at(179.5, 109.5), panel.scale.of(330));
    EXPECT_EQ(at(170, 110), paperColor);
}

TEST(figures, haveAxesInMetresAndABarThatTheCellsAgreeWith) {
    TestProgram test;
    test.write("m.gmt", table);
    EXPECT_EQ(runProgram("plot m.gmt -o a.svg --quantity T --contours 3 --title ''").status, 0);
    const SvgFigure figure(test.read("a.svg"));
    EXPECT_TRUE(figure.shows("Temperature [K]") && figure.shows("x [m]") && figure.shows("y [m]"));
    EXPECT_TRUE(figure.shows("wall") && figure.shows("held") && figure.shows("step 0, t = 0 s"));
    const SvgAxis across = figure.levelAxis();
    const SvgAxis bar = figure.uprightAxes("").at(0);
    SvgAxis down = figure.uprightAxes("end").at(0);
    // The labels of the axis down run downward, so that each is an axis of its own.
    for (const SvgAxis& next : figure.uprightAxes("end")) {
        down.places.push_back(next.places[0]);
        down.values.push_back(next.values[0]);
    }
    const double metre = across.placeOf(1) - across.placeOf(0);
    EXPECT_NEAR(down.placeOf(1) - down.placeOf(0), metre, 0.01 * metre); // true proportions
    for (int column = 0; column < 4; ++column) {
        const std::string cell = figure.colorAt({across.placeOf(0.05 + 0.1 * column), down.placeOf(0.15)});
        std::string nearest;
        double best = 1e9;
        for (const SvgBox& box : figure.boxes) {
            const double value = bar.valueAt((box.low.y + box.high.y) / 2);
            const bool isBar = box.low.x > across.placeOf(0.4) + 1;
            if (!isBar || std::abs(value - (300 + 10 * column)) > best) continue;
            best = std::abs(value - (300 + 10 * column));
            nearest = box.color;
        }
        const auto level = [](const std::string& color, std::size_t k) {
            return std::stoi(color.substr(k, 2), nullptr, 16);
        };
        for (const std::size_t k : {1u, 3u, 5u}) EXPECT_NEAR(level(cell, k), level(nearest, k), 3) << column;
    }
    EXPECT_EQ(figure.colorAt({across.placeOf(0.35), down.placeOf(0.05)}), "#b0b0b0");
}

TEST(figures, sayWhatTheScaleLeavesOutAndFillTheirPage) {
    TestProgram test;
    test.write("m.gmt", "DD 0;0.1:TT 300\t\t\t\nL\t\t\t\nTT 273\tTT 274\tTT 280\tTT 290\n"
                        "WP 1:PP 9E5\tPP 2E5\tPP 3E5\tPP 1E5\nL\t\t\t");
    EXPECT_EQ(runProgram("plot m.gmt -o log.svg --quantity Temperature --scale log").status, 0);
    const SvgFigure figure(test.read("log.svg"));
    EXPECT_TRUE(figure.shows("0 or below"));
    EXPECT_EQ(runProgram("plot m.gmt -o p.svg --quantity p --contours 4").status, 0);
    const std::vector<SvgAxis> bars = SvgFigure(test.read("p.svg")).uprightAxes("");
    ASSERT_EQ(bars.size(), 1u);
    EXPECT_LE(bars[0].values.back(), 3e5); // without the pressure of the held cell
    const Outcome walls = runProgram("plot m.gmt -o x.png --quantity v --show-walls");
    EXPECT_EQ(walls.status, 2);
    EXPECT_THAT(walls.out, HasSubstr("--show-walls"));
    EXPECT_EQ(runProgram("plot m.gmt -o beside.svg --panels T,u --size 900x250 --title "
                         "'A title of so many words that one line of a picture of this width has no room for all "
                         "of them, and the rest goes on below'")
                  .status,
              0);
    const SvgFigure beside(test.read("beside.svg"));
    const auto placeOf = [&](const std::string& text) {
        for (const SvgText& each : beside.texts)
            if (each.text.rfind(text, 0) == 0) return each.at;
        return Point{-1, -1};
    };
    EXPECT_EQ(placeOf("Temperature [K]").y, placeOf("Velocity x [m/s]").y);
    EXPECT_GT(placeOf("Velocity x [m/s]").x, 300);
    EXPECT_THAT(test.read("beside.svg"), HasSubstr("below</text>"));
    EXPECT_THAT(test.read("beside.svg"), testing::Not(HasSubstr("\u2026")));
}

TEST(figures, takeTheOptionsThatSuitThem) {
    TestProgram test;
    test.write("m.gmt", table);
    test.write("line.gmt", "DD 0;0.1\t\t\nL\t\t\n\t\t\nL\t\t");
    test.write("thin.gmt", "DD 1;1E6:DD 2;1E-6\t\nL\t\n\t\n\t\nL\t");
    EXPECT_EQ(runProgram("plot m.gmt -o p.svg --panels T,p,speed --arrows --streamlines --scale symmetric").status, 0);
    const SvgFigure panels(test.read("p.svg"));
    EXPECT_TRUE(panels.shows("Temperature [K]") && panels.shows("Pressure [Pa]") && panels.shows("Speed [m/s]"));
    for (const char* good :
         {"m.gmt -o x.png --scale log", "m.gmt -o x.bmp --scale log,1:1e5 --stretch", "m.gmt -o x.pdf --quantity 11",
          "line.gmt -o x.svg --panels T,u", "m.gmt -o x.png --size 150x60", "thin.gmt -o x.png", "thin.gmt -o x.svg"})
        EXPECT_EQ(runProgram(std::string("plot ") + good).status, 0) << good;
    const std::vector<std::array<std::string, 2>> cases = {
        {"m.gmt --scale 1:2 --panels T,p", "possible with several panels"},
        {"m.gmt --scale log,0:2", "the ends of a logarithmic scale are above 0"},
        {"m.gmt --scale log --quantity u",
         "Velocity x: the plane has no value that can be shown on a logarithmic scale"},
        {"m.gmt --colors jet", "--colors: \"jet\" is not one of viridis, coolwarm, grey"},
        {"m.gmt --style classic --arrows", "--arrows: it means nothing with --style classic"},
        {"m.gmt --quantity Temprature", "Did you mean \"Temperature\"?"},
        {"line.gmt --streamlines", "need a grid of two dimensions"},
    };
    for (const auto& [options, message] : cases) {
        const Outcome outcome = runProgram("plot -o none.png " + options);
        EXPECT_EQ(outcome.status, 2) << options;
        EXPECT_THAT(outcome.out, HasSubstr(message));
    }
    EXPECT_FALSE(test.exists("none.png"));
}

} // namespace
} // namespace norvane
