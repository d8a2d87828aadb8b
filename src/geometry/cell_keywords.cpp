#include "geometry/cell_keywords.h"

#include "core/number_text.h"

namespace norvane {

namespace {

/// Reads the number at the beginning of item[from .. to - 1]; sets `fault` where there is none.
double numberIn(std::string_view item, std::size_t from, std::size_t to, KeyFault missing, KeyText& text) {
    std::size_t length = 0;
    const double number = numericPrefix(item.substr(from, to - from), length);
    if (length == 0 && text.fault == KeyFault::none) text.fault = missing;
    text.valueEnds = from + length;
    return number;
}

// --- storing -------------------------------------------------------------------------------------------------------

/// Held against the range as read: 2.4 is above 2, though it would be made whole to 2.
template <class Element>
int storeAt(CellTable<Element>& table, std::int32_t cell, const KeyText& text) {
    const auto index = static_cast<float>(text.index);
    const bool inRange =
        index >= static_cast<float>(table.firstComponent()) && index <= static_cast<float>(table.lastComponent());
    if (!inRange || !table.hasCell(cell)) return -1;
    const int component = toInt32(double(index));
    storeNumber(double(static_cast<float>(text.value)), table(cell, component));
    return component;
}

/// Where a key writes; each gives the component.
struct KeyStore {
    SimState& sim;
    const KeyText& text;
    std::int32_t cell;

    int operator()(std::monostate) const { return -1; }

    template <class Number>
    int operator()(Number SimState::*scalar) const {
        storeNumber(text.value, sim.*scalar);
        return 0;
    }

    template <class Number>
    int operator()(Array<Number> SimState::*field) const {
        Array<Number>& array = sim.*field;
        std::int64_t place = cell;
        if (text.key->form == KeyForm::indexed) {
            place = toInt16(text.index);
            if (place <= 0 || !array.contains(place)) return -1;
        }
        storeNumber(text.value, array[place]);
        return text.key->form == KeyForm::indexed ? static_cast<int>(place) : 0;
    }

    template <class Number>
    int operator()(CellTable<Number> SimState::*field) const {
        return storeAt(sim.*field, cell, text);
    }
};

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

KeyText readKey(std::string_view item, const Key& key, std::size_t at) {
    KeyText text;
    text.key = &key;
    text.at = at;
    const std::size_t afterKey = at + key.letters.size();
    if (key.form == KeyForm::plain) {
        text.value = numberIn(item, afterKey, item.size(), KeyFault::noNumber, text);
        return text;
    }
    const std::size_t semicolon = item.find(';', afterKey);
    if (semicolon == std::string_view::npos) {
        text.fault = KeyFault::noSemicolon;
        return text;
    }
    text.index = numberIn(item, afterKey, semicolon, KeyFault::noIndex, text);
    text.value = numberIn(item, semicolon + 1, item.size(), KeyFault::noNumber, text);
    return text;
}

int storeKey(SimState& sim, const KeyText& text, std::int32_t cell) {
    if (!text.hasEffect()) return -1;
    return std::visit(KeyStore{sim, text, cell}, text.key->target);
}

} // namespace norvane
