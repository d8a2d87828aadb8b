#include "exchange/number_items.h"

#include "core/number_text.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace norvane {

namespace {

bool isSeparator(char c) { return c == ' ' || c == '\t' || c == ',' || c == '\r' || c == '\n'; }

/// Goes to the next item. Gives false where none is left.
bool findItem(NumberItems& items) {
    std::size_t at = items.next;
    while (at < items.text.size() && isSeparator(items.text[at])) ++at;
    items.item = at;
    items.next = at;
    return at < items.text.size();
}

/// Leaves an item that is not a number whole behind.
ItemKind passOver(NumberItems& items) {
    while (items.next < items.text.size() && !isSeparator(items.text[items.next])) ++items.next;
    return ItemKind::otherText;
}

template <class Number>
ItemKind readItem(NumberItems& items, Number& value) {
    if (!findItem(items)) return ItemKind::endOfText;
    const char* const end = items.text.data() + items.text.size();
    const char* from = items.text.data() + items.item;
    if (*from == '+' && from + 1 < end && from[1] != '-') ++from; // from_chars takes no plus sign
    Number number = 0;
    const auto read = std::from_chars(from, end, number);
    if (read.ptr == from || (read.ptr != end && !isSeparator(*read.ptr))) return passOver(items);
    items.next = static_cast<std::size_t>(read.ptr - items.text.data());
    if (read.ec == std::errc::result_out_of_range) // which way is not said
        number = static_cast<Number>(numericPrefix(items.text.substr(items.item, items.next - items.item)));
    value = number;
    return ItemKind::number;
}

} // namespace

ItemKind readNumber(NumberItems& items, float& value) { return readItem(items, value); }

ItemKind readNumber(NumberItems& items, double& value) { return readItem(items, value); }

ItemKind readWhole(NumberItems& items, std::int32_t& value) {
    double number = 0;
    const ItemKind kind = readItem(items, number);
    if (kind != ItemKind::number) return kind;
    if (!std::isfinite(number)) return ItemKind::otherText;
    value = toInt32(number);
    return ItemKind::number;
}

std::size_t wholeItems(std::string_view text) {
    std::size_t length = text.size();
    while (length > 0 && !isSeparator(text[length - 1])) --length;
    return length;
}

void LineCount::pass(std::string_view text) {
    for (const char c : text) {
        if (c == '\r' || (c == '\n' && !afterReturn)) ++line;
        afterReturn = c == '\r';
    }
}

std::int64_t lineOfItem(const NumberItems& items) {
    LineCount lines;
    lines.pass(items.text.substr(0, items.item));
    return lines.line;
}

std::string itemFault(std::int64_t line, ItemKind kind, const std::string& wanted) {
    return "line " + std::to_string(line) + ": "
           + (kind == ItemKind::endOfText ? "the file ends before "
                                          : "a text that is no number stands in the place of ")
           + wanted;
}

} // namespace norvane
