// Verification cases: what their expressions give, what is refused, and which state is compared.

#include "support/test_program.h"
#include "verify/case_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace norvane {
namespace {

using testing::HasSubstr;

/// Four cells in two rows, of 1 and 3 m along dimension 1; nothing moves.
const char* const square =
    "DT 0.5:NT 2:RH 1:TT 300:PP 1E5:ET 0:LA 0\t\nL\t\nTT 301:WV 0;2:DD -1;1\tTT 302:WV 0;2:DD -1;3\n"
    "TT 303:WV 0;2\tTT 304:WV 0;2\nL\t\n";

const std::string beginning = "title a case\ngrid one\n  drawing m.gmt\n  with N = 4\n  cells row = A3:B3\n";

struct Verified {
    CaseFault fault;
    CaseResult result;
};

/// Reads and runs a case that lies beside its drawing.
Verified outcomeOf(TestProgram& test, const std::string& drawing, const std::string& text) {
    test.write("m.gmt", drawing);
    test.write("case.txt", text);
    Verified outcome;
    Case verified;
    outcome.fault = readCase(test.folder.string(), verified);
    if (outcome.fault.text.empty()) outcome.result = runCase(verified, {});
    return outcome;
}

TEST(verifyExpressions, giveNumbersOfCellsTablesAndCounters) {
    const std::pair<const char*, double> expected[] = {
        {"2 + 3 * 4 - 8 / 2 / 2", 12},
        {"-2 ^ 2 + 2 ^ 3 ^ 2 + 2 ^ -1", -4 + 512 + 0.5},
        {"(1 < 2) + (2 <= 1) + (1 != 1 | 3 > 2 & !0)", 2},
        {"if(N == 4, 10, 1 / 0)", 10},
        {"sum(cells, T)", 1210},
        {"mean(row, T) + largest(A4, T) + smallest(B3:B4 where T > 302.5, T)", 301.5 + 303 + 304},
        {"rms(cells where j == 0, x + dx)", std::sqrt((1 + 16) / 2.0)},
        {"first(cells, x) + last(cells, x)", 1},
        {"sum(cells where i == 0, along(cells where i == 1, j, T, j) - T)", 2},
        {"along(cells where j == 0, x, T, 0.25)", 301.25},
        {"sum(known, y * along(row, x, T, y))", 0.5 * 301.5 + 302},
        {"largest(known where y > 0, value)", 7},
        {"along(known, y, value, 0.75)", 5},
        {"series(m, 1, 4, m ^ 2) + series(x, 1, N, x * mean(cells, x))", 30 + 5},
        {"root(q, 0, 2, q ^ 2 - 2) ^ 2", 2},
        {"t + dt + n", 1 + 0.5 + 2},
        {"twice + largest(cells, hot) - largest(path, value)", 8 + 1 - 2},
        {"sum(path, n)", 2},
    };
    std::string text = beginning + "table known y value\n 1 3\n .5 7\nlet twice = 2 * N\nlet hot = T > 303\n"
                       + "record path every 2 = n\n";
    for (const auto& [expression, value] : expected)
        text += std::string("check ") + expression + "\n measure " + expression + "\n";
    TestProgram test;
    const Verified outcome = outcomeOf(test, square, text);
    ASSERT_EQ(outcome.fault.text + outcome.result.fault.text, "");
    ASSERT_EQ(outcome.result.checks.size(), std::size(expected));
    for (std::size_t k = 0; k < std::size(expected); ++k) {
        const GridFigure& figure = outcome.result.checks[k].figures.at(0);
        EXPECT_EQ(figure.fault, "") << expected[k].first;
        EXPECT_NEAR(figure.value, expected[k].second, 1e-9) << expected[k].first;
    }
}

TEST(verifyExpressions, thatCannotBeWorkedOutFailTheCheckAndSayWhy) {
    const std::pair<const char*, const char*> expected[] = {
        {"T", "value of a cell"},
        {"mean(A1, T)", "no cells A1"},
        {"mean(Z99:B3, T)", "no cells Z99"},
        {"mean(cells where T > 1000, T)", "no cell meets"},
        {"along(row, x, T, 5)", "beyond"},
        {"series(m, 1, 1e9, m)", "100000"},
        {"root(q, 1, 2, q)", "same sign"},
        {"series(a, 1, 9e4, series(b, 1, 9e4, a * b))", "too long"},
        {"0 / 0", ""},
    };
    std::string text = beginning;
    for (const auto& [expression, fault] : expected) text += std::string("check c\n measure ") + expression + "\n";
    TestProgram test;
    const Verified outcome = outcomeOf(test, square, text);
    ASSERT_EQ(outcome.fault.text + outcome.result.fault.text, "");
    EXPECT_FALSE(outcome.result.passes);
    for (std::size_t k = 0; k < std::size(expected); ++k) {
        EXPECT_THAT(outcome.result.checks[k].figures.at(0).fault, HasSubstr(expected[k].second));
        EXPECT_FALSE(outcome.result.checks[k].passes) << expected[k].first;
    }
}

TEST(verifyCases, nameTheLineThatIsWrong) {
    const std::pair<std::string, const char*> expected[] = {
        {"check c\n measure 1 +\n", "line 7: \"1 +\": it breaks off"},
        {"check c\n measure sin(1\n", "line 7"},
        {"check c\n measure a\n", "\"a\" is no name"},
        {"check c\n measure 1 2\n", "can't follow"},
        {"check c\n measure " + std::string(300, '(') + "\n", "nested too deeply"},
        {"check c\n measure 1" + std::string(5000, '+') + "\n", "too long"},
        {"check c\n", "a title and a measure"},
        {"check c\n measure 1\n within 1, 2\n", "one for each"},
        {"check c\n measure 1\n order 1, 2 with M\n", "\"M\" is no name"},
        {"check c\n measure 1\n run fast\n", "line 8"},
        {"let T = 1\n", "line 6: \"T\" is no name, or"},
        {"let N = 1\n", "given twice"},
        {"let a = b\nlet b = 1\n", "line 6"},
        {"table list a b\n1 2\n3\n", "line 8: a row has a number for each column"},
        {"table list a\n1x\n", "is no number"},
        {"record r every 0 = 1\n", "line 6"},
        {"grid two\n drawing m.gmt\n", "the same names"},
        {"colour red\n", "line 6: \"colour\""},
        {std::string("check \0\n", 8), "no text"},
        {"", "no check"},
    };
    for (const auto& [rest, message] : expected) {
        TestProgram test;
        const Verified outcome = outcomeOf(test, square, beginning + rest);
        EXPECT_THAT(outcome.fault.text, HasSubstr(message)) << rest.substr(0, 80);
        EXPECT_FALSE(outcome.fault.isOfFile);
    }
    Case verified;
    EXPECT_TRUE(readCase("/no/such/folder", verified).isOfFile);
}

TEST(verifyCases, ofAnyBytesAreReadOrRefused) {
    const std::string whole =
        beginning
        + "table k y v\n1 2\n2 3\nlet a = series(m, 1, 3, m * N)\nrecord r every 2 = mean(cells, T)\n"
          "profile p = cells where i > 0, x, T, a\ncheck c\n kind discrete\n"
          " measure largest(k, abs(along(row, x, T, y) - v)) + root(q, 0, 2, q - 1)\n"
          " within 1, -\n between 0, 1\n order 1, 2 with N\n";
    TestProgram test;
    std::mt19937 random(1);
    for (int turn = 0; turn < 500; ++turn) {
        std::string bytes = whole;
        for (int change = 0; change < 1 + turn % 4; ++change) {
            const std::size_t at = random() % bytes.size();
            if (random() % 3 == 0)
                bytes.erase(at, random() % 9);
            else if (random() % 2 == 0)
                bytes[at] = static_cast<char>(random() % 256);
            else
                bytes.insert(at, bytes.substr(random() % bytes.size(), random() % 40));
        }
        test.write("case.txt", bytes);
        Case verified;
        const CaseFault fault = readCase(test.folder.string(), verified);
        ASSERT_FALSE(fault.isOfFile);
        ASSERT_TRUE(!fault.text.empty() || (!verified.grids.empty() && !verified.checks.empty()));
    }
}

/// A gas that drag slows down: after n steps the speed is G^n, G the factor of a Runge-Kutta step.
const char* const slowing = "DT 0.5:NT 4:RR 1:RH 1:TT 300:PP 1E5:ET 0:DD 0;1\nL\nWV 1;0:VV 1;1\nL\n";

TEST(verifyRuns, compareTheStateAfterTheLastWholeStepAndObserveOrders) {
    TestProgram test;
    const std::string text =
        "title drag\n"
        "grid coarse\n drawing m.gmt\n with h = 0.5\n set NT=4\n"
        "grid fine\n drawing m.gmt\n with h = 0.25\n set DT=0.25\n set NT=8\n"
        "let G = 1 - h + h ^ 2 / 2 - h ^ 3 / 6 + h ^ 4 / 24\n"
        "record path every 1 = mean(cells, u)\n"
        "check discrete\n kind discrete\n measure mean(cells, u) - G ^ n\n within 1e-6\n"
        "check each step\n measure largest(path, abs(value - G ^ n))\n within 1e-6\n"
        "check steps\n measure last(path, n) * h\n between 2, 2\n"
        "check continuous\n measure mean(cells, u) - exp(-2)\n within 1e-3, -\n order 4, 4.6 with h\n"
        "check missed\n measure mean(cells, u) - exp(-2)\n within 1e-9\n"
        "check told\n measure 5\n";
    const Verified outcome = outcomeOf(test, slowing, text);
    ASSERT_EQ(outcome.fault.text + outcome.result.fault.text, "");
    const std::vector<CheckResult>& checks = outcome.result.checks;
    ASSERT_EQ(checks.size(), 6u);
    for (const std::size_t k : {0, 1, 2, 3, 5}) EXPECT_TRUE(checks[k].passes) << k;
    EXPECT_FALSE(checks[4].passes);
    EXPECT_FALSE(outcome.result.passes);
    EXPECT_FALSE(checks[5].isJudged);
    EXPECT_FALSE(checks[3].figures[0].order.has_value());
    EXPECT_NEAR(checks[3].figures[1].order.value_or(0), 4.3, 0.3);
}

TEST(verifyRuns, thatEndEarlyFailAndThoseThatCannotBeginAreFaults) {
    TestProgram test;
    const std::string check = "check c\n measure 0\n within 1\n";
    const char* const torn = "DT 1:NT 50:DD 1;0.01\t\t\nL\t\t\nPP 1E6\tPP 1\tPP 1\nL\t\t\n";
    const Verified ended = outcomeOf(test, torn, beginning.substr(0, 37) + "\n" + check);
    EXPECT_EQ(ended.result.fault.text, "");
    EXPECT_FALSE(ended.result.passes);
    EXPECT_THAT(ended.result.checks.at(0).figures.at(0).fault, HasSubstr("negative density"));
    const Verified missing = outcomeOf(test, square, "title a\ngrid g\n drawing other.gmt\n" + check);
    EXPECT_TRUE(missing.result.fault.isOfFile);
    EXPECT_THAT(missing.result.fault.text, HasSubstr("other.gmt"));
    const Verified noGrid = outcomeOf(test, "no table", "title a\ngrid g\n drawing m.gmt\n" + check);
    EXPECT_FALSE(noGrid.result.fault.isOfFile);
    EXPECT_THAT(noGrid.result.fault.text, HasSubstr("m.gmt"));
    const Verified wrongChange = outcomeOf(test, square, "title a\ngrid g\n drawing m.gmt\n set Z99=TT 1\n" + check);
    EXPECT_THAT(wrongChange.result.fault.text, HasSubstr("Z99"));
}

} // namespace
} // namespace norvane
