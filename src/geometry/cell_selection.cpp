#include "geometry/cell_selection.h"

#include "geometry/table_place.h"

#include <algorithm>
#include <cctype>

namespace norvane {

namespace {

bool isNameCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

/// Letters and then digits, whether or not there is such a cell.
bool looksLikeAddress(const std::string& text) {
    const auto isLetter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
    const auto isDigit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    const auto digits = std::find_if_not(text.begin(), text.end(), isLetter);
    return digits != text.begin() && digits != text.end() && std::all_of(digits, text.end(), isDigit);
}

std::string noCell(const SimState& sim, const std::string& address) {
    return "there is no cell " + address + "; the cells of the drawing are " + spreadsheetAddress(placeOf(sim, 1))
           + " to " + spreadsheetAddress(placeOf(sim, sim.nCells));
}

/// One after the other from `from` to `to`, in either direction, both included.
template <class Work>
void forSteps(std::int64_t from, std::int64_t to, const Work& work) {
    const std::int64_t step = from <= to ? 1 : -1;
    for (std::int64_t k = from; k != to + step; k += step) work(k);
}

} // namespace

std::string parseNamedRange(const std::string& text, NamedRange& named) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) return "it is not NAME=RANGE, such as radiator=B2:B18";
    named = {text.substr(0, equals), text.substr(equals + 1)};
    if (named.name.empty() || !std::all_of(named.name.begin(), named.name.end(), isNameCharacter))
        return "a name is made of letters, digits and \"_\"";
    if (looksLikeAddress(named.name)) return "the name " + named.name + " is the address of a cell";
    return {};
}

std::string cellsOfRange(const SimState& sim,
                         const std::string& range,
                         std::span<const NamedRange> labels,
                         std::vector<std::int32_t>& cells) {
    const auto label =
        std::find_if(labels.begin(), labels.end(), [&](const NamedRange& named) { return named.name == range; });
    const std::string text = label != labels.end() ? label->range : range;
    const std::size_t colon = text.find(':');
    const std::string begin = text.substr(0, colon);
    const std::string end = colon == std::string::npos ? begin : text.substr(colon + 1);
    for (const std::string& address : {begin, end}) {
        if (!looksLikeAddress(address))
            return "\"" + address + "\" is no address such as C7, no range such as C7:C30, and no label";
        if (cellOfAddress(sim, address) == 0) return noCell(sim, address);
    }
    const TablePlace first = placeOf(sim, cellOfAddress(sim, begin));
    const TablePlace last = placeOf(sim, cellOfAddress(sim, end));
    forSteps(first.row, last.row, [&](std::int64_t row) {
        if ((row - sim.firstLayerRow) % sim.layerRows == 0) return; // an L row
        forSteps(first.column, last.column, [&](std::int64_t column) {
            cells.push_back(cellOfAddress(sim, spreadsheetAddress({row, column})));
        });
    });
    return {};
}

} // namespace norvane
