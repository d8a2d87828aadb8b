#pragma once
// The numbers of a text file, item by item.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace norvane {

/// Walks the items of a text. Blanks, tabs, commas and line ends separate alike and empty items don't count, so that a
/// file may be laid out, or put through a spreadsheet, as one likes.
struct NumberItems {
    std::string_view text;
    std::size_t item = 0; ///< position of the item read last; the end of the text where none was left
    std::size_t next = 0; ///< position after it
};

enum class ItemKind { number, otherText, endOfText };

/// Reads the next item as a single or a double: decimal or exponent form, or nan, inf, -inf. A number too large for the
/// type becomes an infinity, one too small a zero. `value` changes only with ItemKind::number.
ItemKind readNumber(NumberItems& items, float& value);
ItemKind readNumber(NumberItems& items, double& value);

/// Reads the next item as a whole number: the nearest one, halves to the even, limited to the range of the type. An
/// item that is not finite counts as other text. `value` changes only with ItemKind::number.
ItemKind readWhole(NumberItems& items, std::int32_t& value);

/// The length of a text up to its last separator: what may follow can't change the items before it.
std::size_t wholeItems(std::string_view text);

/// Counts the lines of a text that passes piece by piece. A carriage return and a line feed end one line together.
struct LineCount {
    std::int64_t line = 1; ///< of the next byte
    bool afterReturn = false;

    void pass(std::string_view text);
};

/// The line, counted from 1, of the item read last.
std::int64_t lineOfItem(const NumberItems& items);

/// For a message: the line of an item, and that it is not the number that was looked for.
///   wanted  what belongs there, such as "the step count"
std::string itemFault(std::int64_t line, ItemKind kind, const std::string& wanted);

} // namespace norvane
