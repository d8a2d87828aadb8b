#include "frontends/cli/export_table.h"

#include "core/addressing.h"
#include "core/quantity_names.h"
#include "exchange/cell_table.h"
#include "exchange/csv_text.h"
#include "frontends/cli/console.h"
#include "geometry/cell_selection.h"
#include "geometry/table_place.h"
#include "platform/files.h"
#include "platform/terminal_text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <numeric>

namespace norvane {

namespace {

using Cells = std::vector<std::int32_t>;

const std::string& fileOf(const ExportOptions& options) { return options.csv.empty() ? options.output : options.csv; }

bool isStandardOutput(const std::string& file) { return file.empty() || file == "-"; }

std::string faultOfSlice(const SimState& sim, const std::string& slice, Cells& cells) {
    const auto number = [](const std::string& text) {
        const bool isNumber = !text.empty() && text.size() <= 5
                              && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
        return isNumber ? std::stoi(text) : -1;
    };
    const std::size_t equals = std::min(slice.find('='), slice.size());
    const int dim = number(slice.substr(0, equals));
    if (dim < 1 || dim > sim.nDim || equals == slice.size())
        return "it is not DIMENSION=SLICE with a dimension of 1 to " + std::to_string(sim.nDim);
    const int place = number(slice.substr(equals + 1));
    if (place < 0 || place >= sim.cellCount[dim])
        return "dimension " + std::to_string(dim) + " has the slices 0 to " + std::to_string(sim.cellCount[dim] - 1);
    std::erase_if(cells, [&](std::int32_t cell) { return cellCoordinate(sim, cell, dim) != double(place); });
    return cells.empty() ? "no cell is left; each dimension can be given once" : "";
}

/// A line is a part of one row or one column.
std::string
faultOfLine(const SimState& sim, std::span<const NamedRange> labels, const std::string& line, Cells& cells) {
    std::string fault = cellsOfRange(sim, line, labels, cells);
    if (!fault.empty()) return fault;
    const TablePlace first = placeOf(sim, cells.front());
    const TablePlace last = placeOf(sim, cells.back());
    return first.row == last.row || first.column == last.column
               ? ""
               : "it is a rectangle; a line lies in one row or one column, and --cells takes a rectangle";
}

std::string
faultOfCells(const SimState& sim, std::span<const NamedRange> labels, const std::string& list, Cells& cells) {
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        std::string fault = cellsOfRange(sim, list.substr(begin, end - begin), labels, cells);
        if (!fault.empty()) return fault;
        begin = end + 1;
    }
    return {};
}

bool refuse(const std::string& option, const std::string& fault) {
    std::fprintf(stderr, "%s: %s\n", printableName(option).c_str(), printableName(fault).c_str());
    return false;
}

/// The cells that the options choose, all without them. Gives false after a message.
bool chooseCells(const ExportOptions& options, const SimState& sim, Cells& cells) {
    std::vector<NamedRange> labels;
    for (const std::string& text : options.regions) {
        NamedRange named;
        Cells region;
        std::string fault = parseNamedRange(text, named);
        if (fault.empty()) fault = cellsOfRange(sim, named.range, {}, region);
        if (!fault.empty()) return refuse("--region " + text, fault);
        labels.push_back(named);
    }
    std::string fault;
    if (!options.line.empty())
        return (fault = faultOfLine(sim, labels, options.line, cells)).empty()
               || refuse("--line " + options.line, fault);
    if (!options.cells.empty())
        return (fault = faultOfCells(sim, labels, options.cells, cells)).empty()
               || refuse("--cells " + options.cells, fault);
    cells.resize(static_cast<std::size_t>(sim.nCells));
    std::iota(cells.begin(), cells.end(), 1);
    for (const std::string& slice : options.slices)
        if (!(fault = faultOfSlice(sim, slice, cells)).empty()) return refuse("--slice " + slice, fault);
    return true;
}

ExitStatus deliver(const std::string& file, const std::string& text) {
    if (isStandardOutput(file)) {
        errno = 0;
        const bool printed =
            std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
        if (printed || errno == EPIPE) return exitDone; // a reader who leaves has read enough
        std::fprintf(stderr, "norvane: not all could be printed\n");
        return exitFileFault;
    }
    const FileResult written = replaceFile(file, text);
    if (written) return exitDone;
    std::fprintf(stderr, "%s can't be written: %s\n", printableName(file).c_str(), written.reason.c_str());
    return exitFileFault;
}

} // namespace

bool asksForTable(const ExportOptions& options) { return !options.csv.empty() || !options.sheet.empty(); }

bool mayExportTable(const ExportOptions& options) {
    if (!options.csv.empty() && !options.output.empty())
        return refuse("--output", "--csv names its file itself; leave -o out");
    return isStandardOutput(fileOf(options)) || !wouldOverwrite(options.geometry, fileOf(options));
}

ExitStatus exportTable(const ExportOptions& options, const SimState& sim) {
    std::vector<NamedQuantity> quantities;
    if (!options.sheet.empty()) {
        const std::string fault = findQuantity(sim, options.sheet, quantities);
        if (!fault.empty()) return refuse("--sheet", fault), exitBadUse;
        return deliver(options.output, inShapeOfDrawing(sim, LayerMarks::asDrawn, [&](std::int32_t cell) {
                           std::string text;
                           appendNineDigits(text, double(quantities.front().of(sim, cell)));
                           return text;
                       }));
    }
    const std::string fault =
        options.quantities.empty() ? std::string() : findQuantities(sim, options.quantities, quantities);
    if (!fault.empty()) return refuse("--quantity", fault), exitBadUse;
    if (options.quantities.empty()) quantities = usualQuantities(sim);
    Cells cells;
    if (!chooseCells(options, sim, cells)) return exitBadUse;
    return deliver(options.csv, cellTable(sim, cells, quantities));
}

} // namespace norvane
