// Random commands in any order, most of them in the yields of runs: afterwards the program computes as if it were new.

#include "frontends/script/record_hands.h"
#include "frontends/script/script_driver.h"
#include "support/test_program.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace norvane {
namespace {

const char* const table = "NS 1:DT 1E-5:NT 6:UT 2:ST 3:LT 1:FT 4:DD 0;0.01:LA 1:ET 1E-3\t\t\t\n"
                          "L\t\t\t\nTT 400\tCC 1;0.5\tWV 1;1\t\nPP 2E5\t\tWV 0;1\tWT 1\nL\t\t\t";
const char* const pairs = "1 1 2\n1 5 1E-4 1\n2 0 1E-4 1\n";

class RandomScript {
public:
    explicit RandomScript(unsigned seed) : random_(seed) {}

    std::string text() {
        std::string script = "file m.gmt\nclick NV_in.Command1\n";
        for (int line = 0; line < 40; ++line) {
            if (pick(0, 3) > 0) script += "at " + std::to_string(pick(1, 8)) + "." + std::to_string(pick(1, 6)) + " ";
            script += command() + "\n";
        }
        return script + "click NV_in.Command2\n";
    }

private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

    std::string command() {
        static const std::vector<std::string> commands{"click NV_in.Command1",
                                                       "click NV_in.Command2",
                                                       "click NV_in.Command2",
                                                       "click NV_in.Command4",
                                                       "click NV_in.Command5",
                                                       "click NV_in.Command5",
                                                       "click NV_in.Command6",
                                                       "click NV_in.Command7",
                                                       "click NV_in.Command8",
                                                       "click NV_dsp.Command1",
                                                       "click NV_dsp.Command2",
                                                       "click NV_dsp.Command3",
                                                       "click NV_dsp.Command4",
                                                       "click NV_einde.Command3",
                                                       "close NV_in",
                                                       "close NV_out",
                                                       "close NV_dsp",
                                                       "resize NV_out 40 30",
                                                       "set NV_dsp.zzoom(0) 1E9",
                                                       "set NV_dsp.Offset(1) x",
                                                       "set NV_dsp.mMinscale -1E38",
                                                       "set NV_dsp.ComboSlice(1) 9",
                                                       "put checkstop 1",
                                                       "put m_state 8 2 2 2",
                                                       "put m_rad 1 1 1\\n9 9 9 9",
                                                       "file none.gmt",
                                                       "file m.gmt"};
        return commands[static_cast<std::size_t>(pick(0, static_cast<int>(commands.size()) - 1))];
    }

    std::mt19937 random_;
};

std::uint64_t finalHash(TestProgram& test, bool radiates) {
    test.load(table);
    test.write("m_rad", pairs);
    if (radiates) test.click("NV_in.Command8");
    test.click("NV_in.Command2");
    EXPECT_EQ(test.sim.stepCount, 6);
    return stateHash(test.sim);
}

TEST(randomScript, leavesAProgramThatComputesAsANewOne) {
    std::uint64_t expected[2];
    for (const bool radiates : {false, true}) {
        TestProgram fresh;
        expected[radiates ? 1 : 0] = finalHash(fresh, radiates);
    }
    ASSERT_NE(expected[0], expected[1]);
    int commandsInRuns = 0;
    for (unsigned seed = 0; seed < 25; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TestProgram test;
        test.write("m.gmt", table);
        test.write("m_rad", pairs);
        ScriptDriver driver(test.program, handsOnRecords(test.program), false,
                            [](int) { FAIL() << "the script ended the process"; });
        test.ui.yieldToInterface = [&] {
            if (!driver.countYield()) return;
            commandsInRuns += 1;
            driver.runDue();
        };
        driver.run(RandomScript(seed).text());
        ASSERT_EQ(test.sim.runDepth, 0);
        ASSERT_FALSE(test.sim.loading);
        const bool radiates = test.sim.radActive;
        test.ui.yieldToInterface = [] {};
        ASSERT_EQ(finalHash(test, radiates), expected[radiates ? 1 : 0]);
    }
    EXPECT_GT(commandsInRuns, 100);
}

} // namespace
} // namespace norvane
