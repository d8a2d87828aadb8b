#include "formats/frame_file.h"

#include "formats/frame_grid.h"
#include "geometry/table_text.h"
#include "platform/exchanged_file.h"
#include "platform/files.h"

namespace norvane {

namespace {

constexpr int compression = 1; // a third of the time of the usual 4, and files that are 3 % larger
constexpr std::size_t timesInChunk = 256;
constexpr std::int32_t formatNumber = 1;
constexpr std::size_t mostFrames = std::size_t{1} << 31; // what a file that others have written may claim

constexpr const char* stateComment =
    "fields as they stand after a step, as plots show them: the trial state of the fourth stage of the Runge-Kutta "
    "step; step 0 is the start";
constexpr const char* savedComment =
    "fields of a saved state: those at the start of the step in which it was saved, that is after the step before";

void setTexts(NetcdfFile& file,
              const SimState& sim,
              const FrameLayout& layout,
              const FrameOrigin& origin,
              const std::string& table) {
    constexpr int whole = NetcdfFile::wholeFile;
    file.setText(whole, "Conventions", "CF-1.8");
    file.setText(whole, "title", origin.title);
    file.setText(whole, "source", origin.program);
    file.setText(whole, "comment", origin.isSavedState ? savedComment : stateComment);
    file.setNumber(whole, "norvane_frames", formatNumber);
    file.setText(whole, "norvane_fields", layout.fieldNames());
    file.setText(whole, "table_name", sim.fileName);
    file.setText(whole, "table_sha256", origin.fingerprint);
    file.setText(whole, "table", table);
    file.setNumber(whole, "time_step", double(sim.dt));
}

int addTime(NetcdfFile& file) {
    const int dimension = file.addDimension("time", 0);
    const VariableLayout layout{{dimension}, {timesInChunk}, 0};
    const int time = file.addVariable<double>("time", layout);
    file.setText(time, "standard_name", "time");
    file.setText(time, "long_name", "time since the start: step x time step");
    file.setText(time, "units", "s");
    file.setText(time, "axis", "T");
    const int step = file.addVariable<std::int32_t>("step", layout);
    file.setText(step, "long_name", "number of the step");
    file.setText(step, "units", "1");
    return dimension;
}

void addFields(NetcdfFile& file, const FrameLayout& layout, int time, const std::vector<int>& axes) {
    int vectors = -1;
    for (const FrameField& field : layout.fields) {
        VariableLayout form{{time}, {1}, compression};
        form.dimensions.insert(form.dimensions.end(), axes.begin(), axes.end());
        form.chunks.insert(form.chunks.end(), layout.chunk.begin(), layout.chunk.end());
        if (field.components > 1) {
            if (vectors < 0) vectors = file.addDimension("component", field.components);
            form.dimensions.push_back(vectors);
            form.chunks.push_back(field.components);
        }
        const int variable = file.addVariable<float>(field.name, form);
        file.setText(variable, "long_name", field.longName);
        if (!field.standardName.empty()) file.setText(variable, "standard_name", field.standardName);
        file.setText(variable, "units", field.unit);
        file.setText(variable, "cell_methods", field.cellMethods);
        file.setText(variable, "cell_measures", "volume: volume");
        if (!field.comment.empty()) file.setText(variable, "comment", field.comment);
        if (!layout.isRectilinear) file.setText(variable, "coordinates", centreNames(layout));
    }
}

void readSeries(NetcdfFile& file, FrameFileInfo& info) {
    const int time = file.variable("time");
    const int step = file.variable("step");
    const std::vector<std::size_t> shape = file.shape(time);
    if (!file.ok()) return;
    if (shape.size() != 1 || shape[0] > mostFrames || file.shape(step) != shape) {
        file.fail("its times are no list");
        return;
    }
    info.times.cut(shape[0]);
    file.read(time, {0}, shape, info.times.times.data());
    file.read(step, {0}, shape, info.times.steps.data());
}

/// Closes a file that is given up where something is wrong. netCDF tells no more than that HDF5 failed: the system is
/// asked for its reason by a further write.
std::string endOf(NetcdfFile& file, const std::string& path) {
    constexpr std::size_t probeBytes = std::size_t{1} << 20;
    if (file.close()) return {};
    const FileResult probe = appendFile(path, std::string(probeBytes, '\0'));
    return probe ? file.fault() : probe.reason;
}

} // namespace

FrameOrigin originOf(const SimState& sim, const std::string& program) {
    return {.program = program,
            .fingerprint = tableFingerprint(sim),
            .title = sim.graphTitle.empty() ? sim.baseName : sim.graphTitle};
}

std::string
createFrameFile(const std::string& path, const SimState& sim, const FrameLayout& layout, const FrameOrigin& origin) {
    const FileResult fresh = makeFresh(path);
    if (!fresh) return fresh.reason;
    const std::string text = tableText(sim);
    const FileResult room = reserveRoom(path, layout.roomOfGrid() + text.size());
    if (!room) return room.reason;
    NetcdfFile file = NetcdfFile::create(path);
    if (!file.ok()) return file.fault();
    setTexts(file, sim, layout, origin, text);
    const int time = addTime(file);
    const std::vector<int> axes = addAxes(file, sim, layout);
    addFields(file, layout, time, axes);
    addGrid(file, sim, layout, axes);
    return endOf(file, path);
}

std::string
addFrames(const std::string& path, const FrameLayout& layout, std::size_t place, std::span<const Frame> frames) {
    const FileResult room = reserveRoom(path, layout.roomOfFrames(frames.size()));
    if (!room) return room.reason;
    NetcdfFile file = NetcdfFile::openToAppend(path);
    if (!file.ok()) return file.fault();
    const int time = file.variable("time");
    const int step = file.variable("step");
    for (const Frame& frame : frames) {
        file.write(time, {place}, {1}, &frame.time);
        file.write(step, {place}, {1}, &frame.step);
        for (std::size_t k = 0; k < layout.fields.size(); ++k) {
            const FrameField& field = layout.fields[k];
            std::vector<std::size_t> start{place};
            std::vector<std::size_t> count{1};
            count.insert(count.end(), layout.shape.begin(), layout.shape.end());
            if (field.components > 1) count.push_back(field.components);
            start.resize(count.size());
            file.write(file.variable(field.name), start, count, frame.values[k].data());
        }
        ++place;
    }
    return endOf(file, path);
}

std::string readFrameFile(const std::string& path, FrameFileInfo& info) {
    constexpr std::string_view signature = "\x89HDF\r\n\x1a\n";
    info = {};
    std::string beginning;
    const bool exists = stampOf(path).exists;
    const FileResult read = exists ? readBeginning(path, signature.size(), beginning) : FileResult{};
    if (!read) return read.reason;
    if (beginning != signature) return {};
    NetcdfFile file = NetcdfFile::openToRead(path);
    if (!file.ok()) return file.fault();
    constexpr int whole = NetcdfFile::wholeFile;
    if (!file.hasAttribute(whole, "norvane_frames")) return {};
    if (file.number(whole, "norvane_frames") != formatNumber) file.fail("another version of the program wrote it");
    info.fingerprint = file.text(whole, "table_sha256");
    info.fields = file.text(whole, "norvane_fields");
    readSeries(file, info);
    info.isOurs = file.ok();
    return file.fault();
}

} // namespace norvane
