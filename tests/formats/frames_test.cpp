// A file of frames holds the fields to the bit, whole at any moment, however often it is read, cut and continued.

#include "core/run_driver.h"
#include "formats/frame_series.h"
#include "formats/frame_writer.h"
#include "platform/file_faults.h"
#include "platform/files.h"
#include "support/test_program.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

namespace norvane {
namespace {

constexpr const char* table = "DT 1E-6:NT 1:GG 2;9.81:NS 1\t\t\n"
                              "L\t\t\n"
                              "TT 310:DD 1;0.02\tCC 1;0.2\tVV 2;3\n"
                              "WV 1;1\tPP 1.2E5:WV 0;2\tTT 350\n"
                              "L\t\t\n"
                              "\tHH 0.5\t\n"
                              "DD 2;0.03\t\tTT 280:WT -1\n"
                              "L\t\t";

/// A model some steps on, and a series that begins with it.
struct Series {
    TestProgram test;
    FrameLayout layout;
    FrameOrigin origin;
    std::string path;

    explicit Series(const std::string& fields = {}) {
        test.build(table);
        EXPECT_EQ(layoutOf(test.sim, fields, layout), "");
        layout.isRectilinear = isOnAxes(test.sim);
        origin = originOf(test.sim, "Norvane");
        path = (test.folder / "m_frames.nc").string();
    }

    Frame step() {
        test.sim.stopStep = test.sim.stepCount + 1;
        continueRun(test.sim, test.ui, test.program.operations);
        return frame();
    }

    Frame frame() {
        Frame taken;
        takeFields(test.sim, layout, taken);
        return taken;
    }

    FrameSeries begun() {
        FrameSeries series(path, layout);
        EXPECT_EQ(series.begin(test.sim, origin, frame()), "");
        return series;
    }

    void add(FrameSeries& series, int frames) {
        for (int k = 0; k < frames; ++k) {
            const Frame next = step();
            EXPECT_EQ(series.add(std::span(&next, 1)), "");
        }
    }
};

/// The values of a frame, all components.
std::vector<float> valuesIn(const std::string& path, const std::string& name, std::size_t frame) {
    NetcdfFile file = NetcdfFile::openToRead(path);
    const int variable = file.variable(name);
    std::vector<std::size_t> count = file.shape(variable);
    std::vector<std::size_t> start(count.size(), 0);
    start[0] = frame;
    count[0] = 1;
    std::size_t size = 1;
    for (const std::size_t length : count) size *= length;
    std::vector<float> values(size);
    file.read(variable, start, count, values.data());
    EXPECT_EQ(file.fault(), "") << name;
    return values;
}

bool isSame(const float* a, const float* b, std::size_t count) { return std::memcmp(a, b, count * sizeof *a) == 0; }

TEST(frames, holdTheFieldsToTheBit) {
    Series s;
    FrameSeries series = s.begun();
    s.add(series, 3);
    const SimState& sim = s.test.sim;
    ASSERT_EQ(sim.nDim, 3);
    EXPECT_FALSE(s.layout.isRectilinear);
    const auto cells = static_cast<std::size_t>(sim.nCells);
    const auto last = [&](const std::string& name) { return valuesIn(s.path, name, 3); };
    EXPECT_TRUE(isSame(last("T").data(), &sim.temperature[1], cells));
    EXPECT_TRUE(isSame(last("p").data(), &sim.pressure[1], cells));
    EXPECT_TRUE(isSame(last("rho").data(), &sim.density[1], cells));
    EXPECT_TRUE(isSame(last("w").data(), &sim.velocity(1, 3), cells));
    EXPECT_TRUE(isSame(last("c1").data(), &sim.concentration(1, 1), cells));
    EXPECT_NE(last("T"), valuesIn(s.path, "T", 2));
    const std::vector<float> arrows = last("velocity_centre");
    // Cell 6 lies below cell 3, whose upper face along dimension 2 is open; its own is the end of the grid.
    EXPECT_EQ(arrows[(6 - 1) * 3 + 1], static_cast<float>((double(sim.velocity(3, 2)) + 0) / 2));
    EXPECT_NE(arrows[(6 - 1) * 3 + 1], 0);
    // Cell 4 has a closed upper face along dimension 1, and none below.
    EXPECT_EQ(arrows[(4 - 1) * 3], 0);
    FrameFileInfo info;
    EXPECT_EQ(readFrameFile(s.path, info), "");
    EXPECT_EQ(info.times.steps, (std::vector<std::int32_t>{0, 1, 2, 3}));
    EXPECT_EQ(info.times.times[3], 3 * double(sim.dt));
    EXPECT_EQ(info.fingerprint, s.origin.fingerprint);
}

TEST(frames, ofASeriesThatWasCutAndContinuedGiveTheSameBytes) {
    Series whole("T,u");
    FrameSeries uncut = whole.begun();
    whole.add(uncut, 5);
    EXPECT_EQ(uncut.end(whole.test.sim, whole.origin), "");
    const std::string bytes = whole.test.read("m_frames.nc");
    const std::string mesh = whole.test.read("m_frames.xdmf");

    Series cut("T,u");
    FrameSeries first = cut.begun();
    cut.add(first, 2);
    std::vector<Frame> kept;
    for (int k = 0; k < 3; ++k) kept.push_back(cut.step());
    Frame wrong = kept[0];
    for (float& value : wrong.values[0]) value += 1;
    EXPECT_EQ(first.add(std::vector<Frame>{wrong, wrong, wrong, wrong}), ""); // and killed here
    FrameSeries second(cut.path, cut.layout);
    EXPECT_NE(second.goOn(cut.test.sim, cut.origin, 8), "");
    EXPECT_EQ(second.goOn(cut.test.sim, cut.origin, 3), "");
    EXPECT_FALSE(cut.test.exists("m_frames.xdmf")); // it named frames that are gone
    EXPECT_EQ(second.add(kept), "");
    EXPECT_EQ(second.end(cut.test.sim, cut.origin), "");
    EXPECT_EQ(cut.test.read("m_frames.nc"), bytes);
    EXPECT_EQ(cut.test.read("m_frames.xdmf"), mesh);
    for (const auto& entry : std::filesystem::directory_iterator(cut.test.folder))
        EXPECT_NE(entry.path().filename().string()[0], '.') << entry.path();
}

TEST(frames, staysWholeForAReaderWhoKeepsItOpen) {
    Series s("T");
    FrameSeries series = s.begun();
    s.add(series, 2);
    NetcdfFile reader = NetcdfFile::openToRead(s.path);
    s.add(series, 3);
    const int time = reader.variable("time");
    EXPECT_EQ(reader.shape(time), std::vector<std::size_t>{3});
    std::vector<double> times(3);
    reader.read(time, {0}, {3}, times.data());
    EXPECT_EQ(reader.fault(), "");
    EXPECT_EQ(times[2], 2 * double(s.test.sim.dt));
    FrameFileInfo info;
    EXPECT_EQ(readFrameFile(s.path, info), "");
    EXPECT_EQ(info.times.steps.size(), 6U);
}

int operations = 0;
int failing = -1;

FileFault failAt(FileOperation) { return {operations++ == failing ? EIO : 0}; }

TEST(frames, areWholeAfterAFaultOfEachOperation) {
    Series s("T");
    const Frame frame = s.frame();
    const auto numbered = [&](std::int32_t step) {
        Frame next = frame;
        next.step = step;
        return next;
    };
    int count = 1;
    int faults = 0;
    for (failing = -1; failing < count; ++failing) {
        SCOPED_TRACE(failing);
        removeFile(s.path);
        operations = 0;
        setFileFaults(failAt);
        FrameSeries series(s.path, s.layout);
        std::vector<std::int32_t> steps{0};
        if (!series.begin(s.test.sim, s.origin, numbered(0)).empty()) {
            ++faults;
            EXPECT_EQ(series.begin(s.test.sim, s.origin, numbered(0)), "");
        }
        for (std::int32_t step = 1; step < 4; ++step) {
            const Frame next = numbered(step);
            const std::string fault = series.add(std::span(&next, 1));
            if (fault.empty()) steps.push_back(step);
            faults += fault.empty() ? 0 : 1;
        }
        EXPECT_EQ(series.end(s.test.sim, s.origin), "");
        count = operations;
        setFileFaults(nullptr);
        FrameFileInfo info;
        EXPECT_EQ(readFrameFile(s.path, info), "");
        EXPECT_EQ(info.times.steps, steps);
        EXPECT_GE(steps.size(), 3U);
    }
    EXPECT_GT(faults, 8);
}

TEST(frames, ofAFileThatIsNotOursAreNotRead) {
    TestProgram test;
    FrameFileInfo info;
    const std::string path = (test.folder / "f.nc").string();
    EXPECT_EQ(readFrameFile(path, info), "");
    test.write("f.nc", "something else");
    EXPECT_EQ(readFrameFile(path, info), "");
    EXPECT_FALSE(info.isOurs);
    test.write("f.nc", "\x89HDF\r\n\x1a\n and then nothing of it");
    EXPECT_NE(readFrameFile(path, info), "");
    Series s("T");
    FrameSeries series = s.begun();
    const std::string bytes = s.test.read("m_frames.nc");
    for (std::size_t length = 8; length < bytes.size(); length += bytes.size() / 40) {
        s.test.write("m_frames.nc", bytes.substr(0, length));
        EXPECT_NE(readFrameFile(s.path, info), "") << length;
        EXPECT_FALSE(info.isOurs);
    }
}

TEST(frames, areWrittenInTheirOrderAndFaultsCounted) {
    std::vector<std::int32_t> written;
    constexpr std::size_t large = std::size_t{1} << 30;
    FrameWriter writer(large, [&](std::span<const Frame> frames) -> std::string {
        EXPECT_LE(frames.size(), 2U);
        for (const Frame& frame : frames) {
            if (frame.step == 5) throw std::bad_alloc();
            written.push_back(frame.step);
        }
        return frames.front().step == 3 ? "no room" : "";
    });
    for (std::int32_t step = 0; step < 9; ++step) {
        writer.add([&](Frame& frame) { frame.step = step; });
        if (step == 2 || step == 3 || step == 4 || step == 5) writer.finish();
    }
    EXPECT_THROW(writer.add([](Frame&) { throw std::bad_alloc(); }), std::bad_alloc);
    writer.finish();
    EXPECT_EQ(written, (std::vector<std::int32_t>{0, 1, 2, 3, 4, 6, 7, 8}));
    EXPECT_EQ(writer.faults().lost, 2U);
    EXPECT_EQ(writer.faults().first, "no room");
    EXPECT_EQ(writer.faults().firstStep, 3);
}

} // namespace
} // namespace norvane
