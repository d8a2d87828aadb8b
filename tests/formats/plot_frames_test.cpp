// Charts and planes of frames: their values are those of the frame, and frames that don't suit are refused.

#include "formats/frame_reader.h"
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

constexpr const char* table = "DT 1E-5:NT 20:UT 0:DD 0;0.1\t\t\nL\t\t\nVV 1;20\tVV 1;9\t\n\t\t\nL\t\t";

TEST(plotFrames, drawTheValuesOfTheirFrames) {
    TestProgram test;
    test.write("m.gmt", table);
    ASSERT_EQ(runProgram("run m.gmt --frames 10").status, 0);
    EXPECT_EQ(runProgram("plot m.gmt --along A3:C3 --quantity p --frame 10,last -o a.svg").status, 0);
    const SvgFigure figure(test.read("a.svg"));
    EXPECT_TRUE(figure.shows("step 10, t = 0.0001 s") && figure.shows("step 20, t = 0.0002 s"));
    std::vector<SvgPath> lines = figure.pathsOfWidth(2);
    std::erase_if(lines, [](const SvgPath& each) { return each.points.size() != 3; }); // those of the legend
    ASSERT_TRUE(lines.size() == 2 && figure.uprightAxes("end").size() == 1);
    const SvgAxis upward = figure.uprightAxes("end")[0];
    const double span = upward.values.back() - upward.values.front();
    test.build(table);
    std::int32_t step = 0;
    for (const SvgPath& line : lines) {
        const float before = test.sim.pressure[1];
        step += 10;
        ASSERT_EQ(readFrame("m_frames.nc", static_cast<std::size_t>(step) / 10, step, test.sim), "");
        EXPECT_GT(std::abs(test.sim.pressure[1] - before), 0.02 * span);
        for (std::int32_t cell = 1; cell <= 3; ++cell)
            EXPECT_NEAR(upward.valueAt(line.points[static_cast<std::size_t>(cell) - 1].y), test.sim.pressure[cell],
                        1e-3 * span);
    }
    EXPECT_NE(readFrame("m_frames.nc", 1, 20, test.sim), ""); // the file has changed meanwhile
    EXPECT_NE(readFrame("m_frames.nc", 9, 20, test.sim), "");
    EXPECT_EQ(runProgram("plot m.gmt --frame 10 -o plane.svg --arrows").status, 0);
    EXPECT_TRUE(SvgFigure(test.read("plane.svg")).shows("step 10, t = 0.0001 s"));
}

TEST(plotFrames, refuseWhatDoesNotSuit) {
    TestProgram test;
    test.write("m.gmt", table);
    const std::string plot = "plot m.gmt -o x.png ";
    EXPECT_EQ(runProgram(plot + "--frame 10").status, 4); // there are none yet
    ASSERT_EQ(runProgram("run m.gmt --frames 10 --frames-fields T").status, 0);
    const std::vector<std::array<std::string, 2>> cases = {
        {"--frame 5", "has, 0, 10, 20; or last, or all"},
        {"--frame 0,10", "a plane shows one step"},
        {"--frame 10 --state", "excludes"},
        {"--frame 10 --quantity p --arrows", "lack p,u,v"},
        {"--frame 10 --style classic", "it means nothing with --style classic"},
    };
    for (const auto& [options, message] : cases) {
        const Outcome outcome = runProgram(plot + options);
        EXPECT_EQ(outcome.status, 2) << options;
        EXPECT_THAT(outcome.out, HasSubstr(message));
    }
    test.write("m.gmt", "DT 1E-5:NT 20:UT 0:DD 0;0.1\t\t\t\nL\t\t\t\n\t\t\t\n\t\t\t\nL\t\t\t"); // other cells
    const Outcome other = runProgram(plot + "--frame 10");
    EXPECT_EQ(other.status, 4);
    EXPECT_THAT(other.out, HasSubstr("those of another drawing"));
    test.build("DD 0;0.1\t\t\t\nL\t\t\t\n\t\t\t\n\t\t\t\nL\t\t\t");
    EXPECT_THAT(readFrame("m_frames.nc", 1, 10, test.sim), HasSubstr("another shape"));
    test.write("m_frames.nc", "\x89HDF\r\n\x1a\n and then nothing");
    EXPECT_EQ(runProgram(plot + "--frame 10").status, 4);
    EXPECT_FALSE(test.exists("x.png"));
}

} // namespace
} // namespace norvane
