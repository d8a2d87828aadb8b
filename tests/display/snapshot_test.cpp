// A snapshot is a bitmap of the plot, named after the moment, and leaves the surface empty.

#include "display/recording.h"
#include "display/snapshot.h"
#include "drawing/image_surface.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace norvane {
namespace {

using testing::MatchesRegex;

const char* const model = "SW 11\t\nL\t\n\t\n\t\nL\t";

TEST(snapshot, drawsTheKeptImageAndSavesItUnderTheMoment) {
    TestProgram test;
    test.build(model);
    Drawing drawing;
    recordOn(test.ui.NV_out.Picture1, drawing);
    test.ui.yieldToInterface = [&] { drawing.emplace_back("yield"); };
    test.takeMessages();
    takeSnapshot(test.sim, test.ui, false);
    ASSERT_GE(drawing.size(), 9u);
    EXPECT_EQ(Drawing(drawing.begin(), drawing.begin() + 2), (Drawing{"cls", "keep"}));
    const Drawing end = linesFrom(drawing, drawing.size() - 4);
    EXPECT_THAT(end[0], MatchesRegex("save .*/m_[0-9]{8}_[0-9]{6}\\.bmp"));
    EXPECT_EQ(end[0].substr(5, test.folder.string().size()), test.folder.string());
    EXPECT_EQ(linesFrom(end, 1), (Drawing{"cls", "yield", "keep no more"}));
    EXPECT_TRUE(test.takeMessages().empty());
    takeSnapshot(test.sim, test.ui, true);
    EXPECT_THAT(test.takeMessages(), testing::ElementsAre(MatchesRegex(".*/m_[0-9]{8}_[0-9]{6}\\.bmp created")));
}

TEST(snapshot, isARealBitmapEvenWithoutAModel) {
    TestProgram test;
    test.load(model);
    test.takeMessages();
    const auto image = drawOnImage(test.ui.NV_out.Picture1);
    takeSnapshot(test.sim, test.ui, true);
    const std::string said = test.takeMessages().at(0);
    const std::string name = std::filesystem::path(said.substr(0, said.size() - 8)).filename().string();
    const std::string bytes = test.read(name);
    EXPECT_EQ(bytes.size(), 54u + 690 * 568 * 3);
    EXPECT_EQ(bytes.substr(0, 2), "BM");
    EXPECT_EQ(bytes.substr(bytes.size() - 3), std::string("\0\xc0\0", 3));
}

TEST(snapshot, thatCannotBeWrittenIsToldOnceInARunAndAtEveryClick) {
    TestProgram test;
    test.build(model);
    test.takeMessages();
    const auto image = drawOnImage(test.ui.NV_out.Picture1);
    std::filesystem::remove_all(test.folder);
    test.sim.reported.plotFile = true;
    test.sim.runDepth = 1;
    takeSnapshot(test.sim, test.ui, false);
    takeSnapshot(test.sim, test.ui, false);
    EXPECT_THAT(test.takeMessages(), testing::ElementsAre(MatchesRegex(
                                         "The snapshot .*\\.bmp can't be written: No such file or directory\\.\r\n"
                                         "The run goes on without it\\.")));
    takeSnapshot(test.sim, test.ui, true);
    EXPECT_EQ(test.takeMessages().size(), 1u);
}

} // namespace
} // namespace norvane
