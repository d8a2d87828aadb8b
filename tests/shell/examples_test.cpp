// Each example runs, and shows what it is about without a touch of the display panel.

#include "display/recording.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <ostream>
#include <set>
#include <sstream>

namespace norvane {
namespace {

/// The words of a text that differ from each other.
std::set<std::string> wordsOf(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

/// The colours in the map of a colour plot, without those of the legend.
std::set<std::string> coloursOfMap(const Drawing& drawing) {
    std::set<std::string> colours;
    std::size_t boxes = 0;
    constexpr std::size_t legendRows = 11;
    for (const std::string& line : drawing)
        if (line.rfind("box ", 0) == 0 && ++boxes > legendRows) colours.insert(line.substr(line.rfind(' ')));
    return colours;
}

struct StoredState {
    const char* name;
    std::uint64_t bits; ///< as stateHash gives them
};

void PrintTo(const StoredState& state, std::ostream* out) { *out << state.bits; }

constexpr StoredState finalStates[] = {
    {"channel", 12721413473173760973u},      {"duct_obstacle", 10222256771564305970u},
    {"facing_walls", 15879352510819298393u}, {"heated_cavity", 8587894640301585683u},
    {"reactor", 11587320877101789701u},      {"shock_tube", 9264834983483690054u},
    {"tee", 17550343561585487740u},          {"room", 9599692054550887819u},
    {"pipe", 18054161268338384768u},         {"convection", 1776485910933143916u},
};

class FinalState : public testing::TestWithParam<StoredState> {};

/// Every compiler and processor comes to the same bits; facing walls with the heat that they radiate.
TEST_P(FinalState, hasTheBitsThatAreStoredHere) {
    const std::string name = GetParam().name;
    TestProgram test;
    test.loadExample(name);
    const std::filesystem::path factors = std::filesystem::path(NORVANE_EXAMPLES) / (name + "_rad");
    if (std::filesystem::exists(factors)) {
        std::filesystem::copy(factors, test.folder);
        test.click("NV_in.Command8");
    }
    test.click("NV_in.Command2");
    EXPECT_EQ(test.sim.stepCount, test.sim.stepLimit);
    EXPECT_EQ(stateHash(test.sim), GetParam().bits);
}

TEST(examples, showInTheirFirstPicturesWhatTheyAreAbout) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(NORVANE_EXAMPLES)) {
        if (entry.path().extension() != ".gmt") continue;
        const std::string name = entry.path().stem().string();
        TestProgram test;
        Drawing drawing;
        recordOn(test.ui.NV_out.Picture1, drawing);
        test.loadExample(name);
        test.ui.stepBegan = [&] {
            if (test.sim.stepCount != test.sim.updateEvery) return;
            drawing.clear(); // the picture of step 1 shows the start; the next one is the first of the flow
            test.sim.stopFlag = true;
        };
        test.click("NV_in.Command2");
        EXPECT_THAT(test.takeMessages(), testing::IsEmpty()) << name;
        EXPECT_EQ(test.sim.stepCount, test.sim.updateEvery + 1) << name;
        EXPECT_GE(coloursOfMap(drawing).size(), 8u) << name;
        EXPECT_GE(wordsOf(test.read(name + "_out")).size(), 8u) << name;
        count += 1;
    }
    EXPECT_EQ(count, int(std::size(finalStates))) << "each has its final state stored above";
}

INSTANTIATE_TEST_SUITE_P(examples, FinalState, testing::ValuesIn(finalStates), [](const auto& example) {
    return std::string(example.param.name);
});

} // namespace
} // namespace norvane
