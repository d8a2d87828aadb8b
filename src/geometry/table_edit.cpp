#include "geometry/table_edit.h"

#include "core/number_text.h"
#include "geometry/cell_keywords.h"
#include "geometry/keys.h"
#include "geometry/table_place.h"

#include <algorithm>

namespace norvane {

namespace {

/// The table with another text in one place.
CellTextTable withText(const SimState& sim, std::int64_t row, std::int64_t column, const std::string& text) {
    std::string bytes;
    for (std::int64_t each = 1; each <= sim.grid.rowCount(); ++each) {
        if (each > 1) bytes += '\n';
        if (each != row) {
            bytes += sim.grid.row(each);
            continue;
        }
        RowWalker walker(sim.grid.row(each), sim.gridCols);
        for (std::int64_t at = 1; at <= sim.gridCols; ++at) {
            const std::string_view old = walker.next();
            bytes += at > 1 ? "\t" : "";
            bytes += at == column ? std::string_view(text) : old;
        }
    }
    bytes += '\n'; // a last row without a text keeps its place
    return CellTextTable(std::move(bytes));
}

/// The key, and what follows it, of the left side of a change: "DT", "GG 2". Null: no key.
const Key* keyOfChange(const std::string& left, std::string& index) {
    const std::string letters = left.substr(0, std::min(left.find(' '), left.size()));
    index = left.size() > letters.size() ? left.substr(letters.size() + 1) : "";
    for (const Key& key : allKeys())
        if (key.letters == letters) return &key;
    return nullptr;
}

std::string applyDefault(SimState& sim, const Key& key, const std::string& index, const std::string& value) {
    const std::string letters(key.letters);
    if ((key.scope & inDefaults) == 0) return letters + " is no default; it can't be set for the whole model";
    if (key.form == KeyForm::plain && !index.empty()) return letters + " takes no index: " + letters + "=" + value;
    if (key.form != KeyForm::plain && index.empty())
        return letters + " takes an index: \"" + letters + " 1=" + value + "\"";
    std::size_t length = 0;
    const std::string number = readable(value);
    numericPrefix(number, length);
    if (length == 0 || length != number.size()) return "\"" + value + "\" is no number";
    addDefault(sim, letters + " " + (index.empty() ? "" : index + ";") + value);
    return {};
}

} // namespace

void setCellText(SimState& sim, std::int32_t cell, const std::string& text) {
    const TablePlace place = placeOf(sim, cell);
    sim.grid = withText(sim, place.row, place.column, text);
}

void addDefault(SimState& sim, const std::string& item) {
    const std::string_view last = sim.grid.text(sim.gridCols, sim.firstLayerRow, sim.gridCols);
    sim.grid = withText(sim, sim.firstLayerRow, sim.gridCols, std::string(last) + addedItem + item);
}

std::string applyChange(SimState& sim, const std::string& change) {
    const std::size_t equals = change.find('=');
    const bool isChange =
        equals != std::string::npos && equals > 0 && change.find_first_of("\t\r\n") == std::string::npos;
    if (!isChange) return "it is no change such as DT=2E-5 or C7=\"TT 400\"";
    const std::string left = readable(change.substr(0, equals));
    const std::string right = change.substr(equals + 1);
    std::string index;
    if (const Key* const key = keyOfChange(left, index)) return applyDefault(sim, *key, index, right);
    const std::int32_t cell = cellOfAddress(sim, left);
    if (cell == 0)
        return "\"" + left + "\" is neither a key nor a cell of the drawing, " + spreadsheetAddress(placeOf(sim, 1))
               + " to " + spreadsheetAddress(placeOf(sim, sim.nCells));
    if (placeOf(sim, cell).column == 1 && !right.empty() && (right[0] == 'L' || right[0] == 'l'))
        return "a text that begins with L in column A would make an L row; put another item before it";
    setCellText(sim, cell, right);
    return {};
}

} // namespace norvane
