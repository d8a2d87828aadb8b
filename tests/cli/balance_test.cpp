// norvane run --balance: a table that closes, beside a run that stays as it is.

#include "support/run_program.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

namespace norvane {
namespace {

using testing::HasSubstr;
using Row = std::map<std::string, double>;

/// The rows of a table without quotes; a row of another length fails the test.
std::vector<Row> rowsOf(const std::string& table) {
    std::istringstream lines(table);
    std::vector<std::string> names;
    std::vector<Row> rows;
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(line.ends_with("\r")) << line;
        line.pop_back();
        std::istringstream fields(line);
        std::vector<std::string> values;
        for (std::string field; std::getline(fields, field, ',');) values.push_back(field);
        if (names.empty()) {
            names = values;
            continue;
        }
        EXPECT_EQ(values.size(), names.size());
        rows.emplace_back();
        for (std::size_t k = 0; k < std::min(names.size(), values.size()); ++k)
            rows.back()[names[k]] = std::strtod(values[k].c_str(), nullptr);
    }
    return rows;
}

TEST(balanceTable, closesAndLeavesTheRunAsItIs) {
    TestProgram test;
    const std::string channel = std::string(NORVANE_EXAMPLES) + "/channel.gmt";
    const std::string run = "run " + channel + " --set NT=630 --set TR=1 --save -o . --name ";
    EXPECT_EQ(runProgram(run + "plain").status, 0);
    const Outcome outcome = runProgram(run + "m --balance 100 --region inlet=A5:A20 --region gas=C7 --summary s.json");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("  Balance of step 630, into the box:\n    mass: "));
    EXPECT_THAT(test.read("s.json"), HasSubstr("\"balance\": {\"step\": 630, \"mass [kg]\": "));
    for (const char* const ending : {"_out", "_log", "_state"})
        EXPECT_EQ(test.read(std::string("m") + ending), test.read(std::string("plain") + ending)) << ending;
    const std::vector<Row> rows = rowsOf(test.read("m_balance.csv"));
    ASSERT_EQ(rows.size(), 7u);
    EXPECT_EQ(rows[6].at("step"), 630);
    EXPECT_NEAR(rows[6].at("time [s]"), 630e-5, 1e-9);
    for (const Row& row : rows) {
        EXPECT_LT(std::abs(row.at("heat remainder [W]")), 1e-5 * row.at("heat carried from inlet [W]"));
        EXPECT_LT(std::abs(row.at("mass remainder [kg/s]")), 1e-4 * row.at("mass carried from inlet [kg/s]"));
        EXPECT_NEAR(row.at("heat flows [W]") + row.at("heat remainder [W]"), row.at("heat change [W]"), 1e-8);
        EXPECT_GT(row.at("heat conducted from K21 [W]"), 0);
        EXPECT_LT(row.at("momentum 1 viscosity [N]"), 0);
    }
}

TEST(balanceTable, goesOnWhereACheckpointLeftIt) {
    TestProgram test;
    test.write("m.gmt", "DT 1E-5:NT 40\t\t\t\nL\t\t\t\n.PP 2E5\t\t.WT -1:TT 400\t.WP -1:WV 1;0\n\t\t\t\nL\t\t\t");
    ASSERT_EQ(runProgram("run m.gmt --balance 3 --name whole").status, 0);
    const std::string run = "run m.gmt --balance 3 --checkpoint-every 25";
    ASSERT_EQ(runProgram(run).status, 0);
    ASSERT_EQ(test.read("m_balance.csv"), test.read("whole_balance.csv"));
    const Outcome resumed = runProgram(run + " --resume");
    EXPECT_EQ(test.read("m_balance.csv"), test.read("whole_balance.csv")) << resumed.out;
}

TEST(balanceTable, replacesNothingElseAndSaysWhatCantBeWritten) {
    TestProgram test;
    test.write("m.gmt", "DT 1E-5:NT 4\t\nL\t\n.WT -1\tPP 2E5\n\t\nL\t");
    test.write("m_balance.csv", "mine");
    const Outcome refused = runProgram("run m.gmt --balance 1");
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.out, HasSubstr("m_balance.csv holds something else, which would be lost; rename it"));
    EXPECT_EQ(test.read("m_balance.csv"), "mine");
    EXPECT_EQ(runProgram("run m.gmt --balance 0").status, 2);
    std::filesystem::remove("m_balance.csv");
    std::filesystem::create_symlink("/dev/full", "m_balance.csv");
    const Outcome full = runProgram("run m.gmt --balance 1");
    EXPECT_EQ(full.status, 4);
    EXPECT_THAT(full.out, HasSubstr("The balance m_balance.csv can't be written: "));
    std::filesystem::remove("m_balance.csv");
    ASSERT_EQ(runProgram("run m.gmt --balance 2 --save").status, 0);
    EXPECT_EQ(rowsOf(test.read("m_balance.csv")).size(), 2u);
    EXPECT_EQ(runProgram("run m.gmt --balance 2 --recall").status, 0);
    EXPECT_EQ(runProgram("run m.gmt --balance 2 --recall --region wall=A3").status, 4) << "other columns";
}

} // namespace
} // namespace norvane
