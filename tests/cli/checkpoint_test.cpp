// A run that was stopped in any way and resumed leaves the files of one that never stopped, byte for byte.

#include "formats/checkpoint_file.h"
#include "platform/files.h"
#include "support/run_program.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <thread>

namespace norvane {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

using Random = std::mt19937;

int pick(Random& random, int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

/// A model with species, ramps, held values, walls, gravity and drag, whose cells are drawn at random.
std::string drawing(Random& random, const std::array<int, 3>& grid, int steps) {
    const auto [columns, rows, layers] = grid;
    static constexpr const char* items[] = {"WV 0;2", "WV 1;-2:VV 1;5", "WV 1;-1:VV 1;-2", "WT -1:TT 350", "WP -1",
                                            "RR 50",  "WC -1:CC 1;0.2", "TT 330",          "WV 1;1",       "WT 1",
                                            "VV 1;3", "WP 1:WT 1",      "WC 1:CC 1;0.3"};
    const std::string tabs(static_cast<std::size_t>(columns) - 1, '\t');
    const auto every = [&](const char* key, int share) { return key + std::to_string(steps / share) + ":"; };
    std::string table =
        "DT 5E-6:" + every("NT ", 1) + every("UT ", 5) + every("ST ", 7) + every("LT ", 80) + every("TR ", 2)
        + "NS 1:DD 0;0.01:TT 300:LA 0.5:ET 0.01:GG 1;9.81:GP 11;1:GP 13;0.1:" + "GP 14;1000:GP 15;0.01" + tabs;
    for (int layer = 0; layer < layers; ++layer) {
        table += "\nL" + tabs;
        for (int row = 0; row < rows; ++row) {
            table += '\n';
            for (int column = 0; column < columns; ++column) {
                if (column > 0) table += '\t';
                if (pick(random, 0, 3) == 0) table += std::string(".") + items[pick(random, 0, std::size(items) - 1)];
            }
        }
    }
    return table + "\nL" + tabs;
}

/// The files of a run, by their names; not what stands for one moment of it alone.
std::map<std::string, std::string> filesIn(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name != "m_checkpoint_old.nc") readFile(entry.path().string(), files[name]);
    }
    return files;
}

/// For --time, of so many steps.
std::string timeOf(int steps) { return std::to_string((steps - 0.5) * 5E-6); }

/// A run as a process of its own.
class Process {
public:
    explicit Process(const std::vector<std::string>& arguments) : number_(::fork()) {
        if (number_ != 0) return;
        std::vector<char*> words = {const_cast<char*>(NORVANE_PROGRAM), const_cast<char*>("run")};
        for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        ::execv(NORVANE_PROGRAM, words.data());
        ::_exit(127);
    }

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    ~Process() {
        if (runs()) ::kill(number_, SIGKILL);
        end();
    }

    bool runs() { return !ended_ && !(ended_ = ::waitpid(number_, &status_, WNOHANG) == number_); }

    void signal(int number) {
        if (runs()) ::kill(number_, number);
    }

    /// Waits for the end. Gives the exit status, -1 after a signal.
    int end() {
        if (!ended_) ::waitpid(number_, &status_, 0);
        ended_ = true;
        return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
    }

    /// Waits until a file has so many bytes, or the run has ended.
    void waitFor(const std::string& file, std::uint64_t bytes) {
        while (stampOf(file).size < bytes && runs()) std::this_thread::sleep_for(std::chrono::microseconds(200));
    }

private:
    pid_t number_;
    bool ended_ = false;
    int status_ = 0;
};

/// A folder with a run that never stopped, and a second one in which the same run is stopped and resumed.
class Resumed : public testing::Test {
protected:
    void draw(Random& random, const std::array<int, 3>& grid, int steps, bool compensated = false) {
        fs::current_path(test.folder);
        const std::string table = drawing(random, grid, steps);
        for (const char* folder : {"whole", "parts"}) {
            fs::remove_all(folder);
            fs::create_directory(folder);
            test.write(std::string(folder) + "/m.gmt", table);
            test.write(std::string(folder) + "/m_rad", "0 0 3\r\n1 2 1E-4 0.5\r\n3 0 1E-4 1\r\n2 5 2E-4 0.3\r\n");
        }
        arguments = {"-q", "--force", "--radiation", "--snapshots", std::to_string(steps / 6)};
        if (compensated) arguments.emplace_back("--compensated");
        fs::current_path(test.folder / "whole");
        ASSERT_EQ(run({"--checkpoint-every", "100000"}), 0);
        fs::current_path(test.folder / "parts");
    }

    std::vector<std::string> with(std::vector<std::string> others) const {
        others.insert(others.end(), arguments.begin(), arguments.end());
        others.emplace_back("m.gmt");
        return others;
    }

    int run(const std::vector<std::string>& others) const { return Process(with(others)).end(); }

    void expectSameFiles() const {
        const auto whole = filesIn(test.folder / "whole");
        const auto parts = filesIn(test.folder / "parts");
        ASSERT_GT(whole.at("m_log").size(), 1000U);
        for (const auto& [name, content] : parts) EXPECT_TRUE(whole.contains(name)) << name;
        for (const auto& [name, content] : whole)
            EXPECT_TRUE(parts.contains(name) && parts.at(name) == content) << name;
    }

    TestProgram test;
    std::vector<std::string> arguments;
};

TEST_F(Resumed, leavesTheFilesOfARunThatNeverStopped) {
    Random random(7);
    const std::array<std::array<int, 3>, 3> grids = {{{12, 9, 1}, {30, 1, 1}, {6, 5, 4}}};
    for (const std::array<int, 3>& grid : grids) {
        constexpr int steps = 2400;
        draw(random, grid, steps, grid[2] > 1);
        const std::vector<std::string> stops = {"SIGTERM", "SIGKILL", "SIGTERM", "stop file", "time"};
        for (std::size_t part = 0; part < stops.size(); ++part) {
            std::vector<std::string> options = {"--checkpoint-every", "37", "--threads", std::to_string(part % 3 + 1)};
            if (part > 0) options.emplace_back("--resume");
            Checkpoint reached;
            if (part > 0) {
                ASSERT_EQ(readCheckpoint("m_checkpoint.nc", reached), "");
            }
            if (stops[part] == "time")
                options.insert(options.end(), {"--time", timeOf(std::min(reached.step + 50, steps))});
            const std::uint64_t before = stampOf("m_log").size;
            Process process(with(options));
            process.waitFor("m_log", before + static_cast<std::uint64_t>(pick(random, 50, 400)));
            if (stops[part] == "SIGTERM") process.signal(SIGTERM);
            if (stops[part] == "SIGKILL") process.signal(SIGKILL);
            if (stops[part] == "stop file") test.write("parts/checkstop", "1");
            const int status = process.end(); // 0: it had ended before, on a busy machine
            EXPECT_TRUE(status == 0 || status == (stops[part] == "SIGKILL" ? -1 : 5)) << stops[part] << status;
        }
        EXPECT_EQ(run({"--checkpoint-every", "1000", "--resume", "--time", timeOf(steps)}), 0);
        expectSameFiles();
        EXPECT_EQ(run({"--checkpoint-every", "50", "--resume"}), 0) << "the last outputs once more";
        expectSameFiles();
    }
}

TEST_F(Resumed, survivesFiftyKills) {
    Random random(11);
    for (int kills = 0; kills < 50;) {
        draw(random, {10, 8, 1}, 240);
        bool ended = false;
        while (!ended) {
            std::vector<std::string> options = {"--checkpoint-every", "2", "--threads", std::to_string(kills % 3 + 1)};
            if (fs::exists("m_checkpoint.nc")) {
                Checkpoint checkpoint;
                ASSERT_EQ(readCheckpoint("m_checkpoint.nc", checkpoint), "");
                options.emplace_back("--resume");
            }
            Process process(with(options));
            const auto began = stampOf("m_checkpoint.nc");
            for (int change = pick(random, 1, 4); change > 0 && process.runs();)
                change -= stampOf("m_checkpoint.nc") == began ? 0 : 1;
            std::this_thread::sleep_for(std::chrono::microseconds(pick(random, 0, 20000)));
            ended = !process.runs();
            process.signal(SIGKILL);
            const int status = process.end();
            ASSERT_TRUE(ended ? status == 0 : status <= 0) << status;
            kills += status == -1 ? 1 : 0;
            ended = status == 0;
        }
        expectSameFiles();
    }
}

TEST_F(Resumed, writesACheckpointAtASignal) {
    Random random(3);
    draw(random, {12, 9, 1}, 240);
    fs::remove("checkstop");
    Process process(with({"--checkpoint-every", "1h", "--set", "NT=-1"}));
    process.waitFor("m_log", 200);
    process.signal(SIGUSR1);
    process.waitFor("m_checkpoint.nc", 1);
    EXPECT_TRUE(process.runs());
    Checkpoint checkpoint;
    EXPECT_EQ(readCheckpoint("m_checkpoint.nc", checkpoint), "");
    EXPECT_GT(checkpoint.step, 0);
    process.signal(SIGTERM);
    EXPECT_EQ(process.end(), 5);
    const std::int32_t before = checkpoint.step;
    EXPECT_EQ(readCheckpoint("m_checkpoint.nc", checkpoint), "");
    EXPECT_GT(checkpoint.step, before);
}

TEST_F(Resumed, tellsWhatToDoWhereItCannotGoOn) {
    Random random(5);
    draw(random, {12, 9, 1}, 240);
    const auto expect = [&](const std::string& options, int status, const std::string& message) {
        const Outcome outcome = runProgram("run -q --force m.gmt " + options);
        EXPECT_EQ(outcome.status, status) << options << outcome.out;
        EXPECT_THAT(outcome.out, HasSubstr(message)) << options;
    };
    expect("--resume", 4, "There is no checkpoint m_checkpoint.nc in " + (test.folder / "parts").string());
    expect("--checkpoint-every 0", 2, "\"0\" is no number of steps");
    expect("--checkpoint-every 5m", 2, "\"5m\" is no number of steps, such as 1000, and no time, such as 30s");
    expect("--resume --recall", 2, "give one of them");
    expect("--resume --resume-older", 2, "give one of them");
    expect("--checkpoint-every 100", 0, "");
    expect("--resume --plot-every 5", 2, "The run was started without --plot-every (5)");
    expect("--resume --radiation", 2, "The run was started without --radiation");
    expect("--resume --set NT=1000", 4, "is of another drawing, or of other changes by --set");
    expect("--resume --time 1E-4", 4, "--time counts from the start of the run, and that is already at step 240");
    expect("--resume --name n", 4, "There is no checkpoint n_checkpoint.nc");
    const std::string latest = test.read("parts/m_checkpoint.nc");
    test.write("parts/m_checkpoint.nc", latest.substr(0, 5000));
    expect("--resume", 4,
           "The checkpoint m_checkpoint.nc can't be taken: it is damaged: its checksum does not fit its content.\n"
           "The one before it, m_checkpoint_old.nc, is of step 200: --resume-older in place of --resume goes on");
    expect("--resume-older --checkpoint-every 1000", 0, "");
    EXPECT_TRUE(test.read("parts/m_checkpoint.nc") == latest);
    Checkpoint older;
    EXPECT_EQ(readCheckpoint("m_checkpoint_old.nc", older), "");
    EXPECT_EQ(older.step, 200) << "the damaged one does not take its place";
    test.write("parts/m_checkpoint_old.nc", "x");
    test.write("parts/m_checkpoint.nc", "x");
    expect("--resume", 4, "is of no use either: it is damaged");
    test.write("parts/m_checkpoint.nc", latest);
    test.write("parts/m_log", "");
    expect("--resume", 0, "m_log is not as the run left it: it has 0 bytes, and had ");
}

TEST_F(Resumed, doesNotNeedCheckpointsToGoOnRunning) {
    Random random(5);
    draw(random, {12, 9, 1}, 240);
    arguments = {"-q", "--force", "--set", "ST=0"};
    ASSERT_EQ(run({"--checkpoint-every", "100", "--time", "6E-4"}), 0);
    const std::string before = test.read("parts/m_checkpoint.nc");
    const Outcome outcome =
        runProgram("run -q --force m.gmt --set ST=0 --resume --checkpoint-every 20 --time 1.19E-3", "ulimit -f 40;");
    EXPECT_EQ(outcome.status, 4);
    EXPECT_THAT(outcome.out, HasSubstr("No checkpoint of step 140 in m_checkpoint.nc: File too large.\n"
                                       "The run goes on; the checkpoint of step 12"));
    EXPECT_THAT(outcome.out, HasSubstr(" stays.\n6 checkpoints in all could not be written.\n"));
    EXPECT_TRUE(test.read("parts/m_checkpoint.nc") == before);
    EXPECT_FALSE(test.exists("parts/.m_checkpoint.nc.part"));
    EXPECT_EQ(run({"--resume", "--time", "1.19E-3"}), 0);
}

} // namespace
} // namespace norvane
