#include "exchange/state_file.h"

#include "core/number_text.h"
#include "core/primitive_update.h"
#include "exchange/number_items.h"
#include "geometry/model_build.h"
#include "platform/files.h"
#include "platform/safe_file.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

namespace {

constexpr const char* lineEnd = "\r\n";
constexpr const char* openFault = "An error occured opening the file";
constexpr double celsiusZero = 273.15; // K

std::string stateName(const SimState& sim) { return sim.baseName + "_state"; }

std::string statePath(const SimState& sim) { return joinPath(sim.inputDir, stateName(sim)); }

// --- saving --------------------------------------------------------------------------------------------------------

/// Upper bound of the length of a state file, so that its text is allocated once.
std::size_t textLimit(const SimState& sim) {
    constexpr std::size_t singleLength = 16; // frame, sign, 0.00001234567, tab
    constexpr std::size_t doubleLength = 24;
    const std::size_t dims = static_cast<std::size_t>(sim.nDim);
    const std::size_t species = static_cast<std::size_t>(sim.nsMax) + 1;
    const std::size_t cells = static_cast<std::size_t>(sim.nCells);
    const std::size_t rows = sim.cellCount[1] > 0 ? cells / static_cast<std::size_t>(sim.cellCount[1]) + 1 : 1;
    const std::size_t singles = 2 * dims + 1 + 2 * species;
    return 64 + cells * (singles * singleLength + doubleLength) + 2 * rows * (singles + 1);
}

/// Adds a block: `value` gives the value of a cell. Rows are counted here rather than by coordinates, which need the
/// strides of a build.
template <class Value>
void appendBlock(std::string& text, const SimState& sim, const Value& value) {
    const std::int32_t rowLength = sim.cellCount[1];
    std::int32_t column = 0;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        appendFramed(text, value(cell));
        text += '\t';
        if (++column < rowLength) continue;
        text += lineEnd;
        column = 0;
    }
    text += lineEnd;
}

float standardVelocity(const SimState& sim, std::int32_t cell, int dim) {
    return static_cast<float>(double(sim.velocity(cell, dim)) * double(sim.density[cell]) / double(sim.density[0]));
}

void appendHeader(std::string& text, const SimState& sim) {
    for (const std::int32_t value : {sim.nCells, sim.stepCount, sim.stepCount, sim.stepCount}) {
        appendFramed(text, std::int64_t{value});
        text += lineEnd;
    }
}

void appendConserved(std::string& text, const SimState& sim) {
    for (int dim = 1; dim <= sim.nDim; ++dim)
        appendBlock(text, sim, [&](std::int32_t cell) { return sim.stageMomentum(committedSlot, cell, dim); });
    appendBlock(text, sim, [&](std::int32_t cell) { return sim.stageEnergy(committedSlot, cell); });
    for (int species = 0; species <= sim.nsMax; ++species)
        appendBlock(text, sim, [&](std::int32_t cell) { return sim.stageSpecies(committedSlot, species, cell); });
}

void appendPrimitives(std::string& text, const SimState& sim) {
    for (int dim = 1; dim <= sim.nDim; ++dim)
        appendBlock(text, sim, [&](std::int32_t cell) { return standardVelocity(sim, cell, dim); });
    appendBlock(text, sim, [&](std::int32_t cell) { return double(sim.temperature[cell]) - celsiusZero; });
    for (int species = 0; species <= sim.nsMax; ++species)
        appendBlock(text, sim, [&](std::int32_t cell) { return sim.concentration(cell, species); });
}

/// Gives false where memory is short.
bool formatState(const SimState& sim, std::string& text) {
    try {
        text.reserve(textLimit(sim));
        appendHeader(text, sim);
        appendConserved(text, sim);
        appendPrimitives(text, sim);
        return true;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) { // a length beyond what the library's strings can count
    }
    return false;
}

// --- recalling -----------------------------------------------------------------------------------------------------

constexpr int headerLines = 4;
constexpr std::size_t longestItem = 500; ///< bytes of a text that may still become a number

/// What a recall takes of a state file, which passes by piece by piece: its text is many times as large as its numbers.
struct StateReader {
    std::int32_t cells = 0; ///< that the model has
    std::size_t wanted = 0; ///< numbers of groups A to C
    std::int32_t cellsInFile = 0;
    int linesRead = 0; ///< of the header
    std::int32_t stepCount = 0;
    std::vector<float> values; ///< of groups A to C, in the order of the file
    std::string text;          ///< from the first item that may go on in the next piece
    std::size_t passed = 0;    ///< bytes of the file before it
    NumberItems items;
    ItemKind latest = ItemKind::number; ///< of the item read last
    bool fitsCells = true;

    bool done() const { return linesRead == headerLines && values.size() == wanted; }
};

/// The number of cells and the step count, of which the last of three holds.
void readHeader(StateReader& reader) {
    while (reader.linesRead < headerLines && reader.fitsCells) {
        std::int32_t number = 0;
        reader.latest = readWhole(reader.items, number);
        if (reader.latest != ItemKind::number) return;
        if (reader.linesRead == 0)
            reader.fitsCells = (reader.cellsInFile = number) == reader.cells;
        else
            reader.stepCount = number;
        reader.linesRead += 1;
    }
    if (reader.fitsCells) reader.values.reserve(reader.wanted);
}

/// Reads on to the end of `text`, of what is wanted, or at a fault.
void readItems(StateReader& reader, std::string_view text) {
    reader.items = {text};
    if (reader.linesRead < headerLines) readHeader(reader);
    if (reader.linesRead < headerLines || !reader.fitsCells) return;
    float number = 0;
    while (reader.values.size() < reader.wanted) {
        reader.latest = readNumber(reader.items, number);
        if (reader.latest != ItemKind::number) return;
        reader.values.push_back(number);
    }
}

/// Gives false where no more of the file is needed.
bool takePiece(StateReader& reader, std::string_view piece) {
    const std::size_t inPiece = wholeItems(piece);
    const std::size_t whole = inPiece == 0 ? 0 : reader.text.size() + inPiece;
    reader.text += piece;
    if (whole == 0 && reader.text.size() > longestItem) { // no separator for so long
        reader.items = {reader.text};
        reader.latest = ItemKind::otherText;
        return false;
    }
    readItems(reader, std::string_view(reader.text).substr(0, whole));
    if (reader.done() || !reader.fitsCells || reader.latest == ItemKind::otherText) return false;
    reader.text.erase(0, whole);
    reader.passed += whole;
    return true;
}

/// Reads groups A to C. `disturbed`: another process was saving the file meanwhile.
FileResult readState(const std::string& path, const SimState& sim, StateReader& reader, bool& disturbed) {
    const auto begin = [&] {
        reader = StateReader();
        reader.cells = sim.nCells;
        reader.wanted = static_cast<std::size_t>(sim.nCells) * static_cast<std::size_t>(sim.nDim + 1 + sim.nsMax + 1);
    };
    const auto take = [&](std::string_view piece) { return takePiece(reader, piece); };
    FileResult read = readWholeFile(path, {begin, take}, disturbed);
    const bool endsEarly = !reader.done() && reader.fitsCells && reader.latest != ItemKind::otherText;
    if (read && endsEarly) readItems(reader, reader.text); // the last item may lack a separator after it
    return read;
}

/// What is at the place of the item read last.
std::string nameOfItem(const StateReader& reader, const SimState& sim) {
    if (reader.linesRead == 0) return "the number of cells";
    if (reader.linesRead < headerLines) return "the step count";
    const auto cells = static_cast<std::size_t>(sim.nCells);
    const auto block = static_cast<int>(reader.values.size() / cells);
    const std::string place = " of cell " + std::to_string(reader.values.size() % cells + 1);
    if (block < sim.nDim) return "the momentum along dimension " + std::to_string(block + 1) + place;
    if (block == sim.nDim) return "the energy" + place;
    return "the mass of species " + std::to_string(block - sim.nDim - 1) + place;
}

/// The line, counted from 1, of a byte of the file, which is read once more for that.
std::int64_t lineOfByte(const std::string& path, std::size_t byte) {
    LineCount lines;
    std::size_t left = 0;
    const auto begin = [&] {
        lines = LineCount();
        left = byte;
    };
    const auto take = [&](std::string_view piece) {
        lines.pass(piece.substr(0, left));
        left -= std::min(left, piece.size());
        return left > 0;
    };
    bool ignored = false;
    readWholeFile(path, {begin, take}, ignored);
    return lines.line;
}

/// The message about what is wrong with the file; empty: nothing.
std::string faultOfState(const StateReader& reader, const SimState& sim) {
    if (reader.done()) return "";
    return stateName(sim) + ", "
           + itemFault(lineOfByte(statePath(sim), reader.passed + reader.items.item), reader.latest,
                       nameOfItem(reader, sim))
           + "." + lineEnd + "Nothing was recalled: the model stands as built from its geometry.";
}

/// Into both slots: before the first run of a program the primitives are derived from slot 0, later from slot 5. The
/// slopes, those of the step that was saved in the middle, are not in the file: they stay zero as the build left them,
/// and the next stage 1 adds nothing.
void takeState(SimState& sim, const std::vector<float>& values) {
    const float* block = values.data();
    const auto take = [&](auto& slots, int component) {
        for (const int slot : {int{committedSlot}, int{workSlot}})
            std::copy_n(block, sim.nCells, slots.slot(slot).component(component) + 1);
        block += sim.nCells;
    };
    for (int dim = 1; dim <= sim.nDim; ++dim) take(sim.stageMomentum, dim);
    take(sim.stageEnergy, 0);
    for (int species = 0; species <= sim.nsMax; ++species) take(sim.stageSpecies, species);
}

/// What a message says of the file after a save that failed.
const char* contentAfter(FileHolds holds) {
    switch (holds) {
    case FileHolds::oldContent: return "the file is as it was before this save.";
    case FileHolds::newContent: return "the file holds it all the same, and \"Recall\" finds it there.";
    default: return "what the file holds is incomplete.";
    }
}

} // namespace

bool saveState(SimState& sim, Interface& ui) {
    const auto fail = [&](const std::string& message, const std::string& detail = {}) {
        sim.reported.state = true;
        ui.showMessage({message, ReportKind::saveFault, sim.stepCount, detail});
        return false;
    };
    if (sim.nDim == 0) return fail("select an input geometery first");
    std::string text;
    if (!formatState(sim, text))
        return fail("The state is not saved: there is not enough memory for the text of " + stateName(sim) + ".");
    const FileResult opened = tryOpenForWriting(statePath(sim));
    sim.openError = opened.error;
    if (!opened) return fail(openFault, stateName(sim) + ": " + opened.reason);
    const OverwriteResult written = overwriteFile(statePath(sim), text);
    if (!written)
        return fail("The state file " + stateName(sim) + " can't be written: " + written.reason + "." + lineEnd
                    + "The state in memory is unchanged; " + contentAfter(written.holds));
    return true;
}

bool recallState(SimState& sim, Interface& ui) {
    const auto fail = [&](const std::string& message, const std::string& detail = {}) {
        ui.showMessage({message, ReportKind::note, 0, detail});
        return false;
    };
    if (sim.nDim == 0) return fail("select an input geometry first");
    const FileResult opened = tryOpenForReading(statePath(sim));
    sim.openError = opened.error;
    if (!opened) return fail(openFault, stateName(sim) + ": " + opened.reason);
    StateReader reader;
    bool disturbed = false;
    const FileResult read = readState(statePath(sim), sim, reader, disturbed);
    if (!read)
        return fail("The state file " + stateName(sim) + " can't be read: " + read.reason + "." + lineEnd
                    + "Nothing has changed.");
    if (disturbed)
        ui.showMessage("Another process was saving " + stateName(sim) + " at this moment; it was read again, whole.");
    sim.runMode = modeModelStands; // not modeGeometryRead: the build must not empty the log
    buildModel(sim, ui);
    if (!reader.fitsCells)
        return fail("incorrect number of cells in saved state",
                    stateName(sim) + " holds a state of " + std::to_string(reader.cellsInFile)
                        + " cells, and the geometry has " + std::to_string(sim.nCells));
    const std::string fault = faultOfState(reader, sim);
    if (!fault.empty()) return fail(fault);
    takeState(sim, reader.values);
    sim.revision += 1;
    sim.stepCount = reader.stepCount;
    updatePrimitives(sim, ui);
    return true;
}

std::int32_t savedStep(const SimState& sim) {
    std::string beginning;
    const auto begin = [&] { beginning.clear(); };
    const auto take = [&](std::string_view piece) {
        beginning += piece;
        return std::count(beginning.begin(), beginning.end(), '\n') < 2 && beginning.size() < 2 * longestItem;
    };
    bool disturbed = false;
    if (!readWholeFile(statePath(sim), {begin, take}, disturbed)) return -1;
    NumberItems items{beginning};
    std::int32_t cells = 0;
    std::int32_t step = -1;
    const bool read = readWhole(items, cells) == ItemKind::number && readWhole(items, step) == ItemKind::number;
    return read ? step : -1;
}

} // namespace norvane
