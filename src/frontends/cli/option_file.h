#pragma once

#include <string>
#include <vector>

namespace norvane {

/// A word of the command line and where it comes from.
struct OptionWord {
    std::string text;
    std::string origin; ///< "FILE, line 3: " of a file of options; else empty
};

/// Puts the options in a file in the place of each word "@FILE" behind the command: one on a line, "--probe C7:T", the
/// value being the rest of the line; a line that is no option is the geometry. A word that ends in .gmt is a geometry
/// itself. The words of files come after the others, but for geometries, which come first: an option that takes
/// several values would take one that follows it. Gives what is wrong with a file; empty: nothing.
std::string withOptionFiles(const std::vector<std::string>& words, std::vector<OptionWord>& expanded);

} // namespace norvane
