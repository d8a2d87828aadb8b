#pragma once
// The texts of scripts and of what they print.

#include <string>
#include <string_view>
#include <vector>

namespace norvane {

/// A command of a script with its place.
struct ScriptLine {
    int number = 0; ///< from 1
    std::string text;
};

/// The commands of a script: no blank lines, no comments, no byte order mark.
std::vector<ScriptLine> scriptLines(std::string_view bytes);

/// Takes the first word off a text: the text becomes what follows the word and one blank.
std::string takeWord(std::string_view& text);

/// The text without blanks at both ends.
std::string_view trimmed(std::string_view text);

/// A text of a script as it is meant: \t, \r, \n and \\ mean a tab, CR, LF and a backslash.
std::string unescaped(std::string_view text);

/// The other way round, for printing.
std::string escaped(std::string_view text);

/// Reads a whole number of the full text; false where there is none.
bool readWhole(std::string_view text, int& number);

} // namespace norvane
