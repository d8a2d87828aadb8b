// Tables and probes of the command line: what a run leaves is whole, and nothing of value is replaced.

#include "support/run_program.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

namespace norvane {
namespace {

using testing::HasSubstr;

/// A closed cavity of 4 x 4 cells with a hot column, of a gas that conducts well.
std::string cavity(const std::string& keys) {
    std::string table = keys + "\tDD 0;0.01:LA 30\tTT 300\t\nL\t\t\t\n";
    for (int row = 0; row < 4; ++row) table += "TT 310:WT -1:WV 0;2\t\t\t\n";
    return table + "L\t\t\t";
}

int linesOf(const std::string& text) { return static_cast<int>(std::count(text.begin(), text.end(), '\n')); }

TEST(tables, refuseWhatCannotBeExportedBeforeTheyWrite) {
    TestProgram test;
    test.write("m.gmt", cavity("DT 1E-5"));
    const std::vector<std::array<std::string, 2>> cases = {
        {"--csv x.csv --quantity T,tt", "\"tt\" is no quantity"},
        {"--csv x.csv --line C7:T30", "--line C7:T30: there is no cell C7"},
        {"--csv x.csv --line A3:B4", "it is a rectangle"},
        {"--csv x.csv --cells A3,", "\"\" is no address"},
        {"--csv x.csv --cells left", "no label"},
        {"--csv x.csv --region A3=A3:A4", "is the address of a cell"},
        {"--csv x.csv --slice 3=0", "a dimension of 1 to 2"},
        {"--csv x.csv --slice 1=4", "has the slices 0 to 3"},
        {"--csv x.csv --slice 1=0 --slice 1=1", "no cell is left"},
        {"--csv x.csv --slice 1=-1", "has the slices 0 to 3"},
        {"--sheet", "--sheet"},
        {"--sheet warmth", "\"warmth\" is no quantity"},
        {"--csv m.gmt", "m.gmt: this command writes a file of that name"},
        {"--csv x.csv -o y.csv", "leave -o out"},
    };
    for (const auto& [options, message] : cases) {
        const Outcome outcome = runProgram("export m.gmt " + options);
        EXPECT_EQ(outcome.status, 2) << options;
        EXPECT_THAT(outcome.out, HasSubstr(message)) << options;
    }
    EXPECT_FALSE(test.exists("x.csv"));
    EXPECT_EQ(runProgram("export m.gmt --csv none/x.csv").status, 4);
    EXPECT_EQ(runProgram("export m.gmt --csv - > /dev/full").status, 4);
    EXPECT_EQ(runProgram("export m.gmt --csv - --slice 1=0 --slice 2=3 --quantity T").out,
              "cell,address,x [m],y [m],T [K]\r\n13,A6,0.00499999989,0.0349999992,310\r\n");
    EXPECT_EQ(runProgram("export m.gmt --csv - --cells row,D6 --region row=B3:A3 --quantity c0").out,
              "cell,address,x [m],y [m],c0\r\n2,B3,0.0149999997,0.00499999989,1\r\n1,A3,0.00499999989,0.00499999989,1"
              "\r\n16,D6,0.0349999992,0.0349999992,1\r\n");
    test.write("s", "precious");
    EXPECT_EQ(runProgram("spectrum m.gmt --points 3 -o s").status, 0);
    EXPECT_EQ(linesOf(test.read("s")), 4);
    EXPECT_FALSE(test.exists("NV_spectrum"));
}

TEST(probesOfARun, haveARowAtTheStartAtEachIntervalAndAtTheEnd) {
    TestProgram test;
    test.write("m.gmt", cavity("DT 1E-5:NT 25"));
    EXPECT_EQ(runProgram("run m.gmt --probe B4:T --probe 'hot:mean(T)' --region hot=A3:A6").status, 0);
    const std::string first = test.read("m_probes.csv");
    EXPECT_THAT(first,
                testing::StartsWith("step,time [s],B4:T [K],hot:mean(T) [K]\r\n0,0,300,310\r\n10,9.99999975e-05,"));
    EXPECT_THAT(first, HasSubstr("\r\n25,0.000249999994,"));
    EXPECT_EQ(linesOf(first), 5);
    test.write("m.probes", "\xEF\xBB\xBF# of the drawing\r\n\r\nevery 5\r\n  D6:T,p\t\r\n");
    const Outcome both = runProgram("run m.gmt --probe B4:T --save");
    EXPECT_THAT(both.out, HasSubstr("m_probes.csv"));
    EXPECT_THAT(test.read("m_probes.csv"), testing::StartsWith("step,time [s],D6:T [K],D6:p [Pa],B4:T [K]\r\n"));
    EXPECT_EQ(linesOf(test.read("m_probes.csv")), 7);

    EXPECT_EQ(runProgram("run m.gmt --recall --save --probe B4:T").status, 0);
    const std::string longer = test.read("m_probes.csv");
    EXPECT_EQ(linesOf(longer), 12);
    EXPECT_THAT(longer, testing::ContainsRegex("\r\n25,[^\n]*\n30,[^\n]*\n"));
    const Outcome otherColumns = runProgram("run m.gmt --recall");
    EXPECT_EQ(otherColumns.status, 2);
    EXPECT_THAT(otherColumns.out, HasSubstr("m_probes.csv has other columns"));
    test.write("m_probes.csv", longer + "60,0,0,0,0\r\n");
    EXPECT_THAT(runProgram("run m.gmt --recall --probe B4:T").out,
                HasSubstr("rows up to step 60, and the saved state is of step 50"));
    test.write("m_probes.csv", longer.substr(0, longer.find("45,")));
    EXPECT_THAT(runProgram("run m.gmt --recall --probe B4:T").out, HasSubstr("so that rows are missing"));
    test.write("m_probes.csv", "notes");
    EXPECT_EQ(runProgram("run m.gmt").status, 2);
    EXPECT_EQ(test.read("m_probes.csv"), "notes");
    EXPECT_EQ(runProgram("run m.gmt --no-probes").status, 0);
}

TEST(probesOfARun, thatCannotBeMadeEndTheCommandBeforeTheRun) {
    TestProgram test;
    test.write("m.gmt", cavity("DT 1E-5:NT 25"));
    test.write("list", "--probe B4:T\n--probe C9:T\n");
    std::filesystem::create_directory("n_probes.csv");
    const std::vector<std::array<std::string, 2>> cases = {
        {"--probe C9:T", "--probe C9:T: there is no cell C9"},
        {"--probe C4:velocty", "Did you mean"},
        {"--probe-every 5", "--probe-every needs a --probe"},
        {"--probe-every 0 --probe C4:T", "--probe-every"},
        {"--until-steady 0.1", "there is nothing to watch; add --probe C7:T,p or --balance N"},
        {"--until-steady 0 --probe C4:T", "no number above 0"},
        {"--window 1 --probe C4:T", "--window requires --until-steady"},
        {"--name n --probe C4:T", "n_probes.csv can't be"},
        {"@list", "--probe C9:T: there is no cell C9"},
        {"@none", "none: it can't be read"},
    };
    for (const auto& [options, message] : cases) {
        const Outcome outcome = runProgram("run m.gmt " + options);
        EXPECT_EQ(outcome.status, 2) << options;
        EXPECT_THAT(outcome.out, HasSubstr(message)) << options;
    }
    const std::vector<std::array<std::string, 2>> lists = {
        {"B4:T\nevery 0\n", "m.probes, line 2, every 0: "},
        {"# nothing\n", "m.probes names no probe"},
        {std::string("B4:\0T", 5), "m.probes: line 1 holds control characters"},
        {std::string(1100000, 'x'), "m.probes: it is longer than 1 MB"}};
    for (const auto& [list, message] : lists) {
        test.write("m.probes", list);
        EXPECT_THAT(runProgram("run m.gmt").out, HasSubstr(message));
    }
    EXPECT_FALSE(test.exists("m_out") || test.exists("m_probes.csv"));
}

TEST(probesOfARun, haveWholeRowsAfterKillsAndOnAFullDisc) {
    TestProgram test;
    test.write("m.gmt", cavity("DT 1E-6:NT -1:UT 0"));
    for (int kill = 0; kill < 10; ++kill) {
        std::filesystem::remove("m_probes.csv");
        const pid_t process = ::fork();
        if (process == 0) {
            ::execl(NORVANE_PROGRAM, NORVANE_PROGRAM, "run", "-q", "m.gmt", "--probe", "A3:D6:T,p", "--probe-every",
                    "1", nullptr);
            ::_exit(127);
        }
        for (int turn = 0; turn < 1000 && test.read("m_probes.csv").size() < 5000; ++turn)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        std::this_thread::sleep_for(std::chrono::microseconds(700 * kill));
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
        std::string rows = test.read("m_probes.csv");
        ASSERT_NE(rows.find('\n'), std::string::npos);
        rows.resize(rows.rfind('\n') + 1); // a kill within a write may leave a part of the last row
        int step = 0;
        for (std::size_t at = rows.find('\n') + 1; at < rows.size(); at = rows.find('\n', at) + 1, ++step) {
            const std::string row = rows.substr(at, rows.find('\n', at) - at);
            ASSERT_EQ(std::count(row.begin(), row.end(), ','), 33) << row;
            ASSERT_EQ(row.substr(0, row.find(',')), std::to_string(step));
        }
    }
    const Outcome full = runProgram("run m.gmt --set NT=100 --probe A3:D6:T,p --probe-every 1", "ulimit -f 8;");
    EXPECT_EQ(full.status, 4);
    EXPECT_THAT(full.out, HasSubstr("The probes m_probes.csv can't be written: File too large"));
    EXPECT_THAT(full.out, testing::ContainsRegex("[0-9]+ rows of m_probes.csv are missing"));
    EXPECT_EQ(test.read("m_probes.csv").back(), '\n');
}

TEST(steadyRun, endsWhenTheCavityHasTheTemperatureOfItsWall) {
    TestProgram test;
    test.write("m.gmt", cavity("DT 1E-5:NT 1000000:UT 0"));
    const std::string probes = " --probe D6:T,u --probe 'B3:D6:mean(p)' --probe-every 2 --until-steady ";
    const Outcome steady = runProgram("run m.gmt --summary s.json" + probes + "1E-5");
    EXPECT_EQ(steady.status, 0) << steady.out;
    EXPECT_THAT(steady.out, HasSubstr(": the run is steady: for "));
    EXPECT_THAT(test.read("s.json"), HasSubstr("\"end\": \"steady\""));
    const std::string rows = test.read("m_probes.csv");
    const std::string last = rows.substr(rows.rfind('\n', rows.size() - 2) + 1);
    const double temperature = std::stod(last.substr(last.find(',', last.find(',') + 1) + 1));
    EXPECT_NEAR(temperature, 310, 0.05);
    const Outcome early = runProgram("run m.gmt --set NT=400 --window 0.002" + probes + "1E-5");
    EXPECT_EQ(early.status, 0);
    EXPECT_THAT(early.out,
                testing::ContainsRegex(
                    "Steady: no; over the last 0.002 s moved by more than 0.00001 of the mean:\n *.*moved by "));
    EXPECT_THAT(runProgram("run m.gmt --set NT=50" + probes + "1E-5").out,
                HasSubstr("Steady: not known; the rows are fewer"));
}

TEST(steadyRun, thatIsResumedEndsAtTheSameStepWithTheSameRows) {
    TestProgram test;
    test.write("m.gmt", cavity("DT 1E-5:NT 1000000:UT 0"));
    const std::string options =
        "run -q m.gmt --probe D6:T,p --probe 'B3:D6:massmean(T)' --probe-every 3 --until-steady 1E-3 "
        "--checkpoint-every 500 ";
    const Outcome whole = runProgram(options + "-o whole --summary whole.json");
    if (whole.status == 2) GTEST_SKIP() << whole.out;
    ASSERT_EQ(whole.status, 0) << whole.out;
    const std::string rows = test.read("whole/m_probes.csv");
    for (int kill = 0; kill < 5; ++kill) {
        std::filesystem::remove_all("cut");
        runProgram(options + "-o cut & run=$!; until test -e cut/m_checkpoint.nc; do sleep 0.01; done; sleep 0.0"
                   + std::to_string(1 + 2 * kill) + "; kill -9 $run; wait $run");
        const Outcome resumed = runProgram(options + "-o cut --resume --summary cut.json");
        ASSERT_EQ(resumed.status, 0) << resumed.out;
        EXPECT_TRUE(test.read("cut/m_probes.csv") == rows) << "kill " << kill;
        const auto steady = [&](const char* name) {
            const std::string text = test.read(name);
            return text.substr(text.find("\"steady\": {"), 150);
        };
        EXPECT_EQ(steady("cut.json"), steady("whole.json"));
    }
}

TEST(optionFile, givesARunItsOptionsLineByLine) {
    TestProgram test;
    test.write("m.gmt", cavity("DT 1E-5:NT 25"));
    test.write("list", "# a run\n--set NT=3\n--set B4=TT 400:PP 2E5\n--probe B4:T\n-o my runs\n--save\n");
    EXPECT_EQ(runProgram("run @list m.gmt").status, 0);
    EXPECT_THAT(test.read("my runs/m_probes.csv"), HasSubstr("\n0,0,400\r\n3,"));
    EXPECT_TRUE(test.exists("my runs/m_state"));
    test.write("@odd.gmt", cavity("DT 1E-5:NT 1"));
    EXPECT_EQ(runProgram("run @odd.gmt").status, 0) << "a geometry";
    const std::vector<std::array<std::string, 2>> cases = {
        {"--quiet\n--stpes 5", "list, line 2: norvane run: there is no option \"--stpes\""},
        {"@list", "list, line 1: a file of options names no other one"},
        {"--set C4=\"TT 400\"", "list, line 1: leave the quotes out"},
        {"\x1b[2J", "list: line 1 holds control characters"},
    };
    for (const auto& [list, message] : cases) {
        test.write("list", list);
        const Outcome outcome = runProgram("run m.gmt @list");
        EXPECT_EQ(outcome.status, 2) << list;
        EXPECT_THAT(outcome.out, HasSubstr(message)) << list;
    }
}

} // namespace
} // namespace norvane
