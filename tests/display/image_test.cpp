// Pictures: which pixels boxes and lines take, and the files they become.

#include "display/field_plot.h"
#include "drawing/image_surface.h"
#include "support/test_program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

namespace norvane {
namespace {

/// An image as one text, a line for each row: "." for the background, other colours by a letter.
std::string picture(const Picture& image, int left, int top, int right, int bottom) {
    std::string text;
    for (int y = top; y <= bottom; ++y) {
        text += "\n";
        for (int x = left; x <= right; ++x) {
            const Color c = pixelAt(image, x, y);
            text += c == Surface::background    ? '.'
                    : c == Color{0, 0, 255}     ? 'W'
                    : c == Color{0, 255, 255}   ? 'a'
                    : c == Color{255, 255, 255} ? 'w'
                    : c == Color{0, 0, 0}       ? '#'
                                                : '?';
        }
    }
    return text;
}

struct Drawn {
    Surface surface;
    std::shared_ptr<Picture> image;

    Drawn(float width, float height) {
        surface.scaleWidth = width;
        surface.scaleHeight = height;
        image = drawOnImage(surface);
    }

    std::string all() const { return picture(*image, 0, 0, image->width - 1, image->height - 1); }
};

TEST(image, fillsABoxFromCornerToCorner) {
    Drawn drawn(7, 4);
    drawn.surface.box(5, 2, 3.4f, 0.5f);
    drawn.surface.box(1, 1, 1, 1);
    EXPECT_EQ(drawn.all(), "\n......."
                           "\n.#.###."
                           "\n...###."
                           "\n.......");
}

TEST(image, drawsLinesThroughThePixelsOfTheirEnds) {
    Drawn drawn(9, 5);
    drawn.surface.line(0, 0, 3, 0);
    drawn.surface.line(0, 4, 2, 2);
    drawn.surface.line(4, 4, 4, 4);
    drawn.surface.drawWidth = 2;
    drawn.surface.line(7, 1, 7, 3);
    EXPECT_EQ(drawn.all(), "\n####....."
                           "\n......##."
                           "\n..#...##."
                           "\n.#....##."
                           "\n#...#....");
}

TEST(image, takesAnyCoordinates) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Drawn drawn(3, 3);
    drawn.surface.box(nan, 0, 2, 2);
    drawn.surface.line(0, 0, 2, nan);
    drawn.surface.box(5, 5, 3e38f, inf);
    EXPECT_EQ(drawn.all(), "\n...\n...\n...");
    drawn.surface.line(-inf, 1, inf, 1);
    drawn.surface.line(1e30f, 7, -1e30f, 70);
    EXPECT_EQ(drawn.all(), "\n...\n###\n...");
    for (const float length : {nan, -5.0f, 0.0f, 1e30f}) {
        drawn.surface.scaleHeight = length;
        drawn.surface.resized();
        EXPECT_EQ(drawn.image->height, length == 1e30f ? largestPicture : 1);
    }
}

TEST(image, printsAnyBytesAndStaysUsable) {
    Drawn drawn(60, 30);
    drawn.surface.currentX = 2;
    drawn.surface.print("\xff\xc3 \xed\xa0\x80 a\tb\n\xe2\x82\xac");
    EXPECT_NE(drawn.all().find('?'), std::string::npos);
    drawn.surface.cls();
    EXPECT_EQ(drawn.all().find_first_not_of("\n."), std::string::npos);
}

TEST(image, ofAColourMapHasSeamsOfOnePixelAndWallsInThem) {
    TestProgram test;
    test.build("DD 0;1:TT 0:SI 0:SA 1\t\t\nL\t\t\nWV 1;1\t\t\n\tTT 500\t\nL\t\t");
    test.ui.NV_out.form.width = 135; // 5 pixels a metre
    const auto image = drawOnImage(test.ui.NV_out.Picture1);
    plotField(test.sim, test.ui);
    EXPECT_EQ(picture(*image, 4, 24, 16, 36), "\n............."
                                              "\n.....WW......"
                                              "\n..###WW####.."
                                              "\n..###WW####.."
                                              "\n..###WW####.."
                                              "\n..###WW####.."
                                              "\n.....WW......"
                                              "\n..####.wwww.."
                                              "\n..####.wwww.."
                                              "\n..####.wwww.."
                                              "\n.WWWWWWWWWWW."
                                              "\n.WWWWWWWWWWW."
                                              "\n.............");
}

TEST(image, ofAVectorPlotHasArrowsAndNoHeads) {
    TestProgram test;
    test.build("DD 0;1:SW 11:SI 1:SA 3\t\nL\t\nVV 1;-9\t\n\t\nL\t");
    test.ui.NV_out.form.width = 130;
    test.ui.NV_out.form.height = 60;
    const auto image = drawOnImage(test.ui.NV_out.Picture1);
    plotField(test.sim, test.ui);
    EXPECT_EQ(picture(*image, 4, 24, 12, 31), "\n........."
                                              "\n........."
                                              "\n........."
                                              "\n.aaaa...."
                                              "\n.aaaa...."
                                              "\n........."
                                              "\n........."
                                              "\n.........");
}

TEST(image, becomesFilesThatAreWholeOrAbsent) {
    TestProgram test;
    Drawn drawn(3, 2);
    drawn.surface.foreColor = {10, 20, 30};
    drawn.surface.box(0, 0, 0, 0);
    EXPECT_EQ(drawn.surface.savePicture("p.bmp"), "");
    const std::string bytes = test.read("p.bmp");
    ASSERT_EQ(bytes.size(), 54u + 2 * 12); // rows of 9 bytes, filled up to 12
    EXPECT_EQ(bytes.substr(66, 3), "\x1e\x14\x0a");
    EXPECT_EQ(bytes.substr(69, 3), std::string("\0\xc0\0", 3));
    EXPECT_TRUE(writePicture(*drawn.image, "p.png", PictureFormat::png));
    EXPECT_EQ(test.read("p.png").substr(0, 4), "\x89PNG");
    EXPECT_EQ(writePicture(*drawn.image, "p.svg", PictureFormat::svg).reason,
              "the picture was not drawn for this kind of file");
    std::filesystem::create_directories("folder.bmp/inside");
    EXPECT_NE(drawn.surface.savePicture("folder.bmp"), "");
    EXPECT_NE(drawn.surface.savePicture("missing/p.bmp"), "");
    EXPECT_FALSE(test.exists("folder.bmp.part"));
    EXPECT_FALSE(test.exists("p.svg"));
}

TEST(image, isDrawnOnPagesToo) {
    TestProgram test;
    test.build("DD 0;1:SW 11\t\nL\t\n\t\n\t\nL\t");
    for (const auto& [format, start] : {std::pair{PictureFormat::svg, "<?xml"}, {PictureFormat::pdf, "%PDF"}}) {
        const auto page = drawOnPage(test.ui.NV_out.Picture1, format);
        plotField(test.sim, test.ui);
        EXPECT_TRUE(writePicture(*page, "page", format));
        const std::string bytes = test.read("page");
        EXPECT_EQ(bytes.rfind(start, 0), 0u);
        EXPECT_EQ(bytes.find("glyph"), std::string::npos); // the heads were wiped, not covered
    }
    EXPECT_EQ(pictureFormat("a.b.PdF"), PictureFormat::pdf);
    EXPECT_EQ(pictureFormat(".bmp"), std::nullopt);
    EXPECT_EQ(pictureFormat("bmp"), std::nullopt);
}

} // namespace
} // namespace norvane
