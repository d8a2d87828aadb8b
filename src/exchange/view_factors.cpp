#include "exchange/view_factors.h"

#include "exchange/number_items.h"
#include "geometry/text_encoding.h"
#include "platform/files.h"

#include <cstdlib>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace norvane {

namespace {

constexpr const char* unchangedText = "\r\nNothing was imported: the earlier view factors, if any, stay in force.";

/// (W/(m2 K4))^(1/4), of the radiation constant 5.67E-08 W/(m2 K4). A literal: powers of C libraries differ in the last
/// place.
constexpr double radiationRoot = 0x1.f9a51d635eb8ep-7;

std::string radName(const SimState& sim) { return sim.baseName + "_rad"; }

std::string radPath(const SimState& sim) { return joinPath(sim.inputDir, radName(sim)); }

/// A table that is held back until the whole file has been read.
struct PairTable {
    std::vector<std::int32_t> first;
    std::vector<std::int32_t> second;
    std::vector<float> factor; ///< m2
};

struct RadReader {
    NumberItems items;
    std::int32_t nCells = 0;
    std::int32_t pairCount = 0;
    std::int32_t record = 0; ///< the record in hand, from 1; 0: the numbers before the first record
    PairTable table;
    std::string fault; ///< what is wrong with the file, and where; empty: nothing so far
};

bool fail(RadReader& reader, const std::string& what) {
    if (reader.record > 0)
        reader.fault = "record " + std::to_string(reader.record) + " of " + std::to_string(reader.pairCount) + ", ";
    reader.fault += what;
    return false;
}

bool accept(RadReader& reader, ItemKind kind, const char* wanted) {
    return kind == ItemKind::number || fail(reader, itemFault(lineOfItem(reader.items), kind, wanted));
}

/// The last of three numbers holds.
bool readPairCount(RadReader& reader) {
    for (const char* place : {"the first number", "the second number", "the number of records"})
        if (!accept(reader, readWhole(reader.items, reader.pairCount), place)) return false;
    if (reader.pairCount >= 0) return true;
    return fail(reader, "line " + std::to_string(lineOfItem(reader.items)) + ": the number of records is negative");
}

bool failCell(RadReader& reader, const char* name, std::int32_t cell) {
    return fail(reader, "line " + std::to_string(lineOfItem(reader.items)) + ": " + name + " is " + std::to_string(cell)
                            + ", and the grid has cells 1 to " + std::to_string(reader.nCells));
}

bool readRecord(RadReader& reader) {
    std::int32_t first = 0;
    std::int32_t second = 0;
    float a = 0;
    float b = 0;
    if (!accept(reader, readWhole(reader.items, first), "the first cell")) return false;
    if (first < 1 || first > reader.nCells) return failCell(reader, "the first cell", first);
    if (!accept(reader, readWhole(reader.items, second), "the second cell")) return false;
    if (std::llabs(second) > reader.nCells) return failCell(reader, "the second cell", second);
    if (!accept(reader, readNumber(reader.items, a), "the first factor")) return false;
    if (!accept(reader, readNumber(reader.items, b), "the second factor")) return false;
    reader.table.first.push_back(first);
    reader.table.second.push_back(second);
    reader.table.factor.push_back(static_cast<float>(double(a) * double(b)));
    return true;
}

/// The table grows with the records that are really there: a count in a file is no reason to take memory for it.
bool readTable(RadReader& reader) {
    if (!readPairCount(reader)) return false;
    while (reader.record < reader.pairCount) {
        reader.record += 1;
        if (!readRecord(reader)) return false;
    }
    return true;
}

/// Puts a table in force whole: memory is taken before anything changes.
void takeTable(SimState& sim, const PairTable& table) {
    const auto count = static_cast<std::int32_t>(table.factor.size());
    Array<std::int32_t> cells[2];
    Array<float> factors;
    cells[0].allocate(0, count);
    cells[1].allocate(0, count);
    factors.allocate(0, count);
    for (std::int32_t pair = 1; pair <= count; ++pair) {
        const std::size_t record = static_cast<std::size_t>(pair) - 1;
        cells[0][pair] = table.first[record];
        cells[1][pair] = table.second[record];
        factors[pair] = table.factor[record];
    }
    sim.radPair[0] = std::move(cells[0]);
    sim.radPair[1] = std::move(cells[1]);
    sim.radFactor = std::move(factors);
    sim.radPairCount = count;
    sim.radActive = true;
    sim.sigmaRoot = radiationRoot;
}

FileResult readNumbers(const std::string& path, std::string& bytes) {
    constexpr ItemForm numbers{" \t,\r\n", std::size_t{1} << 12};
    bool tooLong = false;
    FileResult read = readItems(path, numbers, bytes, tooLong);
    if (tooLong) bytes += '#'; // what is there of the number must not be taken for one
    return read;
}

/// Gives what is wrong with the file; empty when its table is in force.
std::string importTable(SimState& sim, std::string bytes) {
    try {
        const std::string text = toUtf8(std::move(bytes));
        RadReader reader{{text}, sim.nCells, 0, 0, {}, {}};
        if (readTable(reader)) takeTable(sim, reader.table);
        return reader.fault;
    } catch (const std::bad_alloc&) {
        return "there is not enough memory for its records";
    }
}

} // namespace

void importViewFactors(SimState& sim, Interface& ui) {
    if (sim.nDim == 0) {
        ui.showMessage("select an inputrange first");
        return;
    }
    const FileResult opened = tryOpenForReading(radPath(sim));
    sim.openError = opened.error;
    if (!opened) {
        ui.showMessage({"An error occured opening the file", ReportKind::note, 0, radName(sim) + ": " + opened.reason});
        return;
    }
    std::string bytes;
    const FileResult read = readNumbers(radPath(sim), bytes);
    const std::string fault = read ? importTable(sim, std::move(bytes)) : "it can't be read: " + read.reason;
    if (!fault.empty()) {
        ui.showMessage(radName(sim) + ", " + fault + "." + unchangedText);
        return;
    }
    ui.showMessage(std::to_string(sim.radPairCount) + " Viewfactors imported");
}

} // namespace norvane
