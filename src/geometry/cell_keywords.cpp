#include "geometry/cell_keywords.h"

#include "core/number_text.h"

namespace norvane {

namespace {

constexpr std::size_t keyLength = 2;

} // namespace

std::string readable(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (c == ',') c = '.';
    }
    return result;
}

void storeNumber(double number, float& target) { target = static_cast<float>(number); }

void storeNumber(double number, std::int16_t& target) { target = toInt16(number); }

void storeNumber(double number, std::int32_t& target) { target = toInt32(number); }

template <class Target>
void parseKeyValue(std::string_view text, std::string_view key, Target& target) {
    const std::size_t at = text.find(key);
    if (at == std::string_view::npos) return;
    storeNumber(numericPrefix(text.substr(at + key.size())), target);
}

template void parseKeyValue(std::string_view text, std::string_view key, float& target);
template void parseKeyValue(std::string_view text, std::string_view key, std::int16_t& target);
template void parseKeyValue(std::string_view text, std::string_view key, std::int32_t& target);

void parseKeyIndexValue(std::string_view text, std::string_view key, std::int16_t& index, float& value) {
    const std::size_t at = text.find(key);
    if (at == std::string_view::npos) return;
    const std::size_t behindKey = at + key.size();
    const std::size_t semicolon = text.find(';', behindKey);
    if (semicolon == std::string_view::npos) return;
    storeNumber(numericPrefix(text.substr(behindKey, semicolon - behindKey)), index);
    storeNumber(numericPrefix(text.substr(semicolon + 1)), value);
}

template <class Element>
void parseKeyList(std::string_view text, std::string_view key, CellTable<Element>& array, std::int32_t cell, int nDim) {
    std::size_t from = 0;
    for (int turn = 0; turn <= nDim; ++turn) {
        const std::size_t at = text.find(key, from);
        if (at == std::string_view::npos) return; // no later turn can find it either
        from = at + keyLength;
        const std::size_t semicolon = text.find(';', from);
        if (semicolon == std::string_view::npos) return;
        const auto index = static_cast<float>(numericPrefix(text.substr(from, semicolon - from)));
        const auto value = static_cast<float>(numericPrefix(text.substr(semicolon + 1)));
        // The index is held against the range as read: 2.4 is above 2, though it would be made whole to 2.
        const bool inRange =
            index >= static_cast<float>(array.firstComponent()) && index <= static_cast<float>(array.lastComponent());
        if (inRange && array.hasCell(cell)) storeNumber(double(value), array(cell, toInt32(double(index))));
    }
}

template void
parseKeyList(std::string_view text, std::string_view key, CellTable<float>& array, std::int32_t cell, int nDim);
template void
parseKeyList(std::string_view text, std::string_view key, CellTable<std::int16_t>& array, std::int32_t cell, int nDim);

void parseCellKeys(SimState& sim, std::string_view text, std::int32_t cell) {
    const int nDim = sim.nDim;
    parseKeyValue(text, "CP", sim.heatCapacity[cell]);
    parseKeyValue(text, "ET", sim.viscosity[cell]);
    parseKeyValue(text, "RH", sim.density[cell]);
    parseKeyValue(text, "LA", sim.conductivity[cell]);
    parseKeyValue(text, "TT", sim.temperature[cell]);
    parseKeyValue(text, "PP", sim.pressure[cell]);
    parseKeyValue(text, "RR", sim.friction[cell]);
    parseKeyList(text, "WV", sim.wallVelocity, cell, nDim);
    parseKeyList(text, "CC", sim.concentration, cell, nDim);
    parseKeyList(text, "VV", sim.velocityInit, cell, nDim);
    // FF is an accepted key without a target: there is nothing to store.
    parseKeyValue(text, "WT", sim.wallTemperature[cell]);
    parseKeyValue(text, "WP", sim.wallPressure[cell]);
    parseKeyValue(text, "WC", sim.wallConcentration[cell]);
}

} // namespace norvane
