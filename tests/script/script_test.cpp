// A script drives the whole program; what it prints is what a person would have seen.

#include "support/run_program.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace norvane {
namespace {

using testing::HasSubstr;

Outcome runScriptText(const TestProgram& test, const std::string& script) {
    test.write("s.txt", script);
    return runProgram("script s.txt");
}

const char* const table = "DT 1E-5:NT 6:UT 4:LT 3\t\t\nL\t\t\nPP 2E5\t\t\n\t\t\nL\t\t";

TEST(script, printsWhatAPersonWouldHaveSeen) {
    TestProgram test;
    test.write("m.gmt", table);
    test.write("N.GMT", "L\n\nL");
    const Outcome outcome = runScriptText(test, "\xEF\xBB\xBF# a comment\r\n"
                                                "\r\n"
                                                "  dir .  \r\n"
                                                "print NV_in.File1\n"
                                                "file m.gmt\n"
                                                "click NV_in.Command1\n"
                                                "print NV_in.Text1\n"
                                                "at 4.2 print NV_in.Text1\n"
                                                "at 5.6 close NV_in\n"
                                                "at 4.2 print NV_einde\n"
                                                "click NV_in.Command2\n"
                                                "print NV_einde\n"
                                                "click NV_einde.Command3\n"
                                                "click NV_in.Command5\n"
                                                "print NV_in.Text1\n"
                                                "set NV_dsp.zzoom(1) a\\tb\\\\\n"
                                                "print NV_dsp.zzoom(1)\n"
                                                "print NV_dsp.Dimen\n"
                                                "answer Tube\\t1\n"
                                                "click NV_dsp.Command3\n"
                                                "cancel\n"
                                                "click NV_dsp.Command3\n"
                                                "click NV_einde.Command2\n"
                                                "print NV_in\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              "NV_in.File1:  of \"N.GMT\" \"m.gmt\"\n"
              "message: You have defined the cell structure: \\r\\nD=1 : 3 Cells\\r\\nD=2 : 2 Cells\\r\\n\n"
              "NV_in.Text1:  rows: 5\\r\\n columns: 3\n"
              "shown: NV_out\n"
              "NV_in.Text1: 1\n"
              "NV_einde: hidden \"You Called?\"\n"
              "shown: NV_einde\n"
              "NV_einde: visible \"You Called?\"\n"
              "hidden: NV_einde\n"
              "NV_in.Text1: 11\n"
              "NV_dsp.zzoom(1): a\\tb\\\\\n"
              "NV_dsp.Dimen: visible -1 of\n"
              "ask: Title graph [m] -> Tube\\t1\n"
              "ask: Title graph [Tube\\t1] -> \n"
              "ended\n");
}

TEST(script, tellsTheLineOfAFaultAndEndsThere) {
    TestProgram test;
    const auto expectFault = [&](const std::string& line, const std::string& what) {
        const Outcome outcome = runScriptText(test, "print NV_in\n\n" + line + "\nprint NV_in\n");
        EXPECT_EQ(outcome.status, 2) << line;
        EXPECT_THAT(outcome.out, testing::StartsWith("NV_in: visible \"Commands\"\nscript:3: ")) << line;
        EXPECT_THAT(outcome.out, HasSubstr(what)) << line;
    };
    expectFault("dir", "no path after dir");
    expectFault("jump", "no command \"jump\"");
    expectFault("click NV_in.Command3", "no control \"NV_in.Command3\"");
    expectFault("close NV_x", "no form \"NV_x\"");
    expectFault("print NV_dsp.zzoom(4)", "no control");
    expectFault("choose NV_dsp.Combo1 11", "has no entry \"11\"");
    expectFault("choose NV_dsp.Combo1 -1", "has no entry");
    expectFault("resize NV_out 10", "a size is two whole numbers");
    expectFault("at 3 print NV_in", "a moment is written STEP.K");
    expectFault("put no/such/folder 1", "can't write \"no/such/folder\"");
    expectFault("put ../m.gmt L", "lies outside the working directory");
    EXPECT_EQ(runProgram("script none.txt").status, 2);
    test.write("a\x1B\xC2\x9Bz.gmt", "");
    EXPECT_EQ(runScriptText(test, "print NV_in.File1").out, "NV_in.File1:  of \"a\\x1b\\xc2\\x9bz.gmt\"\n");
    test.write("s.txt", "print NV_in.Text1\nend");
    EXPECT_EQ(runProgram("script s.txt > /dev/full").status, 2);
    test.write("s.txt", "put ../" + test.folder.filename().string() + ".txt 1");
    EXPECT_EQ(runProgram("script --allow-outside s.txt").status, 0);
    EXPECT_TRUE(std::filesystem::remove(test.folder.string() + ".txt"));
}

TEST(script, countsYieldsOfTheInnermostRun) {
    TestProgram test;
    test.write("m.gmt", table);
    const Outcome outcome = runScriptText(test, "file m.gmt\n"
                                                "click NV_in.Command1\n"
                                                "at 3.2 click NV_in.Command2\n"
                                                "at 3.2 print NV_in.Text1\n"
                                                "at 2.1 put checkstop 1\n"
                                                "click NV_in.Command2\n"
                                                "print NV_in.Text1\n"
                                                "put text.txt  two\\r\\n\n"
                                                "end\nprint NV_in\n");
    // Step 2 stops the first run through the file; nothing of step 3 is reached.
    EXPECT_THAT(outcome.out, testing::EndsWith("shown: NV_out\nshown: NV_einde\nNV_in.Text1: 1\n"));
    EXPECT_EQ(test.read("text.txt"), " two\r\n");
}

TEST(script, tracesTheDrawing) {
    TestProgram test;
    test.write("m.gmt", table);
    test.write("s.txt", "file m.gmt\nclick NV_in.Command1\nclick NV_in.Command2\nresize NV_out 300 200\n");
    const Outcome outcome = runProgram("script --trace s.txt");
    EXPECT_THAT(outcome.out, HasSubstr("\ndraw: text 224 5 12 bold 0,0,128 \"m\"\n"));
    EXPECT_THAT(outcome.out, testing::EndsWith("draw: cls\n"));
}

TEST(commandLine, tellsHowARunEnded) {
    TestProgram test;
    test.write("m.gmt", table);
    test.write("blown.gmt", "DT 1:NT 50:UT 0\t\t\nL\t\t\nPP 2E5\t\t\nL\t\t");
    test.write("bad.gmt", "L\nx\n");
    const Outcome done = runProgram("run m.gmt");
    EXPECT_EQ(done.status, 0);
    EXPECT_THAT(done.out, HasSubstr("m.gmt: 3 x 2 cells, 6 steps of 0.00001 s"));
    EXPECT_TRUE(test.exists("m_log"));
    EXPECT_EQ(runProgram("run --quiet m.gmt").out, "");
    const Outcome blown = runProgram("run blown.gmt");
    EXPECT_EQ(blown.status, 1);
    EXPECT_THAT(blown.out, HasSubstr("Stopped because of negative density in point"));
    EXPECT_EQ(runProgram("run").status, 2);
    EXPECT_EQ(runProgram("walk m.gmt").status, 2);
    EXPECT_EQ(runProgram("run bad.gmt").status, 3);
    const Outcome missing = runProgram("run none.gmt");
    EXPECT_EQ(missing.status, 4);
    EXPECT_THAT(missing.out, HasSubstr("none.gmt can't be read"));
    EXPECT_EQ(runProgram("run --help").status, 0);
    EXPECT_THAT(runProgram("--version").out, testing::StartsWith("norvane "));
}

TEST(commandLine, goesOnFromASavedStateAndDrawsIt) {
    TestProgram test;
    test.write("m.gmt", table);
    EXPECT_EQ(runProgram("run m.gmt --quiet --save").status, 0);
    const std::string saved = test.read("m_state");
    EXPECT_THAT(runProgram("run m.gmt --recall --save").out, HasSubstr("Step 12 after"));
    EXPECT_NE(test.read("m_state"), saved);
    const std::string log = test.read("m_log");
    const std::string plotted = test.read("m_out");
    EXPECT_EQ(runProgram("plot m.gmt --state --quantity velocity --component x --scale auto -o p.png").status, 0);
    EXPECT_THAT(test.read("p.png"), testing::StartsWith("\x89PNG"));
    EXPECT_EQ(runProgram("spectrum m.gmt --state --points 4").status, 0);
    const std::string spectrum = test.read("NV_spectrum");
    EXPECT_EQ(std::count(spectrum.begin(), spectrum.end(), '\n'), 5);
    EXPECT_EQ(test.read("m_log"), log) << "commands that look leave the results alone";
    EXPECT_EQ(test.read("m_out"), plotted);
}

TEST(commandLine, namesTheOptionAndWhatItMayBe) {
    TestProgram test;
    test.write("m.gmt", table);
    const auto faultOf = [&](const std::string& option) {
        const Outcome outcome = runProgram("plot m.gmt -o p.png " + option);
        EXPECT_EQ(outcome.status, 2) << option;
        return outcome.out;
    };
    EXPECT_THAT(faultOf("--style classic --quantity heat"),
                HasSubstr("--quantity: \"heat\" is not one of Temperature"));
    EXPECT_THAT(faultOf("--quantity heat"), HasSubstr("--quantity: \"heat\" is no quantity of this geometry"));
    EXPECT_THAT(faultOf("--quantity velocity --component z"), HasSubstr("one of total, x, y, or a dimension, 1 to 2"));
    EXPECT_THAT(faultOf("--slice 1=3"), HasSubstr("--slice"));
    EXPECT_THAT(faultOf("--columns 2 --rows 2"), HasSubstr("another dimension than that of --columns"));
    EXPECT_THAT(faultOf("--scale 5:5"), HasSubstr("LOW:HIGH"));
    EXPECT_THAT(faultOf("--zoom 1,0"), HasSubstr("numbers above 0"));
    EXPECT_THAT(faultOf("--size 5x5"), HasSubstr("WIDTHxHEIGHT"));
    EXPECT_THAT(runProgram("plot m.gmt -o p.gif").out, HasSubstr(".png, .svg, .pdf or .bmp"));
    EXPECT_FALSE(test.exists("p.png"));
}

TEST(commandLine, aSignalOrTheStopFileEndsARunInOrder) {
    TestProgram test;
    test.write("m.gmt", "DT 1E-6:NT -1:UT 0\nL\n\nL");
    const std::string program = NORVANE_PROGRAM;
    for (const char* act :
         {"kill -INT $pid", "kill -TERM $pid", "while [ ! -s checkstop ]; do sleep 0.05; done; echo 1 > checkstop"}) {
        // A shell ignores interrupts for what it starts in the background; env puts the default back.
        test.write("act.sh", "rm -f out; env --default-signal=INT timeout --foreground 100 " + program
                                 + " run m.gmt > out & pid=$!\nwhile [ ! -s out ]; do sleep 0.05; done\n" + act
                                 + "\nwait $pid\necho status $?\n");
        std::FILE* pipe = ::popen("sh act.sh", "r");
        char text[64] = "";
        ASSERT_NE(std::fgets(text, sizeof text, pipe), nullptr);
        ::pclose(pipe);
        EXPECT_STREQ(text, "status 5\n") << act;
        EXPECT_THAT(test.read("out"), HasSubstr("the run was stopped by")) << act;
    }
}

} // namespace
} // namespace norvane
