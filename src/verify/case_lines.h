#pragma once
// The lines of a case file, sorted into blocks but not yet read as expressions: names may be used before the lines
// that give them.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

/// The rest of a line behind its first word.
struct CaseLine {
    std::string key;
    std::string text;
    int number = 0; ///< from 1
};

/// A line that begins a block, and the lines that belong to it.
struct CaseBlock {
    CaseLine head;
    std::vector<CaseLine> lines;
};

struct CaseLines {
    std::vector<CaseLine> general;
    std::vector<CaseBlock> blocks; ///< "grid", "check", "table", in the order of the file
};

/// Sorts a text into lines. Gives what is wrong with it, in words, with the line; empty: nothing.
std::string sortLines(std::string_view text, CaseLines& lines);

/// "line 12: ..."
std::string atLine(int line, const std::string& fault);

/// A text without the blanks at its ends.
std::string_view stripped(std::string_view text);

/// The parts of a text between commas that stand outside of parentheses.
std::vector<std::string> commaParts(std::string_view text);

/// Splits "NAME = REST"; false: it has not that form.
bool splitAssignment(std::string_view text, std::string& name, std::string& rest);

/// The words of a text.
std::vector<std::string> wordsIn(std::string_view text);

} // namespace norvane
