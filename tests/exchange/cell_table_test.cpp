// Quantities by their names, and tables of cells that other programs read.

#include "core/quantity_names.h"
#include "exchange/cell_table.h"
#include "exchange/csv_text.h"
#include "exchange/probes.h"
#include "exchange/row_file.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdlib>
#include <limits>

namespace norvane {
namespace {

using testing::HasSubstr;

/// Three layers of 2 x 2 cells, two species; the cells of column B are twice as wide, and one is hot.
const std::string layers =
    "NS 1\tDT 1E-5\nTT 300:PP 1E5:RH 1.2\tDD 0;0.01\nL\t\nDD -1;0.01\tDD -1;0.02\n\t\nL\t\n\tTT 600\n\t\n"
    "L\t\n\t\n\tCC 1;0.25\nL\t";

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> items{""};
    for (const char c : text) {
        if (c == separator)
            items.emplace_back();
        else if (c != '\r')
            items.back() += c;
    }
    return items;
}

TEST(quantityNames, areShortOrThoseOfTheCatalogueAndAnUnknownOneIsToldTheNearest) {
    TestProgram test;
    test.build(layers);
    std::vector<NamedQuantity> found;
    ASSERT_EQ(findQuantities(test.sim, "t,V,u2,C1,std velocity 3,StdVelocity3,temperature,w", found), "");
    std::vector<std::string> headings;
    for (const NamedQuantity& each : found) headings.push_back(headingOf(each));
    EXPECT_THAT(headings, testing::ElementsAre("T [K]", "v [m/s]", "v [m/s]", "c1", "Std Velocity 3 [m/s]",
                                               "Std Velocity 3 [m/s]", "Temperature [degC]", "w [m/s]"));
    const std::int32_t hot = 6;
    EXPECT_EQ(found[0].of(test.sim, hot), 600.0f);
    EXPECT_EQ(found[6].of(test.sim, hot), 326.85f);
    EXPECT_EQ(found[3].of(test.sim, 12), 0.25f);
    const std::vector<std::array<std::string, 2>> cases = {
        {"rh", "Did you mean \"rho\"?"}, {"c2", "Did you mean \"c0\"?"}, {"T,,p", "\"\" is no quantity"},
        {"presure", "\"Pressure\"?"},    {"u4", "Did you mean \"u\"?"},  {"VectorPlot", "is no quantity"},
    };
    for (const auto& [list, message] : cases) EXPECT_THAT(findQuantities(test.sim, list, found), HasSubstr(message));
}

TEST(cellTable, givesEverySingleBackToTheBit) {
    std::uint32_t bits = 1;
    for (int k = 0; k < 20000; ++k) {
        bits = bits * 1664525u + 1013904223u;
        const float value = std::bit_cast<float>(bits);
        std::string text;
        appendNineDigits(text, double(value));
        if (value != value)
            EXPECT_EQ(text, "nan");
        else
            ASSERT_EQ(std::bit_cast<std::uint32_t>(std::strtof(text.c_str(), nullptr)), bits) << text;
    }
    EXPECT_EQ(csvField("a,\"b\""), "\"a,\"\"b\"\"\"");
}

TEST(cellTable, namesEachCellAndASheetHasTheValueAtItsAddress) {
    TestProgram test;
    test.build(layers);
    std::vector<NamedQuantity> quantities;
    ASSERT_EQ(findQuantities(test.sim, "T,u,c1", quantities), "");
    const std::vector<std::int32_t> cells = {6, 12};
    EXPECT_EQ(cellTable(test.sim, cells, quantities), "cell,address,x [m],y [m],z [m],T [K],u (upper face) [m/s],c1\r\n"
                                                      "6,B7,0.0199999996,0.00499999989,0.0149999997,600,0,0\r\n"
                                                      "12,B11,0.0199999996,0.0149999997,0.0249999994,300,0,0.25\r\n");
    const auto textOf = [&](std::int32_t cell) { return std::to_string(cell); };
    const std::vector<std::string> rows = split(inShapeOfDrawing(test.sim, LayerMarks::asDrawn, textOf), '\n');
    EXPECT_THAT(rows, testing::ElementsAre("\t", "\t", "L\t", "1\t2", "3\t4", "L\t", "5\t6", "7\t8", "L\t", "9\t10",
                                           "11\t12", "L\t", ""));
}

TEST(probes, haveAColumnForEachQuantityAndWeighAsTheyAreNamed) {
    TestProgram test;
    test.build(layers);
    const std::vector<NamedRange> labels = {{"front", "A4:B5"}};
    std::vector<Probe> probes;
    EXPECT_EQ(parseProbe(test.sim, "b7:T,u1", labels, probes), "");
    EXPECT_EQ(parseProbe(test.sim, "a7:b7:mean(t),VOLMEAN(T),massmean(T),min(T,p),max(T),sum(volume)", labels, probes),
              "");
    EXPECT_EQ(parseProbe(test.sim, "front:T", labels, probes), "");
    EXPECT_EQ(parseProbe(test.sim, "front:mean(p)", labels, probes), "");
    EXPECT_EQ(parseProbe(test.sim, "B7:T", labels, probes), "") << "once is enough";
    EXPECT_EQ(probeHeader(probes),
              "step,time [s],B7:T [K],B7:u [m/s],A7:B7:mean(T) [K],A7:B7:volmean(T) [K],A7:B7:massmean(T) [K],"
              "A7:B7:min(T) [K],A7:B7:min(p) [Pa],A7:B7:max(T) [K],A7:B7:sum(volume) [m3],"
              "A4:T [K],B4:T [K],A5:T [K],B5:T [K],front:mean(p) [Pa]\r\n");
    std::vector<double> values;
    test.sim.stepCount = 3;
    EXPECT_THAT(probeRow(test.sim, probes, values), testing::StartsWith("3,2.99999992e-05,600,0,450,500,450,300,"));
    EXPECT_EQ(values[9], 300) << "the volume of the hot cell is twice that of the other, its mass is the same";
}

TEST(probes, thatCannotBeReadAreToldWhatIsWrong) {
    TestProgram test;
    test.build(layers);
    const std::vector<std::array<std::string, 2>> cases = {
        {"", "it is not ADDRESS:QUANTITIES"},
        {"A4", "it is not ADDRESS:QUANTITIES"},
        {":T", "it is not ADDRESS:QUANTITIES"},
        {"A4:", "it is not ADDRESS:QUANTITIES"},
        {"A3:T", "there is no cell A3; the cells of the drawing are A4 to B11"},
        {"A6:T", "there is no cell A6"},
        {"C4:T", "there is no cell C4"},
        {"wall:T", "\"wall\" is no address"},
        {"A4:B5", "\"B5\" is no quantity"},
        {"A4:T,", "\"\" is no quantity"},
        {"A4:meen(T)",
         "\"meen\" is no function of cells, which are mean, volmean, massmean, min, max, sum. Did you mean \"mean\"?"},
        {"A4:mean(T", "\"mean(T\" lacks its closing bracket"},
        {"A4:mean()", "\"\" is no quantity"},
        {"A4:B5:C6:T", "is no address"},
    };
    for (const auto& [text, message] : cases) {
        std::vector<Probe> probes;
        EXPECT_THAT(parseProbe(test.sim, text, {}, probes), HasSubstr(message)) << text;
    }
    std::vector<Probe> probes;
    test.build("DT 1" + std::string(600, '\t') + "\nL\n\nL");
    EXPECT_THAT(parseProbe(test.sim, "A3:WC3:T,p", {}, probes), HasSubstr("more than 1000 columns"));
}

TEST(rowFile, findsTheLastWholeRowAndCutsWhatFollows) {
    TestProgram test;
    RowFile file{"rows.csv", "step,time [s],\"a,b\"\r\n"};
    RowFileContent content;
    ASSERT_TRUE(beginRows(file) && lookAt(file, content));
    EXPECT_TRUE(content.isSame && content.lastStep == -1);
    for (int step = 0; step < 40; ++step) ASSERT_TRUE(addRow(file, std::to_string(step) + ",0.5,1.25\r\n"));
    const std::string whole = test.read("rows.csv");
    test.write("rows.csv", whole + "40,0.");
    ASSERT_TRUE(lookAt(file, content));
    EXPECT_EQ(content.lastStep, 39);
    EXPECT_EQ(content.wholeBytes, file.length);
    ASSERT_TRUE(goOnBehind(file, content.wholeBytes));
    EXPECT_EQ(test.read("rows.csv"), whole);
    for (const char* other : {"step,time [s],c\r\n0,0,0\r\n", "notes", ""}) {
        test.write("rows.csv", other);
        ASSERT_TRUE(lookAt(file, content));
        EXPECT_FALSE(content.isSame);
        EXPECT_EQ(content.isTable, *other == 's');
        EXPECT_EQ(content.exists, *other != '\0');
    }
}

} // namespace
} // namespace norvane
