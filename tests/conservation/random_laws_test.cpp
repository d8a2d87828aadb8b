// Laws that every model obeys, on random ones: a closed box loses nothing, a gas of one temperature keeps it, a species
// that nobody uses changes nothing, and of a wall code only the sign counts.

#include "support/fields.h"
#include "support/test_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace norvane {
namespace {

constexpr int models = 25;
constexpr int steps = 40;

class RandomTable {
public:
    explicit RandomTable(unsigned seed) : random_(seed) {}

    /// Cells of one to four dimensions, of which about a third hold one or two of the items.
    std::string with(const std::string& defaults, const std::vector<std::string>& items) {
        const int dims = pick(1, 4);
        const int columns = pick(3, 9);
        const std::string tabs(static_cast<std::size_t>(columns - 1), '\t');
        std::string text = defaults + ":DT 1E-5:UT 0:NT " + std::to_string(steps)
                           + ":DD 0;0.01:CC 1;0.3:VV 1;3:VV 2;-2:RR " + std::to_string(pick(0, 40)) + tabs + "\nL"
                           + tabs;
        for (int four = dims < 4 ? 2 : 1; four <= 2; ++four)
            for (int three = dims < 3 ? 2 : 1; three <= 2; ++three) {
                for (int row = dims < 2 ? 3 : 1; row <= 3; ++row) text += "\n" + rowText(columns, items);
                text += (dims == 4 && three == 2 ? "\nL4" : "\nL") + tabs;
            }
        return text;
    }

    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

private:
    std::string rowText(int columns, const std::vector<std::string>& items) {
        std::string text;
        for (int column = 0; column < columns; ++column) {
            text += column > 0 ? "\t." : "."; // or a text with L in front would end a layer
            for (int item = pick(-3, 1); item >= 0; --item)
                text += items[static_cast<std::size_t>(pick(0, static_cast<int>(items.size()) - 1))] + ":";
        }
        return text;
    }

    std::mt19937 random_;
};

/// Gives whether the model came to its last step: held cells may empty others.
bool run(TestProgram& test, const std::string& table) {
    test.load(table);
    EXPECT_GT(test.sim.nCells, 0) << table;
    test.click("NV_in.Command2");
    return test.sim.outcome.reachedStopStep;
}

std::string replaced(std::string text, char mark, const std::string& by) {
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += by.size()) text.replace(at, 1, by);
    return text;
}

/// What leaves a box closed and its temperature alone.
const std::vector<std::string> gentle{"PP 12E4",    "PP 8E4",      "CC 1;0.9", "CC 2;0.2", "VV 1;9",  "VV 2;-9",
                                      "DD 1;0.013", "DD -2;0.007", "HH 2",     "WV 1;1",   "WV 0;1",  "WV 0;2",
                                      "WV 2;1",     "RR 900",      "ET 1E-3",  "LA 3",     "VV 3;-5", "WV 3;1"};

std::vector<std::string> operator+(std::vector<std::string> items, const std::vector<std::string>& more) {
    items.insert(items.end(), more.begin(), more.end());
    return items;
}

TEST(randomModel, losesNothingOfAClosedBox) {
    double fastest = 0;
    for (unsigned seed = 0; seed < models; ++seed) {
        TestProgram test;
        RandomTable random(seed);
        const std::string table =
            random.with("NS 2:LA 1:ET 1E-3", gentle + std::vector<std::string>{"TT 500", "CP 900"});
        test.build(table);
        ASSERT_GT(test.sim.nCells, 0) << table;
        double mass[3];
        for (int species = 0; species <= 2; ++species) mass[species] = totalMass(test.sim, species);
        const double energy = totalEnergy(test.sim);
        ASSERT_TRUE(run(test, table)) << table;
        // Each cell is rounded to single once a step: so much if all errors had one sign.
        const double tolerance = steps * std::ldexp(1.0, -24);
        for (int species = 0; species <= 2; ++species)
            ASSERT_NEAR(totalMass(test.sim, species), mass[species], tolerance * (mass[0] + mass[1] + mass[2]))
                << table;
        ASSERT_NEAR(totalEnergy(test.sim) / energy, 1, tolerance) << table;
        for (std::int32_t cell = 1; cell <= test.sim.nCells; ++cell)
            fastest = std::max(fastest, std::abs(double(test.sim.velocity(cell, 1))));
    }
    EXPECT_GT(fastest, 1) << "nothing moved";
}

TEST(randomModel, keepsTheTemperatureOfAGasThatHasOne) {
    for (unsigned seed = 0; seed < models; ++seed) {
        TestProgram test;
        RandomTable random(seed);
        const std::string table =
            random.with("NS 2:LA 1:ET 1E-3:TT 350:GG 1;5", gentle + std::vector<std::string>{"WT -1", "WP -1"});
        ASSERT_TRUE(run(test, table)) << table;
        for (std::int32_t cell = 1; cell <= test.sim.nCells; ++cell)
            ASSERT_NEAR(test.sim.temperature[cell] / 350, 1, 1e-5) << "cell " << cell << " of\n" << table;
    }
}

const std::vector<std::string> coded{"TT 500",  "WP -1", "WP 1",   "WT -1",    "WT 1",           "WC -1",
                                     "CP 2000", "WC 1",  "PP 3E5", "CC 1;0.8", "WV 1;-2:VV 1;7", "WV 2;-1:VV 2;3"};

TEST(randomModel, doesNotNoticeASpeciesThatNobodyUses) {
    int complete = 0;
    for (unsigned seed = 0; seed < models; ++seed) {
        TestProgram without;
        TestProgram with;
        const std::string table =
            RandomTable(seed).with("NS @:LA 1:ET 1E-3:TR 9:GP 11;1E-6:GP 12;9E3:GP 13;0.5:GP 14;5E3:GP 15;0.1",
                                   std::vector<std::string>{"PP 12E4", "WV 1;1", "DD 1;0.02", "VV 1;4"} + coded);
        complete += run(without, replaced(table, '@', "1")) ? 1 : 0;
        run(with, replaced(table, '@', "2"));
        ASSERT_EQ(stateHash(with.sim, 1), stateHash(without.sim)) << table;
        ASSERT_EQ(totalMass(with.sim, 2), 0) << table;
    }
    EXPECT_GT(complete, models / 2);
}

TEST(randomModel, readsOfAWallCodeItsSignAlone) {
    const std::vector<std::string> items{"WV 1;@",        "WV 2;@",         "WV 0;1",         "WP @",   "WP ~",
                                         "WT @",          "WT ~",           "WC ~",           "TT 400", "PP 13E4",
                                         "WV 1;~:VV 1;7", "WV 2;~:VV 2;-7", "WV 3;~:VV 3;-7", "WV 3;@", "CC 1;0.7"};
    int complete = 0;
    for (unsigned seed = 0; seed < models; ++seed) {
        TestProgram plain;
        TestProgram other;
        const std::string table = RandomTable(seed).with("NS 1:LA 1:ET 1E-3", items);
        complete += run(plain, replaced(replaced(table, '@', "1"), '~', "-1")) ? 1 : 0;
        run(other, replaced(replaced(table, '@', "5"), '~', "-3"));
        ASSERT_EQ(stateHash(other.sim), stateHash(plain.sim)) << table;
    }
    EXPECT_GT(complete, models / 2);
}

} // namespace
} // namespace norvane
