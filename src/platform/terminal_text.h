#pragma once

#include <string>
#include <string_view>

namespace norvane {

/// A text for a terminal. Control characters, which could move its cursor, set its title or fake a line of the program,
/// are written as \x1b and the like; so are bytes that are no UTF-8. Line ends and tabs stay where `lines` is true.
std::string printable(std::string_view text, bool lines);

/// A name of a file on one line of a terminal.
inline std::string printableName(std::string_view name) { return printable(name, false); }

} // namespace norvane
