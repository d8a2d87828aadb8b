// The spectrum: the squared Fourier sums of the velocity at the wave vectors that the grid resolves.

#include "exchange/spectrum.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <numbers>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace norvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Row {
    double waveNumber;
    double power;
};

std::vector<Row> rowsOf(const std::string& text) {
    std::vector<Row> rows;
    std::istringstream stream(text);
    for (Row row{}; stream >> row.waveNumber >> row.power;) rows.push_back(row);
    return rows;
}

/// A row of `cells` cells of 0.5 m.
std::string rowTable(int cells) {
    const std::string tabs(static_cast<std::size_t>(cells - 1), '\t');
    return "DD 1;0.5" + tabs + "\nL" + tabs + "\n" + tabs + "\nL" + tabs;
}

TEST(spectrum, ofASineModeHasItsPowerAtThatModeAlone) {
    constexpr int cells = 33;
    constexpr int mode = 5;
    constexpr double amplitude = 3;
    TestProgram test;
    test.build(rowTable(cells));
    const double length = (cells - 1) * 0.5; // up to the lower edge of the last cell
    for (std::int32_t cell = 1; cell <= cells; ++cell)
        test.sim.velocity(cell, 1) = static_cast<float>(
            amplitude * std::sin(2 * std::numbers::pi * mode * double(test.sim.cellPos(cell, 1)) / length));
    ASSERT_TRUE(writeSpectrum(test.sim, test.ui, 400));
    const std::vector<Row> rows = rowsOf(test.read("NV_spectrum"));
    ASSERT_EQ(rows.size(), 401u);
    int samplesOfMode = 0;
    double highest = 0;
    for (const Row& row : rows) {
        const double modeNumber = row.waveNumber * length / (2 * std::numbers::pi);
        ASSERT_NEAR(modeNumber, std::round(modeNumber), 1e-12);
        highest = std::max(highest, modeNumber);
        const bool isMode = std::lround(modeNumber) == mode;
        samplesOfMode += isMode ? 1 : 0;
        // A sum of squared sines over whole periods is half of the number of cells; the last cell repeats the first.
        const double sum = isMode ? amplitude * (cells - 1) / 2 : 0;
        // The velocities are singles: 32 roundings of 2^-25 of the amplitude, squared beside the sum.
        const double rounding = 32 * amplitude * std::ldexp(1.0, -25);
        EXPECT_NEAR(row.power, sum * sum, 2 * sum * rounding + rounding * rounding);
    }
    EXPECT_GT(samplesOfMode, 0);
    EXPECT_EQ(std::lround(highest), 16) << "the largest whole number below 33 / 2";
}

TEST(spectrum, addsThePowerOfAllComponentsAndTheSquaresOfTheWaveVector) {
    TestProgram test;
    test.build("DD 1;0.5:DD 2;0.25\t\t\t\nL\t\t\t\n\t\t\t\n\t\t\t\n\t\t\t\nL\t\t\t");
    for (std::int32_t cell = 1; cell <= 12; ++cell) {
        test.sim.velocity(cell, 1) = 1;
        test.sim.velocity(cell, 2) = -2;
    }
    writeSpectrum(test.sim, test.ui, 200);
    // 4 cells give modes 0 and 1 over 1.5 m, 3 cells 0 and 1 over 0.5 m.
    const double first = 2 * std::numbers::pi / 1.5;
    const double second = 2 * std::numbers::pi / 0.5;

    // The sums over a row of waves are 1, the repeated cell; over a row without a wave they are its cells.
    const struct {
        double waveNumber;
        double sum;
    } modes[] = {{0, 12}, {first, 3}, {second, 4}, {std::hypot(first, second), 1}};

    int seen[4] = {0, 0, 0, 0};
    for (const Row& row : rowsOf(test.read("NV_spectrum"))) {
        int k = 0;
        while (k < 3 && std::abs(row.waveNumber - modes[k].waveNumber) > 1e-9) ++k;
        seen[k] += 1;
        EXPECT_NEAR(row.waveNumber, modes[k].waveNumber, 1e-12 * row.waveNumber);
        EXPECT_NEAR(row.power, 5 * modes[k].sum * modes[k].sum, 1e-6); // wave vectors of singles 0.5 and 0.25
    }
    EXPECT_THAT(seen, testing::Each(testing::Gt(0)));
}

TEST(spectrum, hasOneRowMoreThanPointsInTheNumberFormOfTheFiles) {
    TestProgram test;
    test.build("DD 1;0.5\t\nL\t\nVV 1;1.5\tVV 1;-4\nL\t");
    test.answers = {"2"};
    exportSpectrum(test.sim, test.ui);
    // Two cells have mode 0 alone.
    EXPECT_EQ(test.read("NV_spectrum"), " 0 \t 6.25 \r\n 0 \t 6.25 \r\n 0 \t 6.25 \r\n");
    EXPECT_THAT(test.messages, ElementsAre("Spectrum Done!"));
    EXPECT_THAT(test.events, ElementsAre("beep"));
    EXPECT_EQ(test.sim.openError, 0);
}

TEST(spectrum, ofADimensionOfOneCellHasWaveNumberZeroInIt) {
    TestProgram test;
    test.build("DD 0;1\nL\n\n\n\n\nL");
    ASSERT_EQ(test.sim.nDim, 2);
    ASSERT_EQ(test.sim.cellCount[1], 1);
    writeSpectrum(test.sim, test.ui, 20);
    const std::vector<Row> rows = rowsOf(test.read("NV_spectrum"));
    ASSERT_EQ(rows.size(), 21u) << "a text that is no number";
    for (const Row& row : rows) {
        const double modeNumber = row.waveNumber * 3 / (2 * std::numbers::pi);
        EXPECT_TRUE(std::abs(modeNumber) < 1e-9 || std::abs(modeNumber - 1) < 1e-9) << row.waveNumber;
    }
}

TEST(spectrum, startsWithTheSameSamplesInEveryProgramAndGoesOnInTheNextExport) {
    std::string files[2][2];
    for (auto& program : files) {
        TestProgram test;
        test.build(rowTable(100));
        for (std::string& file : program) {
            exportSpectrum(test.sim, test.ui);
            file = test.read("NV_spectrum");
        }
    }
    EXPECT_EQ(rowsOf(files[0][0]).size(), 101u) << "100 is the default";
    EXPECT_EQ(files[0][0], files[1][0]);
    EXPECT_EQ(files[0][1], files[1][1]);
    EXPECT_NE(files[0][0], files[0][1]);
}

TEST(spectrum, readsTheAnswerLikeANumberOfACellText) {
    TestProgram test; // without a geometry: rows of zero

    const struct {
        const char* answer;
        std::size_t rows;
    } cases[] = {{"2,5", 3}, {"3.5 points", 5}, {" 1e1", 11}, {"-0.4", 1}, {"0", 1}};

    for (const auto& [answer, rows] : cases) {
        test.answers = {answer};
        exportSpectrum(test.sim, test.ui);
        std::string zeros;
        for (std::size_t row = 0; row < rows; ++row) zeros += " 0 \t 0 \r\n";
        EXPECT_EQ(test.read("NV_spectrum"), zeros) << answer;
    }
}

TEST(spectrum, isNotWrittenAfterCancelOrAnAnswerThatIsNoUse) {
    TestProgram test;
    for (const std::optional<std::string>& cancelled : {std::optional<std::string>(), std::optional<std::string>("")}) {
        test.answers = {cancelled};
        exportSpectrum(test.sim, test.ui);
        EXPECT_THAT(test.messages, IsEmpty());
    }
    for (const auto& [answer, message] : {std::pair("many", "has to be a number"), std::pair("-1", "below 0"),
                                          std::pair("1E10", "memory"), std::pair("1E999", "memory")}) {
        test.answers = {answer};
        exportSpectrum(test.sim, test.ui);
        EXPECT_THAT(test.takeMessages(), ElementsAre(HasSubstr(message))) << answer;
    }
    EXPECT_FALSE(test.exists("NV_spectrum"));
    std::filesystem::create_directory(test.folder / "NV_spectrum");
    EXPECT_FALSE(writeSpectrum(test.sim, test.ui, 1));
    EXPECT_THAT(test.messages, ElementsAre("An error occured opening the file"));
    EXPECT_NE(test.sim.openError, 0);
    EXPECT_THAT(test.events, IsEmpty()) << "no beep";
}

TEST(spectrum, drawsFromASequenceThatIsTheSameOnEveryPlatform) {
    RandomSequence sequence;
    sequence.state = 1234567; // the published generator gives 6457827717110365317 first
    EXPECT_EQ(nextUniform(sequence), 0.3500795420214081);
}

} // namespace
} // namespace norvane
