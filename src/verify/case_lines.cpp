#include "verify/case_lines.h"

#include <algorithm>
#include <array>

namespace norvane {

namespace {

using Keys = std::vector<std::string_view>;

/// The keys that belong to a block, and those that stand for themselves.
const Keys& keysOf(std::string_view block) {
    static const Keys general = {"title", "about", "source", "run", "let", "record", "profile"};
    static const Keys grid = {"drawing", "set", "with", "cells"};
    static const Keys check = {"kind", "measure", "within", "between", "order", "given", "note", "run"};
    static const Keys table = {};
    return block == "grid" ? grid : block == "check" ? check : block == "table" ? table : general;
}

bool contains(const Keys& keys, std::string_view key) { return std::find(keys.begin(), keys.end(), key) != keys.end(); }

bool isRow(std::string_view text) { return text.find_first_of("0123456789.+-") == 0; }

bool isText(std::string_view text) {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == '\x7F'; });
}

} // namespace

std::string atLine(int line, const std::string& fault) { return "line " + std::to_string(line) + ": " + fault; }

std::string_view stripped(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

std::vector<std::string> commaParts(std::string_view text) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    int open = 0;
    for (std::size_t at = 0; at <= text.size(); ++at) {
        const char c = at < text.size() ? text[at] : ',';
        open += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (c != ',' || (open > 0 && at < text.size())) continue;
        parts.emplace_back(stripped(text.substr(begin, at - begin)));
        begin = at + 1;
    }
    return parts;
}

bool splitAssignment(std::string_view text, std::string& name, std::string& rest) {
    const std::size_t sign = text.find('=');
    if (sign == std::string_view::npos) return false;
    name = stripped(text.substr(0, sign));
    rest = stripped(text.substr(sign + 1));
    return !name.empty() && !rest.empty();
}

std::vector<std::string> wordsIn(std::string_view text) {
    std::vector<std::string> words;
    for (text = stripped(text); !text.empty();) {
        const std::size_t length = std::min(text.find_first_of(" \t"), text.size());
        words.emplace_back(text.substr(0, length));
        text = stripped(text.substr(length));
    }
    return words;
}

std::string sortLines(std::string_view text, CaseLines& lines) {
    int number = 0;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        const std::string_view line = stripped(text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
        number += 1;
        if (!isText(line)) return atLine(number, "it holds a byte that is no text");
        if (line.empty() || line[0] == '#') continue;
        const bool inTable = !lines.blocks.empty() && lines.blocks.back().head.key == "table";
        if (inTable && isRow(line)) {
            lines.blocks.back().lines.push_back({"", std::string(line), number});
            continue;
        }
        const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
        CaseLine found{std::string(line.substr(0, end)), std::string(stripped(line.substr(end))), number};
        if (found.key == "grid" || found.key == "check" || found.key == "table")
            lines.blocks.push_back({std::move(found), {}});
        else if (!lines.blocks.empty() && contains(keysOf(lines.blocks.back().head.key), found.key))
            lines.blocks.back().lines.push_back(std::move(found));
        else if (contains(keysOf(""), found.key))
            lines.general.push_back(std::move(found));
        else
            return atLine(number, "\"" + found.key + "\" is no word of a case, or stands outside of its block");
    }
    return {};
}

} // namespace norvane
