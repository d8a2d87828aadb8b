#pragma once

#include <string>
#include <string_view>

namespace norvane {

/// A to Z as a to z; all other bytes unchanged, whatever the locale.
inline std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

/// Whether a name ends like this, in capitals or not.
inline bool endsLike(std::string_view name, std::string_view ending) {
    return name.size() >= ending.size() && lowerCase(name.substr(name.size() - ending.size())) == lowerCase(ending);
}

} // namespace norvane
