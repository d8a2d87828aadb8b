#pragma once
// Short texts that a person writes: a line for each entry, empty lines and lines that begin with "#" left out.

#include <string>
#include <vector>

namespace norvane {

struct TextLine {
    int number = 0; ///< in the file, from 1
    std::string text;
};

/// Reads the entries of a file, without blanks and tabs around them, from UTF-8 or a spreadsheet's UTF-16. Gives what
/// is wrong: a file that can't be read, one of more than 1 MB, a line with control characters in it. Empty: nothing.
std::string readTextLines(const std::string& path, std::vector<TextLine>& lines);

} // namespace norvane
