#include "geometry/table_place.h"

#include <algorithm>
#include <cctype>

namespace norvane {

std::string columnLetters(std::int64_t column) {
    std::string letters;
    for (; column > 0; column = (column - 1) / 26) letters += static_cast<char>('A' + (column - 1) % 26);
    std::reverse(letters.begin(), letters.end());
    return letters;
}

std::string spreadsheetAddress(const TablePlace& place) {
    if (place.row > 0 && place.column > 0) return columnLetters(place.column) + std::to_string(place.row);
    if (place.row > 0) return "row " + std::to_string(place.row);
    if (place.column > 0) return "column " + columnLetters(place.column);
    return {};
}

TablePlace placeOf(const SimState& sim, std::int32_t cell) {
    const std::int64_t dataRow = (std::int64_t{cell} - 1) / sim.gridCols;
    const std::int64_t rowsOfLayer = sim.layerRows - 1;
    return {sim.firstLayerRow + dataRow / rowsOfLayer * sim.layerRows + dataRow % rowsOfLayer + 1,
            (std::int64_t{cell} - 1) % sim.gridCols + 1};
}

std::int32_t cellOfAddress(const SimState& sim, const std::string& address) {
    std::int64_t column = 0;
    std::size_t at = 0;
    for (; at < address.size() && std::isalpha(static_cast<unsigned char>(address[at])) != 0 && column <= sim.gridCols;
         ++at)
        column = column * 26 + (std::toupper(static_cast<unsigned char>(address[at])) - 'A' + 1);
    std::int64_t row = 0;
    const bool hasRow = at < address.size();
    for (; at < address.size() && std::isdigit(static_cast<unsigned char>(address[at])) != 0
           && row <= sim.grid.rowCount();
         ++at)
        row = row * 10 + (address[at] - '0');
    const bool isPlace = hasRow && at == address.size() && column >= 1 && column <= sim.gridCols
                         && row > sim.firstLayerRow && row <= sim.grid.rowCount();
    if (!isPlace || (row - sim.firstLayerRow) % sim.layerRows == 0) return 0;
    const std::int64_t layer = (row - sim.firstLayerRow) / sim.layerRows;
    const std::int64_t dataRow = layer * (sim.layerRows - 1) + (row - sim.firstLayerRow) % sim.layerRows - 1;
    const std::int64_t cell = dataRow * sim.gridCols + column;
    return cell <= sim.nCells ? static_cast<std::int32_t>(cell) : 0;
}

} // namespace norvane
