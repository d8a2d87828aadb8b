#pragma once

#include <string>
#include <string_view>

namespace norvane {

/// A text that can be drawn: one line of valid UTF-8. Cairo stops drawing for good at a byte that is no UTF-8, and a
/// title may have come from a file name of any encoding.
std::string drawableText(std::string_view text);

} // namespace norvane
