// Charts: round ticks, profiles, tables of probes of any content, and what the file of a chart shows.

#include "display/probe_table.h"
#include "display/profile.h"
#include "support/run_program.h"
#include "support/svg_figure.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace norvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> labels(double low, double high, int most) { return linearTicks({low, high}, most).labels; }

TEST(ticks, areRoundAndHaveTheDigitsThatTellThemApart) {
    EXPECT_THAT(labels(0, 1, 6), ElementsAre("0.0", "0.2", "0.4", "0.6", "0.8", "1.0"));
    EXPECT_THAT(labels(-0.031, 0.052, 5), ElementsAre("-0.02", "0.00", "0.02", "0.04"));
    EXPECT_THAT(labels(101300, 101312, 4), ElementsAre("101300", "101305", "101310"));
    EXPECT_THAT(labels(99.9999, 700.0001, 3), ElementsAre("500"));
    EXPECT_THAT(labels(0, 3.1e7, 4), ElementsAre("0", "10", "20", "30"));
    EXPECT_EQ(linearTicks({0, 3.1e7}, 4).exponent, 6);
    EXPECT_EQ(unitText("Pa", 6), "[10\u2076 Pa]");
    EXPECT_EQ(unitText("", -3), "[10\u207b\u00b3]");
    EXPECT_THAT(labels(0, 2.5e-5, 3), ElementsAre("0", "10", "20"));
    for (const Range& none : {Range{1, 1}, Range{2, 1}, Range{-1e308, 1e308}, Range{std::nan(""), 1}})
        EXPECT_TRUE(linearTicks(none, 5).places.empty());
}

TEST(ticks, ofLogarithmicAxesArePowersOfTen) {
    EXPECT_THAT(logTicks({0.5, 3e6}, 4).labels, ElementsAre("1", "100", "10\u2074", "10\u2076"));
    EXPECT_THAT(logTicks({0.9, 11}, 9).labels, ElementsAre("1", "2", "5", "10"));
    EXPECT_THAT(logTicks({310, 350}, 3).labels, ElementsAre("320", "340"));
    EXPECT_TRUE(logTicks({0, 10}, 5).places.empty());
}

TEST(charts, keepTheLookOfALineWithFewerPoints) {
    ChartLine line;
    for (int k = 0; k < 10000; ++k) {
        line.x.push_back(k);
        line.y.push_back(k == 5003 ? 9 : k == 7000 ? std::nan("") : 0);
    }
    const ChartLine thin = thinned(line, 100);
    EXPECT_LE(thin.x.size(), 400u);
    EXPECT_EQ(*std::max_element(thin.y.begin(), thin.y.begin() + 200), 9);
    EXPECT_EQ(thin.x.back(), 9999);
    EXPECT_EQ(std::count_if(thin.y.begin(), thin.y.end(), [](double y) { return std::isnan(y); }), 1);
    line.x[2] = std::numeric_limits<double>::infinity();
    EXPECT_EQ(thinned(line, 100).x.size(), 10000u);
}

TEST(charts, ofProfilesPutValuesWhereTheyHold) {
    TestProgram test;
    test.build("DD 0;2\t\t\t\nL\t\t\t\nTT 300\tTT 310\tWV 0;2:TT 320\t\n\t\t\t\nL\t\t\t");
    const std::optional<CellLine> line = cellsBetween(test.sim, 4, 1);
    ASSERT_TRUE(line.has_value());
    EXPECT_EQ(cellsBetween(test.sim, 1, 6), std::nullopt);
    EXPECT_EQ(cellsBetween(test.sim, 1, 1), std::nullopt);
    test.sim.velocity(1, 1) = 7;
    const CellLine lines[] = {*line};
    std::array<ShownQuantity, 3> shown;
    for (const auto& [k, name] : {std::pair{0, "Temperature"}, {1, "u"}, {2, "4"}})
        EXPECT_EQ(chooseShown(test.sim, name, 0, shown.at(static_cast<std::size_t>(k))), "");
    const LineChart chart = profileChart(test.sim, lines, shown, "");
    ASSERT_EQ(chart.panels.size(), 3u);
    EXPECT_THAT(chart.panels[0].lines[0].x, ElementsAre(1, 3, 5, 7));
    EXPECT_THAT(chart.panels[0].lines[0].y[2], testing::DoubleNear(46.85, 1e-4));
    EXPECT_THAT(chart.panels[1].lines[0].x, ElementsAre(2, 4, 6, 8)); // on the faces
    EXPECT_THAT(chart.panels[1].lines[0].y, ElementsAre(7, 0, 0, 0));
    EXPECT_TRUE(std::isnan(chart.panels[2].lines[0].y[2])); // no pressure in a wall
    ASSERT_EQ(chart.shaded.size(), 1u);
    EXPECT_EQ(chart.shaded[0].low, 4);
    ShownQuantity none;
    for (const char* name : {"w", "c1", "12", "0", "c", "", "Tt"})
        EXPECT_NE(chooseShown(test.sim, name, 0, none), "") << name;
}

/// What is wrong with a table of probes, "" for nothing.
std::string faultOf(const std::string& text) {
    ProbeTable table;
    return readProbes(text, table);
}

TEST(probeTable, isReadByItsHeadAndLeavesALineOutThatIsNotComplete) {
    ProbeTable table;
    EXPECT_EQ(readProbes("\xef\xbb\xbfstep,time [s],D3:K9:mean(T) [K],\"a \"\"b\"\", c:p\"\r\n"
                         "0,0,300,1e5\r\n1,0.5,nan,\n\r\n2,1,3",
                         table),
              "");
    ASSERT_EQ(table.columns.size(), 2u);
    EXPECT_EQ(table.columns[0].name + "|" + table.columns[0].quantity + "|" + table.columns[0].unit,
              "D3:K9:mean(T)|T|K");
    EXPECT_EQ(table.columns[1].name, "a \"b\", c:p");
    EXPECT_THAT(table.times, ElementsAre(0, 0.5));
    EXPECT_EQ(table.columns[1].values[0], 1e5);
    EXPECT_TRUE(std::isnan(table.columns[0].values[1]) && std::isnan(table.columns[1].values[1]));
}

TEST(probeTable, saysWhatIsWrongAndWhere) {
    const std::string head = "step,time [s],C7:T [K]\n";
    EXPECT_THAT(faultOf(""), HasSubstr("line 1: the line of names is not complete"));
    EXPECT_THAT(faultOf(std::string(1000, '\0') + "\n"), HasSubstr("no table of probes"));
    EXPECT_EQ(faultOf(head + "0,0,1\n1,1\n"), "line 3: it has 2 values where the names are 3");
    EXPECT_EQ(faultOf(head + "0,0,12x\n"), "line 2: value 3 is no number");
    EXPECT_EQ(faultOf("step,time [s],\"a\nb\"\n0,0,\"1\n"), "line 3: a quotation mark is not closed");
    EXPECT_EQ(faultOf("step,time [s], [,(),:)\n0,0,1,2,3\n"), "");
}

TEST(charts, showTheirNumbersInTheFile) {
    TestProgram test;
    test.write("m.gmt", "DD 0;0.1:DT 0.5\t\t\t\nL\t\t\t\nTT 300\tTT 310\tTT 320\tTT 330\n\t\t\t\nL\t\t\t");
    test.write("m_probes.csv", "step,time [s],A3:T [K],B3:p [Pa],C3:T [K]\n0,0,300,1,2\n10,5,310,3,4\n");
    EXPECT_EQ(runProgram("plot m.gmt --along A3:D3 --quantity T,p -o a.svg --title 'a<&b'").status, 0);
    const SvgFigure along(test.read("a.svg"));
    EXPECT_TRUE(along.shows("a<&b") && along.shows("A3:D3, step 0, t = 0 s"));
    EXPECT_TRUE(along.shows("Temperature [K]") && along.shows("Pressure [Pa]") && along.shows("x [m]"));
    const std::vector<SvgAxis> axes = along.uprightAxes("end");
    const std::vector<SvgPath> lines = along.pathsOfWidth(2);
    ASSERT_TRUE(axes.size() == 2 && lines.size() == 2);
    for (int k = 0; k < 4; ++k) {
        const Point point = lines[0].points.at(static_cast<std::size_t>(k));
        EXPECT_NEAR(along.levelAxis().valueAt(point.x), 0.05 + 0.1 * k, 1e-4);
        EXPECT_NEAR(axes[0].valueAt(point.y), 300 + 10 * k, 0.01);
    }
    EXPECT_EQ(runProgram("plot m.gmt --history --quantity t -o h.svg").status, 0);
    const SvgFigure history(test.read("h.svg"));
    EXPECT_TRUE(history.shows("A3:T") && history.shows("C3:T") && history.shows("Temperature [K]")
                && !history.shows("B3:p [Pa]"));
    const std::vector<std::array<std::string, 2>> cases = {
        {"--along A3:B4", "--along: \"A3:B4\" is not two cells of the drawing"},
        {"--along A3", "is not two cells"},
        {"--along A3:D3 --along A3:A4", "all lines must run along one dimension"},
        {"--along A3:D3 --quantity T,q", "\"q\" is no quantity of this geometry"},
        {"--along A3:D3 --zoom 1", "--zoom: it means nothing with --along"},
        {"--history --column D9:T", "one of the probes: A3:T, B3:p, C3:T"},
        {"--history --probes none.csv", "none.csv: there is no such file. A run makes it, for example: norvane run"},
        {"--history --probes m.gmt", "m.gmt: line 1: this is no table of probes"},
    };
    for (const auto& [options, message] : cases) {
        const Outcome outcome = runProgram("plot m.gmt -o x.png " + options);
        EXPECT_EQ(outcome.status, options.find("--probes") == std::string::npos ? 2 : 4) << options;
        EXPECT_THAT(outcome.out, HasSubstr(message));
    }
    EXPECT_FALSE(test.exists("x.png"));
}

} // namespace
} // namespace norvane
