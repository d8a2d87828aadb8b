#include "exchange/state_file.h"

#include "core/number_text.h"
#include "core/primitive_update.h"
#include "exchange/number_items.h"
#include "geometry/model_build.h"
#include "platform/files.h"

#include <new>
#include <stdexcept>
#include <string>

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

/// Slopes are zero in a fresh model and after a recall, so that one of their slots can take the values of a file until
/// all of them are known to be there: the state itself is touched only then, and no memory is needed for them.
constexpr int heldBackSlot = 1;

struct StateReader {
    std::string fileName;
    NumberItems items;
    std::int32_t stepCount = 0;
    std::string fault; ///< message about the first thing that is wrong with the file; empty: nothing so far
};

bool accept(StateReader& reader, ItemKind kind, const std::string& wanted) {
    if (kind == ItemKind::number) return true;
    reader.fault = reader.fileName + ", " + itemFault(reader.items, kind, wanted) + "." + lineEnd
                   + "Nothing was recalled: the model stands as built from its geometry.";
    return false;
}

/// Reads the number of cells and the step count, of which the last of three holds.
bool readHeader(StateReader& reader, const SimState& sim) {
    std::int32_t cells = 0;
    if (!accept(reader, readWhole(reader.items, cells), "the number of cells")) return false;
    if (cells != sim.nCells) {
        reader.fault = "incorrect number of cells in saved state";
        return false;
    }
    for (int line = 1; line <= 3; ++line)
        if (!accept(reader, readWhole(reader.items, reader.stepCount), "the step count")) return false;
    return true;
}

/// Reads a value for each cell into `target(cell)`. `quantity` names them in a message.
template <class Target>
bool readBlock(StateReader& reader, const SimState& sim, const std::string& quantity, const Target& target) {
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        const ItemKind kind = readNumber(reader.items, target(cell));
        if (kind != ItemKind::number) return accept(reader, kind, quantity + " of cell " + std::to_string(cell));
    }
    return true;
}

bool readConserved(StateReader& reader, SimState& sim) {
    for (int dim = 1; dim <= sim.nDim; ++dim)
        if (!readBlock(reader, sim, "the momentum along dimension " + std::to_string(dim),
                       [&](std::int32_t cell) -> float& { return sim.stageMomentum(heldBackSlot, cell, dim); }))
            return false;
    if (!readBlock(reader, sim, "the energy",
                   [&](std::int32_t cell) -> float& { return sim.stageEnergy(heldBackSlot, cell); }))
        return false;
    for (int species = 0; species <= sim.nsMax; ++species)
        if (!readBlock(reader, sim, "the mass of species " + std::to_string(species),
                       [&](std::int32_t cell) -> float& { return sim.stageSpecies(heldBackSlot, species, cell); }))
            return false;
    return true;
}

/// Calls `work` for every conserved quantity of every cell, with a function that gives its value in a slot.
template <class Work>
void forConserved(SimState& sim, const Work& work) {
    for (int dim = 1; dim <= sim.nDim; ++dim)
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
            work([&](int slot) -> float& { return sim.stageMomentum(slot, cell, dim); });
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
        work([&](int slot) -> float& { return sim.stageEnergy(slot, cell); });
    for (int species = 0; species <= sim.nsMax; ++species)
        for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
            work([&](int slot) -> float& { return sim.stageSpecies(slot, species, cell); });
}

/// The slopes of the step that was saved in the middle are not in the file: the next stage 1 has to add nothing.
void clearSlopes(SimState& sim) {
    forConserved(sim, [](const auto& q) {
        for (int slot = 1; slot <= 4; ++slot) q(slot) = 0;
    });
}

/// Into both slots: before the first run of a program the primitives are derived from slot 0, later from slot 5.
void takeHeldBack(SimState& sim) {
    forConserved(sim, [](const auto& q) {
        q(committedSlot) = q(heldBackSlot);
        q(workSlot) = q(heldBackSlot);
    });
}

} // namespace

bool saveState(SimState& sim, Interface& ui) {
    const auto fail = [&](const std::string& message) {
        sim.told.state = true;
        ui.showMessage(message);
        return false;
    };
    if (sim.nDim == 0) return fail("select an input geometery first");
    std::string text;
    if (!formatState(sim, text))
        return fail("The state is not saved: there is not enough memory for the text of " + stateName(sim) + ".");
    const FileResult opened = tryOpenForWriting(statePath(sim));
    sim.openError = opened.error;
    if (!opened) return fail(openFault);
    const FileResult written = overwriteFile(statePath(sim), text);
    if (!written)
        return fail("The state file " + stateName(sim) + " can't be written: " + written.reason + "." + lineEnd
                    + "The state in memory is unchanged; what the file holds may be incomplete.");
    return true;
}

bool recallState(SimState& sim, Interface& ui) {
    const auto fail = [&](const std::string& message) {
        ui.showMessage(message);
        return false;
    };
    if (sim.nDim == 0) return fail("select an input geometry first");
    std::string text;
    const FileResult opened = tryOpenForReading(statePath(sim));
    sim.openError = opened.error;
    if (!opened) return fail(openFault);
    const FileResult read = readFile(statePath(sim), text);
    if (!read)
        return fail("The state file " + stateName(sim) + " can't be read: " + read.reason + "." + lineEnd
                    + "Nothing has changed.");
    sim.runMode = modeModelStands; // not modeGeometryRead: the build must not empty the log
    buildModel(sim, ui);
    StateReader reader{stateName(sim), {text}, 0, {}};
    const bool isWhole = readHeader(reader, sim) && readConserved(reader, sim);
    if (isWhole) takeHeldBack(sim);
    clearSlopes(sim);
    if (!isWhole) return fail(reader.fault);
    sim.stepCount = reader.stepCount;
    updatePrimitives(sim, ui);
    return true;
}

} // namespace norvane
