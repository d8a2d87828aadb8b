#include "check/table_rules.h"

#include "check/item_rules.h"
#include "geometry/cell_keywords.h"
#include "geometry/table_edit.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace norvane {

namespace {

constexpr const char* saveAsText = "save the sheet as tab-separated text (\"Text (Tab delimited)\", \"Unicode text\")";

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\"") == std::string_view::npos; }

bool isLayerRow(std::string_view first) { return !first.empty() && (first[0] == 'L' || first[0] == 'l'); }

/// The first item of a text, without its blanks.
std::string_view firstItem(std::string_view text) {
    const std::string_view item = text.substr(0, text.find(':'));
    const std::size_t end = item.find_last_not_of(" \"");
    return end == std::string_view::npos ? std::string_view() : item.substr(0, end + 1);
}

/// "L" alone or with the number of its mark.
bool isBareMark(std::string_view item) {
    item.remove_prefix(1);
    return item.find_first_not_of(" 0123456789") == std::string_view::npos;
}

/// What the rows of a table hold, found in one walk.
struct Frame {
    std::int64_t columns = 0; ///< of row 1
    std::int64_t firstLayerRow = 0;
    std::int64_t lastLayerRow = 0;
    std::int64_t widestOther = 0; ///< last column with a text in any row but the first
    std::int64_t widestFirst = 0; ///< the same of row 1
    std::int64_t lastText = 0;    ///< last row with a text
    std::vector<std::int64_t> layerRows{};
    std::int64_t columnsOfOthers = 0; ///< of the longest row but the first
};

/// The last column of a row that holds more than blanks, of any width; 0: none.
std::int64_t lastColumnWithText(std::string_view row) {
    const std::size_t end = row.find_last_not_of(" \t\"");
    if (end == std::string_view::npos) return 0;
    return std::count(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(end), '\t') + 1;
}

std::string_view firstColumn(const CellTextTable& table, std::int64_t row) {
    const std::string_view text = table.row(row);
    return text.substr(0, text.find('\t'));
}

Frame walkedFrame(const CellTextTable& table) {
    Frame frame;
    if (table.rowCount() == 0) return frame;
    const std::string_view first = table.row(1);
    frame.columns = std::count(first.begin(), first.end(), '\t') + 1;
    for (std::int64_t row = 1; row <= table.rowCount(); ++row) {
        const std::int64_t last = lastColumnWithText(table.row(row));
        if (row == 1) {
            frame.widestFirst = last;
        } else {
            const std::string_view text = table.row(row);
            frame.widestOther = std::max(frame.widestOther, last);
            frame.columnsOfOthers =
                std::max<std::int64_t>(frame.columnsOfOthers, std::count(text.begin(), text.end(), '\t') + 1);
        }
        if (last > 0) frame.lastText = row;
        if (!isLayerRow(firstColumn(table, row))) continue;
        if (frame.firstLayerRow == 0) frame.firstLayerRow = row;
        frame.lastLayerRow = row;
        frame.layerRows.push_back(row);
    }
    return frame;
}

void checkWidth(const CellTextTable& table, const Frame& frame, Findings& findings) {
    for (std::int64_t row = 2; frame.widestOther > frame.columns && row <= table.rowCount(); ++row) {
        const std::int64_t last = lastColumnWithText(table.row(row));
        if (last <= frame.columns) continue;
        findings.add({Severity::warning,
                      "beyond-width",
                      {row, last},
                      "",
                      "line 1 sets the width of the grid, and it has " + std::to_string(frame.columns)
                          + (frame.columns == 1 ? " column" : " columns")
                          + ": what is further right falls into the last cell of the row. Fill row 1 with as many "
                            "tabs as the grid has columns"});
    }
    // A drawing whose last columns are plain gas is as wide as its rows.
    const bool isShorter = frame.columnsOfOthers < frame.columns;
    const bool isAlone = frame.widestOther > 1 && frame.widestOther < frame.columns
                         && (frame.widestFirst > frame.widestOther || isShorter);
    if (isAlone)
        findings.add({isShorter ? Severity::warning : Severity::note,
                      "width-of-line-1",
                      {1, frame.columns},
                      "",
                      "line 1 sets the width of the grid, and no other row has a text beyond column "
                          + columnLetters(frame.widestOther) + ". Are the columns "
                          + columnLetters(frame.widestOther + 1) + " to " + columnLetters(frame.columns)
                          + " part of the drawing?"});
}

bool layersAreEqual(const Frame& frame) {
    for (std::size_t k = 2; k < frame.layerRows.size(); ++k)
        if (frame.layerRows[k] - frame.layerRows[k - 1] != frame.layerRows[1] - frame.layerRows[0]) return false;
    return true;
}

/// Whether two rows or more have an empty column A and an L in column B.
bool hasMarksInColumn2(const CellTextTable& table) {
    int marks = 0;
    for (std::int64_t row = 1; row <= table.rowCount(); ++row) {
        const std::string_view text = table.row(row);
        if (text.size() >= 2 && text[0] == '\t' && isLayerRow(text.substr(1))) ++marks;
    }
    return marks >= 2;
}

void checkMarks(const CellTextTable& table, const Frame& frame, Findings& findings) {
    for (std::int64_t row = 1; row <= table.rowCount(); ++row) {
        const std::string_view text = firstColumn(table, row);
        const bool isQuoted = text.substr(0, 2) == "\"L" || text.substr(0, 2) == "\"l";
        if (isQuoted && isBareMark(firstItem(text.substr(1)))) // not "LA 5", which the quotes keep from being a mark
            findings.add({Severity::error,
                          "quoted",
                          {row, 1},
                          std::string(text),
                          "the quotation mark hides the L; save the text without quotes around it"});
        if (!isLayerRow(text)) continue;
        const std::string_view item = firstItem(text);
        if (isBareMark(item)) continue;
        // One at its place among the others is a mark with a title.
        const bool isTitle = row != frame.firstLayerRow && layersAreEqual(frame);
        findings.add({isTitle ? Severity::note : Severity::warning,
                      "row-begins-with-l",
                      {row, 1},
                      std::string(item),
                      "this row begins with L, so that it ends the rows above as an L row. If it is no such row, put "
                      "another item before it or move it to another column"});
    }
}

/// What the load says of such tables is hard to understand.
void checkLayers(const CellTextTable& table, const Frame& frame, Findings& findings) {
    const auto add = [&](const char* rule, std::int64_t row, const std::string& text) {
        findings.add({Severity::error, rule, {row, 0}, "", text});
    };
    const bool isShifted = frame.layerRows.empty() && table.rowCount() > 1 && hasMarksInColumn2(table);
    if (isShifted) add("shifted", 0, "the L rows have their L in column B; it has to be in column A: delete column A");
    if (frame.layerRows.size() == 1)
        add("one-l-row", frame.firstLayerRow,
            "this is the only L row; each layer has an L row above it and one below. Add one after row "
                + std::to_string(frame.lastText));
    else if (frame.lastLayerRow > 0 && frame.lastText > frame.lastLayerRow)
        add("text-after-end", frame.lastText,
            "the last row has to be the L row that ends the last layer. Add one below, or delete what follows row "
                + std::to_string(frame.lastLayerRow));
    else if (frame.lastLayerRow > 0 && table.rowCount() > frame.lastLayerRow)
        add("lines-after-end", frame.lastLayerRow + 1, "empty lines after the last L row; delete them");
    if (frame.layerRows.size() < 3 || layersAreEqual(frame)) return;
    std::string sizes;
    for (std::size_t k = 1; k < frame.layerRows.size() && k <= 12; ++k)
        sizes += (k > 1 ? ", " : "") + std::to_string(frame.layerRows[k] - frame.layerRows[k - 1] - 1);
    add("unequal-layers", frame.firstLayerRow,
        "the L rows enclose layers of " + sizes + (frame.layerRows.size() > 13 ? " ..." : "")
            + " rows; all layers need as many rows");
}

/// What columns may be separated by in place of tabs; twice in a row, or at an end, since one alone may be part of a
/// key.
struct Separator {
    const char* twice;
    const char* name;
};

void checkSeparators(const CellTextTable& table, const Frame& frame, Findings& findings) {
    if (frame.columns > 1 || table.rowCount() < 3) return;
    for (const Separator& each : {Separator{";;", "\";\""}, Separator{",,", "\",\""}, Separator{"  ", "blanks"}}) {
        std::int64_t rows = 0;
        for (std::int64_t row = 1; row <= table.rowCount(); ++row) {
            const std::string_view text = table.row(row);
            const bool isAtEnd = !text.empty() && (text.front() == each.twice[0] || text.back() == each.twice[0]);
            if (isAtEnd || text.find(each.twice) != std::string_view::npos) ++rows;
        }
        if (rows * 2 <= table.rowCount()) continue;
        findings.add({Severity::error,
                      "separator",
                      {},
                      "",
                      std::string("the columns seem to be separated by ") + each.name + "; " + saveAsText});
        return;
    }
}

/// Keys of the rows with defaults, with the place that gave each last.
using GivenDefaults = std::map<std::pair<std::string_view, double>, TablePlace>;

/// A default that stands in two cells of the table; twice in one cell is a matter of its text.
void checkDefaultsTwice(std::string_view text, const TextPlace& where, GivenDefaults& given, Findings& findings) {
    forEachItem(text, [&](std::string_view item, std::size_t) {
        forEachKey(item, inDefaults, where.nDim, [&](const KeyText& key) {
            const auto [found, isNew] = given.insert({{key.key->letters, key.index}, where.place});
            const bool isElsewhere = found->second.row != where.place.row || found->second.column != where.place.column;
            if (!isNew && isElsewhere && key.fault == KeyFault::none)
                findings.add({Severity::warning, "given-twice", where.place, std::string(item),
                              std::string(key.key->letters) + " is given in " + spreadsheetAddress(found->second)
                                  + ", too; this later one counts"});
            found->second = where.place;
        });
    });
}

void checkClosingRow(const SimState& sim, std::int64_t row, Findings& findings) {
    RowWalker walker(sim.grid.row(row), sim.gridCols);
    for (std::int64_t column = 1; column <= sim.gridCols; ++column) {
        const std::string_view text = walker.next();
        const bool isMark = column == 1 && text.find(':') == std::string_view::npos;
        if (isMark || isBlank(text)) continue;
        findings.add({Severity::warning,
                      "text-in-closing-row",
                      {row, column},
                      std::string(text),
                      "nothing is read from an L row that ends a layer"});
    }
}

} // namespace

bool checkBytes(std::string_view beginning, Findings& findings) {
    static constexpr std::pair<std::string_view, const char*> known[] = {
        {"PK\x03\x04", "a spreadsheet file (.xlsx, .ods)"},
        {"\xD0\xCF\x11\xE0", "a spreadsheet file (.xls)"},
        {"%PDF", "a PDF document"},
        {"\x89PNG", "a picture"},
        {"BM", "a picture"},
        {"<?xml", "an XML file"},
        {"{\\rtf", "a word processor's file"},
    };
    for (const auto& [mark, what] : known) {
        if (beginning.substr(0, mark.size()) != mark
            || (mark == "BM" && beginning.find('\t') != std::string_view::npos))
            continue;
        findings.add({Severity::error, "no-text", {}, "", std::string("this is ") + what + "; " + saveAsText});
        return false;
    }
    return true;
}

void checkFrame(const CellTextTable& table, Findings& findings) {
    const Frame frame = walkedFrame(table);
    checkSeparators(table, frame, findings);
    checkWidth(table, frame, findings);
    checkMarks(table, frame, findings);
    checkLayers(table, frame, findings);
}

void checkTexts(const SimState& sim, Findings& findings) {
    TextPlace where{{}, inDefaults, sim.nDim, sim.nsMax};
    GivenDefaults given;
    for (std::int64_t row = 1; row <= sim.grid.rowCount(); ++row) {
        const bool isDefaults = row <= sim.firstLayerRow;
        const bool isClosing = !isDefaults && (row - sim.firstLayerRow) % sim.layerRows == 0;
        if (isClosing) {
            checkClosingRow(sim, row, findings);
            continue;
        }
        where.scope = isDefaults ? inDefaults : inCells;
        RowWalker walker(sim.grid.row(row), sim.gridCols);
        for (std::int64_t column = 1; column <= sim.gridCols; ++column) {
            std::string_view text = walker.next();
            where.place = {row, column};
            // The mark of the first L row is no item of the defaults.
            if (row == sim.firstLayerRow && column == 1) text.remove_prefix(std::min(text.find(':'), text.size()));
            if (text.empty() || text.find('\t') != std::string_view::npos) continue; // beyond the width
            checkText(text, where, findings);
            if (isDefaults) checkDefaultsTwice(text.substr(0, text.find(addedItem)), where, given, findings);
        }
    }
}

} // namespace norvane
