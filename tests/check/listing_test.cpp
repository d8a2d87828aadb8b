// A listing shows what a build made of a table, and where each value comes from.

#include "check/listing.h"
#include "check/table_rules.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvane {
namespace {

using testing::Contains;
using testing::ElementsAre;

const char* const layers = "TT 310:RR 4\tDD 0;0.5:NT 7\nL\t\nDD -1;0.25:HH 2;3\tTT 280\nWV 0;-1\tWV 2;2\n"
                           "L\t\nCC 0;1\t\n\tPP 5\nL\t";

std::vector<std::string> linesOf(const std::vector<ListedValue>& values) {
    std::vector<std::string> lines;
    for (const ListedValue& value : values) lines.push_back(value.name + " = " + value.value + ": " + value.origin);
    return lines;
}

TEST(listing, namesTheOriginOfEachValue) {
    const TestProgram test;
    test.write("m.gmt", layers);
    TracedModel model;
    ASSERT_EQ(buildTraced("m.gmt", 3, model), "");
    const std::vector<std::string> third = linesOf(listCell(model, 3));
    for (const char* line :
         {"TT = 310: rows with defaults, A1", "RR = 4: rows with defaults, A1", "DD 1 = 0.25: DD of A3, spread",
          "DD 2 = 0.5: rows with defaults, B1", "WV 0 = -1: its own text", "WV 1 = -1: WV 0; in its own text",
          "HH = 1: default", "CC = 1: 1 less the other species"})
        EXPECT_THAT(third, Contains(line));
    TracedModel other;
    ASSERT_EQ(buildTraced("m.gmt", 2, other), "");
    for (const char* line : {"TT = 280: its own text", "HH = 3: HH of A3, spread",
                             "WV 1 = 1: the end of a row, which is closed", "WV 2 = 1: code 2 of B4"})
        EXPECT_THAT(linesOf(listCell(other, 2)), Contains(line));
    EXPECT_THAT(linesOf(listSettings(other)), Contains("NT = 7: rows with defaults, B1"));
    EXPECT_EQ(fieldTable(other.sim, keyOf("TT"), 0), "310\t280\n310\t310\n\n310\t310\n310\t310\n");
    EXPECT_FALSE(test.exists("checkstop"));
}

TEST(listing, findsTheCellOfAnAddressAndBack) {
    const TestProgram test;
    test.write("m.gmt", layers);
    TracedModel model;
    ASSERT_EQ(buildTraced("m.gmt", 0, model), "");
    for (std::int32_t cell = 1; cell <= model.sim.nCells; ++cell)
        EXPECT_EQ(cellOfAddress(model.sim, spreadsheetAddress(placeOf(model.sim, cell))), cell);
    for (const char* text :
         {"", "A", "3", "A1", "A2", "A5", "C3", "A8", "A3x", "ZZZZZZZZZZZZZZZ3", "A99999999999999999999"})
        EXPECT_EQ(cellOfAddress(model.sim, text), 0) << text;
}

TEST(listing, comparesModelsByValue) {
    const TestProgram test;
    test.write("a.gmt", "TT 300:NT 5\t\nL\t\n\tPP 1E5\nL\t");
    test.write("b.gmt", "NT 6:tt 300,0\t\nL\t\n\tPP 100000:WP 1\nL\t");
    TracedModel a;
    TracedModel b;
    ASSERT_EQ(buildTraced("a.gmt", 0, a) + buildTraced("b.gmt", 0, b), "");
    std::vector<std::string> lines;
    for (const Difference& each : differences(a.sim, b.sim))
        lines.push_back(std::to_string(each.cell) + " " + each.name + " " + each.before + " " + each.after);
    EXPECT_THAT(lines, ElementsAre("0 NT 5 6", "2 WP 0 1"));
}

} // namespace
} // namespace norvane
