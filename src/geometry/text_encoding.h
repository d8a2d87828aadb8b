#pragma once

#include <string>

namespace norvane {

/// The bytes of a text file as UTF-8 without a byte order mark. A spreadsheet's "Unicode text" is UTF-16: it is known
/// by its mark, or, without one, by the zero bytes that Latin text has in it. All other bytes are taken unchanged.
std::string toUtf8(std::string bytes);

} // namespace norvane
