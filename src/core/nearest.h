#pragma once

#include <string>
#include <vector>

namespace norvane {

/// The word that was probably meant: the nearest one by letters left out, added, swapped or mistaken; empty where none
/// is near.
std::string nearestWord(const std::string& given, const std::vector<std::string>& words);

} // namespace norvane
