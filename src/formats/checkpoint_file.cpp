#include "formats/checkpoint_file.h"

#include "core/run_memory.h"
#include "formats/netcdf_file.h"
#include "platform/available_memory.h"
#include "platform/checksum.h"
#include "platform/sealed_file.h"

#include <cmath>
#include <limits>
#include <span>
#include <string_view>

namespace norvane {

namespace {

constexpr std::int32_t formatVersion = 1;
constexpr const char* headerChecksum = "header_crc64";
constexpr const char* fieldChecksum = "crc64";
constexpr const char* damaged = "it is damaged: its checksum does not fit its content";

std::string crcOf(std::string_view text) {
    Crc64 crc;
    crc.add(text);
    return hexText(crc.value());
}

std::string linesOf(const std::vector<NamedText>& list) {
    std::string lines;
    for (const NamedText& each : list) lines += each.name + '\t' + each.text + '\n';
    return lines;
}

std::vector<NamedText> listOf(std::string_view lines) {
    std::vector<NamedText> list;
    while (!lines.empty()) {
        const std::string_view line = lines.substr(0, lines.find('\n'));
        const std::size_t tab = std::min(line.find('\t'), line.size());
        list.push_back({std::string(line.substr(0, tab)), std::string(line.substr(std::min(tab + 1, line.size())))});
        lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    }
    return list;
}

/// Carries the texts and numbers of a checkpoint to its file or back; `text` is what their checksum is of.
class Header {
public:
    NetcdfFile& file;
    bool writes;
    std::string text;

    Header(NetcdfFile& checkpointFile, bool isWritten) : file(checkpointFile), writes(isWritten) {}

    void note(const char* name, const std::string& value) { text += std::string(name) + '=' + value + '\n'; }

    void carry(const char* name, std::string& value) {
        if (writes)
            file.setText(NetcdfFile::wholeFile, name, value);
        else
            value = file.text(NetcdfFile::wholeFile, name);
        note(name, value);
    }

    void carry(const char* name, std::int32_t& value) {
        if (writes) {
            file.setNumber(NetcdfFile::wholeFile, name, value);
        } else {
            const double number = file.number(NetcdfFile::wholeFile, name);
            const bool isWhole = std::abs(number) <= std::numeric_limits<std::int32_t>::max();
            value = isWhole ? static_cast<std::int32_t>(number) : 0;
        }
        note(name, std::to_string(value));
    }

    void carry(const char* name, std::uint64_t& value) {
        std::string digits = hexText(value);
        carry(name, digits);
        if (!writes) value = std::strtoull(digits.c_str(), nullptr, 16);
    }

    /// As bytes of a variable: attributes of files that are made in memory end at 64 kB, and a position may be longer.
    void carry(const char* name, std::vector<NamedText>& value) {
        std::string lines = linesOf(value);
        if (writes)
            writeBytes(name, lines + '\n'); // at least one, since a dimension without a length would grow
        else
            lines = readBytes(name);
        note(name, lines);
        if (!writes) value = listOf(lines);
    }

private:
    void writeBytes(const std::string& name, const std::string& bytes) {
        const int length = file.addDimension(name + "_length", bytes.size());
        const int variable = file.addVariable<std::int8_t>(name, {{length}, {}, 0});
        file.write(variable, {0}, {bytes.size()}, reinterpret_cast<const std::int8_t*>(bytes.data()));
    }

    std::string readBytes(const std::string& name) {
        const int variable = file.variable(name);
        const std::vector<std::size_t> shape = file.shape(variable);
        if (file.ok() && (shape.size() != 1 || shape[0] == 0 || shape[0] > longestBytes))
            file.fail(name + " is no text");
        if (!file.ok()) return {};
        std::string bytes(shape[0], '\0');
        file.read(variable, {0}, shape, reinterpret_cast<std::int8_t*>(bytes.data()));
        bytes.pop_back();
        return bytes;
    }

    static constexpr std::size_t longestBytes = std::size_t{1} << 30;
};

/// Gives the text that the checksum of the header is of.
std::string carryHeader(NetcdfFile& file, bool writes, Checkpoint& checkpoint) {
    Header header(file, writes);
    std::int32_t afterOutputs = checkpoint.afterOutputs ? 1 : 0;
    header.carry("program", checkpoint.program);
    header.carry("step", checkpoint.step);
    header.carry("first_step", checkpoint.firstStep);
    header.carry("stop_step", checkpoint.stopStep);
    header.carry("after_outputs", afterOutputs);
    header.carry("table_sha256", checkpoint.table);
    header.carry("model_crc64", checkpoint.model);
    header.carry("radiation_crc64", checkpoint.radiation);
    header.carry("spectrum_random", checkpoint.random);
    header.carry("settings", checkpoint.settings);
    header.carry("positions", checkpoint.positions);
    checkpoint.afterOutputs = afterOutputs != 0;
    return header.text;
}

/// Lengths of a field's dimensions, slowest first, the cells left out.
std::vector<std::size_t> outerShape(const KeptField& field) {
    std::vector<std::size_t> shape;
    if (field.slots > 1) shape.push_back(static_cast<std::size_t>(field.slots));
    if (*field.kind != '\0') shape.push_back(static_cast<std::size_t>(field.components));
    return shape;
}

/// Calls `work(start, count, values)` for each array of a field, in the order of the file.
template <class Work>
void forArrays(const KeptField& field, std::size_t cells, const Work& work) {
    const std::vector<std::size_t> shape = outerShape(field);
    std::vector<std::size_t> count(shape.size(), 1);
    count.push_back(cells);
    for (std::size_t k = 0; k < field.arrays.size(); ++k) {
        std::vector<std::size_t> start(shape.size() + 1, 0);
        std::size_t rest = k;
        for (std::size_t dim = shape.size(); dim-- > 0; rest /= shape[dim]) start[dim] = rest % shape[dim];
        work(start, count, field.arrays[k]);
    }
}

std::string checksumOf(const KeptField& field, std::size_t cells) {
    Crc64 crc;
    for (const float* const values : field.arrays) crc.add(std::as_bytes(std::span(values, cells)));
    return hexText(crc.value());
}

void writeHeader(NetcdfFile& file, const SimState& sim, Checkpoint checkpoint) {
    file.setNumber(NetcdfFile::wholeFile, "checkpoint_format", formatVersion);
    file.setNumber(NetcdfFile::wholeFile, "arithmetic", arithmeticVersion);
    file.setText(NetcdfFile::wholeFile, headerChecksum, crcOf(carryHeader(file, true, checkpoint)));
    std::string grid;
    for (int dim = 1; dim <= sim.nDim; ++dim) grid += (dim > 1 ? " x " : "") + std::to_string(sim.cellCount[dim]);
    file.setText(NetcdfFile::wholeFile, "grid", grid); // for people
    file.setNumber(NetcdfFile::wholeFile, "time_step", sim.dt);
}

void writeFields(NetcdfFile& file, SimState& sim) {
    const auto cells = static_cast<std::size_t>(sim.nCells);
    const int slot = file.addDimension("slot", SpeciesSlots::slots);
    const int dimension = file.addDimension("dimension", static_cast<std::size_t>(sim.nDim));
    const int species = file.addDimension("species", static_cast<std::size_t>(sim.nsMax) + 1);
    const int cell = file.addDimension("cell", cells);
    for (const KeptField& field : keptFields(sim)) {
        VariableLayout layout;
        if (field.slots > 1) layout.dimensions.push_back(slot);
        const std::string_view kind = field.kind;
        if (!kind.empty()) layout.dimensions.push_back(kind == "species" ? species : dimension);
        layout.dimensions.push_back(cell);
        const int variable = file.addVariable<float>(field.name, layout);
        file.setText(variable, "units", field.unit);
        file.setText(variable, "long_name", field.meaning);
        file.setText(variable, fieldChecksum, checksumOf(field, cells));
        forArrays(field, cells, [&](const auto& start, const auto& count, const float* values) {
            file.write(variable, start, count, values);
        });
    }
}

std::size_t bytesOf(SimState& sim) {
    constexpr std::size_t others = 1 << 16; // what the format adds, and the numbers
    std::size_t arrays = 0;
    for (const KeptField& field : keptFields(sim)) arrays += field.arrays.size();
    return arrays * static_cast<std::size_t>(sim.nCells) * sizeof(float) + others;
}

std::string faultOfVersions(NetcdfFile& file) {
    const auto mismatch = [](const std::string& what, double has, std::int32_t wanted) {
        return "it has " + what + " version " + std::to_string(std::llround(has)) + ", and this program needs version "
               + std::to_string(wanted) + "; go on with the program that wrote it";
    };
    if (!file.hasAttribute(NetcdfFile::wholeFile, "checkpoint_format")) return "it is no checkpoint of a run";
    const double format = file.number(NetcdfFile::wholeFile, "checkpoint_format");
    if (format != formatVersion) return mismatch("format", format, formatVersion);
    const double arithmetic = file.number(NetcdfFile::wholeFile, "arithmetic");
    if (arithmetic != arithmeticVersion) return mismatch("arithmetic", arithmetic, arithmeticVersion);
    return file.fault();
}

std::string readField(NetcdfFile& file, const KeptField& field, std::size_t cells) {
    const std::string name = field.name;
    std::vector<std::size_t> shape = outerShape(field);
    shape.push_back(cells);
    if (!file.hasVariable(name)) return "it has no " + name;
    const int variable = file.variable(name);
    if (file.shape(variable) != shape) return name + " has another shape than the grid";
    forArrays(field, cells,
              [&](const auto& start, const auto& count, float* values) { file.read(variable, start, count, values); });
    const std::string checksum = file.text(variable, fieldChecksum);
    if (!file.ok()) return file.fault();
    return checksum == checksumOf(field, cells) ? "" : name + " is damaged: its checksum does not fit";
}

} // namespace

std::string writeCheckpoint(const std::string& path, SimState& sim, const Checkpoint& checkpoint) {
    const std::size_t bytes = bytesOf(sim);
    const double memory = availableMemory();
    if (memory > 0 && static_cast<double>(bytes) > memory) return "there is not enough memory to make it";
    NetcdfFile file = NetcdfFile::createInMemory(bytes);
    writeHeader(file, sim, checkpoint);
    writeFields(file, sim);
    const FileImage image = file.closeToMemory();
    return file.ok() ? writeSealed(path, image.view()).reason : file.fault();
}

std::string readCheckpoint(const std::string& path, Checkpoint& checkpoint) {
    bool whole = false;
    const FileResult read = checkSeal(path, whole);
    if (!read) return read.reason;
    if (!whole) return damaged;
    NetcdfFile file = NetcdfFile::openToRead(path);
    if (!file.ok()) return file.fault();
    std::string fault = faultOfVersions(file);
    if (!fault.empty()) return fault;
    const std::string text = carryHeader(file, false, checkpoint);
    const std::string checksum = file.text(NetcdfFile::wholeFile, headerChecksum);
    if (!file.ok()) return file.fault();
    return checksum == crcOf(text) ? "" : damaged;
}

std::string readCheckpointFields(const std::string& path, SimState& sim) {
    NetcdfFile file = NetcdfFile::openToRead(path);
    if (!file.ok()) return file.fault();
    for (const KeptField& field : keptFields(sim)) {
        std::string fault = readField(file, field, static_cast<std::size_t>(sim.nCells));
        if (!fault.empty()) return fault;
    }
    return {};
}

} // namespace norvane
