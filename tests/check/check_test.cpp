// A check finds what a person did not mean, names the cell, and leaves good tables alone.

#include "check/checkup.h"
#include "check/model_rules.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <utility>

namespace norvane {
namespace {

using testing::Contains;
using testing::IsEmpty;

constexpr int columns = 20;

/// A duct that runs to the right, with a leg down: the drawing that the mistakes are made in.
struct Tee {
    std::string defaults =
        "DT 1E-5:NT 4000\tUT 500:TR 500\tDD 0;0.01\tTT 300:PP 101300\tRH 1.18:CP 1005\tET 0.01:LA 10\t"
        "SW 2:SI 0:SA 20";
    std::string inlet = "VV 1;10:WV 1;-2:WP 1:WT -1";
    std::string outlet = "WP -1:WV 1;0";
    std::string bottom = "WP -1:WV 2;0";
    std::string cell; ///< G6, in the duct
    std::string firstL = "L";
    std::string lastL = "L";
    std::string end;

    Tee with(std::string Tee::*part, const std::string& text) const {
        Tee tee = *this;
        tee.*part = text;
        return tee;
    }

    std::string padded(const std::string& row) const {
        return row
               + std::string(static_cast<std::size_t>(columns - 1 - std::count(row.begin(), row.end(), '\t')), '\t');
    }

    std::string text() const {
        std::string table = padded(defaults) + "\n" + padded(firstL) + "\n";
        for (int y = 0; y < 12; ++y)
            for (int x = 0; x < columns; ++x) {
                const bool isDuct = y >= 1 && y <= 4;
                const bool isLeg = y >= 5 && x >= 8 && x <= 11;
                if (!isDuct && !isLeg) table += "WV 0;2";
                if (isDuct && x == 0) table += inlet;
                if (isDuct && x == columns - 1) table += outlet;
                if (y == 11 && isLeg) table += bottom;
                if (y == 3 && x == 6) table += cell;
                table += x + 1 < columns ? '\t' : '\n';
            }
        return table + padded(lastL) + end;
    }
};

/// "RULE ADDRESS" of all findings of a table.
std::vector<std::string> rulesOf(const std::string& table) {
    const TestProgram test;
    test.write("m.gmt", table);
    std::vector<std::string> rules;
    for (const Finding& finding : checkGeometry((test.folder / "m.gmt").string()).findings.list)
        rules.push_back(std::string(finding.rule) + " " + spreadsheetAddress(finding.place));
    return rules;
}

TEST(check, findsMistakesInTheTextOfACell) {
    const std::vector<std::pair<std::string, std::string>> cases = {{"TT 3oo", "number-breaks-off G6"},
                                                                    {"TT 10 000", "number-breaks-off G6"},
                                                                    {"CP 1;5", "number-breaks-off G6"},
                                                                    {"TT=400", "missing-number G6"},
                                                                    {"TT\xC2\xA0"
                                                                     "400",
                                                                     "missing-number G6"},
                                                                    {"TT: 400", "missing-number G6"},
                                                                    {"VV 10", "missing-index G6"},
                                                                    {"VV 1,10", "missing-index G6"},
                                                                    {"VV 1:10", "missing-index G6"},
                                                                    {"VV1=10", "missing-index G6"},
                                                                    {"VV 1 VV 2;5", "missing-index G6"},
                                                                    {"VV 3;10", "no-such-index G6"},
                                                                    {"CC 2;0.1", "no-such-index G6"},
                                                                    {"TT 126,85 \xC2\xB0"
                                                                     "C",
                                                                     "unit-not-read G6"},
                                                                    {"PP 1 bar", "unit-not-read G6"},
                                                                    {"SHUTTER", "key-inside-word G6"},
                                                                    {"TTT 400", "key-inside-word G6"},
                                                                    {"VW 1;-2", "unknown-key G6"},
                                                                    {"TX 400", "unknown-key G6"},
                                                                    {"RH 2700", "key-not-here G6"},
                                                                    {"DT 1E-6", "key-not-here G6"},
                                                                    {"NS 2", "key-not-here G6"},
                                                                    {"TT 300:TT 400", "given-twice G6"},
                                                                    {"WP 1e6", "limited G6"},
                                                                    {"TT 0", "not-positive G6"},
                                                                    {"DD 1;-0.1", "not-positive G6"},
                                                                    {"LA -1", "negative G6"},
                                                                    {"TT 20", "celsius G6"},
                                                                    {"WV 1;-1", "code-without-velocity G6"},
                                                                    {"WV 0;-1", "code-without-velocity G6"},
                                                                    {"WV 0;3", "no-such-choice G6"},
                                                                    {"PP 1E400", "not-finite G6"},
                                                                    {"TT \xE2\x88\x92"
                                                                     "5",
                                                                     "missing-number G6"},
                                                                    {"wall", "remark G6"},
                                                                    {"CP 2000", "heat-capacity G5"},
                                                                    {"WC 1", "no-reaction G6"}};
    for (const auto& [text, rule] : cases) {
        Tee tee;
        tee.cell = text;
        EXPECT_THAT(rulesOf(tee.text()), Contains(rule)) << text;
    }
}

TEST(check, findsMistakesInDefaultsAndModel) {
    const std::vector<std::pair<Tee, std::string>> cases = {
        {Tee().with(&Tee::defaults, "dt=1e-5\tDD 0;0.01"), "missing-number A1"},
        {Tee().with(&Tee::defaults, "DT 1E-5\tOUTLET"), "key-inside-word B1"},
        {Tee().with(&Tee::defaults, "STUDY\tDT 1E-5"), "key-inside-word A1"},
        {Tee().with(&Tee::defaults, "DT 1E-5\tWP 1"), "key-not-here B1"},
        {Tee().with(&Tee::defaults, "DT 1E-5\tDT 2E-5"), "given-twice B1"},
        {Tee().with(&Tee::defaults, "DT 1E-5\tNT 1E15"), "limited B1"},
        {Tee().with(&Tee::defaults, "DT 1E-5\tRH 0"), "not-positive B1"},
        {Tee().with(&Tee::defaults, "DT 1E-3\tRH 1.18"), "step-too-large C5"},
        {Tee().with(&Tee::defaults, "DT 1E-9\tRH 1.18"), "step-too-small C5"},
        {Tee().with(&Tee::defaults, "DT 1E-5\tDD 0;1"), "step-too-small C5"},  // in cm
        {Tee().with(&Tee::defaults, "NT 4000\tRH 1.18"), "step-too-large C5"}, // no DT
        {Tee().with(&Tee::defaults, "DT 1E-5\tSI 300:SA 600"), "one-colour "},
        {Tee().with(&Tee::defaults, "DT 1E-5\tPP 1.013"), "faster-than-sound A4"},
        {Tee().with(&Tee::defaults, "DT 1E-5:LT 5\tRH 1.18"), "log-in-wall E14"},
        {Tee().with(&Tee::inlet, "VV 1;10:WP 1"), "velocity-not-imposed A4"},
        {Tee().with(&Tee::inlet, "VV 1;10:WV 1;-2"), "inlet-not-held A4"},
        {Tee().with(&Tee::outlet, "").with(&Tee::bottom, ""), "no-outlet A4"},
        {Tee().with(&Tee::outlet, "WP 1:WV 1;-2:VV 1;-10"), "face-without-neighbour T4"},
        {Tee().with(&Tee::inlet, "VV 1;10:WV 1;-2:WP 1"), "inlet-cools A4"},
        {Tee().with(&Tee::outlet, "WP -1"), "outlet-brakes T4"},
        {Tee().with(&Tee::defaults, "NT -1\tDT 1E-5"), "endless "},
        {Tee().with(&Tee::defaults, "NS 1,5\tDT 1E-5"), "not-whole A1"},
        {Tee().with(&Tee::defaults, "NS 2\tDT 1E-5").with(&Tee::cell, "CC 1;0.7 CC 2;0.5"), "fractions-above-1 G6"}};
    for (const auto& [tee, rule] : cases)
        EXPECT_THAT(rulesOf(tee.text()), Contains(rule)) << tee.defaults << tee.inlet << tee.outlet;
    EXPECT_THAT(rulesOf("HH 1;1\t\nL\t\nHH 2;0.5\t\nHH 1;2\t\nL\t"), Contains("overwritten A3"));
}

TEST(check, findsFaultsOfTheFrame) {
    const std::vector<std::pair<Tee, std::string>> cases = {
        {Tee().with(&Tee::firstL, "LT 100"), "row-begins-with-l A2"},
        {Tee().with(&Tee::firstL, "Left inlet"), "row-begins-with-l A2"},
        {Tee().with(&Tee::lastL, "\"L\""), "quoted A15"},
        {Tee().with(&Tee::lastL, "L\tTT 300"), "text-in-closing-row B15"},
        {Tee().with(&Tee::end, "\n\nnote"), "text-after-end row 17"}};
    for (const auto& [tee, rule] : cases) EXPECT_THAT(rulesOf(tee.text()), Contains(rule));
    EXPECT_THAT(rulesOf("DT 1E-5:NT 1\nL\t\n\tTT 310\nL\t"), Contains("beyond-width B3"));
    EXPECT_THAT(rulesOf("DT 1E-5\t\t\t \nL\n\tTT 310\nL"), Contains("width-of-line-1 D1"));
    EXPECT_THAT(rulesOf("NT 5;DT 1;UT 5\nL;;\n;TT 310;\nL;;"), Contains("separator "));
    EXPECT_THAT(rulesOf("L\t\n\t\nL\t\n\t\n\t\nL\t"), Contains("layer-mark row 5"));
    EXPECT_THAT(rulesOf("L\t\n\t\nL\t\n\t\n\t\nL\t"), Contains("unequal-layers row 1"));
    EXPECT_THAT(rulesOf(Tee().with(&Tee::defaults, "\"LA 5\"\tX\tDT 1E-5:NT 9:SI 0:SA 50").text()), IsEmpty());
    EXPECT_THAT(rulesOf("\tL\n\t\n\tL"), Contains("shifted "));
    EXPECT_THAT(rulesOf("L\t\n\t"), Contains("one-l-row row 1"));
    EXPECT_THAT(rulesOf("L\t\n\t\nL\t\n\n"), Contains("lines-after-end row 4"));
    EXPECT_THAT(rulesOf("NT 5  DT 1  UT 5\nL  \n  TT 310  \nL  "), Contains("separator "));
    EXPECT_THAT(rulesOf("PK\x03\x04"), Contains("no-text "));
    TestProgram test;
    test.write("v1.2.gmt", "L\n\nL");
    test.write("v1.3.gmt", "L\n\nL");
    EXPECT_EQ(checkGeometry("v1.2.gmt").findings.countOfRule.count("same-base-name"), 1u);
    test.write("v1_rad", "1 1 2 5");
    EXPECT_EQ(checkGeometry("v1.2.gmt").findings.countOfRule.count("view-factors"), 1u);
    EXPECT_FALSE(test.exists("checkstop")) << "a check writes no file";
}

TEST(check, leavesGoodTablesAlone) {
    EXPECT_THAT(rulesOf(Tee().text()), IsEmpty());
    for (const char* text :
         {"TT 400 K", "a remark", "WV 1;-1 WV 2;-1:VV 2;3", "ET 1E-4:LA 3,5", "tt 400:", "DD 1;0,01 m"}) {
        Tee tee;
        tee.cell = text;
        EXPECT_THAT(rulesOf(tee.text()), IsEmpty()) << text;
    }
    TestProgram test;
    for (const auto& entry : std::filesystem::directory_iterator(NORVANE_EXAMPLES))
        if (entry.path().extension() == ".gmt") {
            EXPECT_THAT(checkGeometry(entry.path().string()).findings.list, IsEmpty()) << entry.path();
        }
}

TEST(check, keepsOneFindingForManyCellsAlike) {
    std::string rows;
    for (int row = 0; row < 1000; ++row) rows += "TT 3oo\t\n";
    const TestProgram test;
    test.write("m.gmt", "DT 1E-6\t\nL\t\n" + rows + "L\t");
    const Findings findings = checkGeometry("m.gmt").findings;
    ASSERT_EQ(findings.countOfRule.at("number-breaks-off"), 1);
    EXPECT_THAT(findings.list, Contains(testing::Field(&Finding::count, 1000)));
    EXPECT_GE(findings.warnings, 1000);
}

/// The limits of a closed tube at rest, in s.
StableStep stableStepOf(const std::string& keys) {
    TestProgram test;
    test.build("DD 0;0.02:RH 1.2:TT 300:PP 1E5:CP 1000:" + keys + "\t\t\t\t\nL\t\t\t\t\n\t\t\t\t\nL\t\t\t\t");
    return stableStep(test.sim, 0);
}

TEST(check, limitsTheStepBySoundConductionAndFriction) {
    const double sound = std::sqrt(1e5 / 1.2);
    EXPECT_NEAR(stableStepOf("").sound.step, 2.62 * 0.02 / (2 * sound), 1e-8);
    EXPECT_NEAR(stableStepOf("LA 30").conduction.step, 2.785 / (4 * 30 / (1.2 * 1000 * 0.02 * 0.02)), 1e-6);
    EXPECT_NEAR(stableStepOf("ET 0.3:RR 24").friction.step, 2.785 / (4 * 0.3 / (1.2 * 0.02 * 0.02) + 24 / 1.2), 1e-7);
    EXPECT_EQ(stableStepOf("ET 0.3").kind(), StepLimit::sound);
    EXPECT_NEAR(suggestedStep(stableStepOf("")), 0.000081, 1e-9) << "0.9 of 90.8 us, rounded down";
}

} // namespace
} // namespace norvane
