#include "exchange/text_lines.h"

#include "geometry/text_encoding.h"
#include "platform/files.h"

#include <algorithm>

namespace norvane {

namespace {

constexpr const char* blanks = " \t\r";

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string::npos) return {};
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

bool hasControls(const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](unsigned char c) { return (c < ' ' && c != '\t') || c == 127; });
}

} // namespace

std::string readTextLines(const std::string& path, std::vector<TextLine>& lines) {
    constexpr std::size_t longest = std::size_t{1} << 20;
    std::string content;
    const FileResult read = readBeginning(path, longest + 1, content);
    if (!read) return "it can't be read: " + read.reason;
    if (content.size() > longest) return "it is longer than 1 MB";
    content = toUtf8(std::move(content));
    int number = 0;
    for (std::size_t begin = 0; begin < content.size();) {
        const std::size_t end = std::min(content.find('\n', begin), content.size());
        const std::string text = trimmed(content.substr(begin, end - begin));
        ++number;
        if (hasControls(text)) return "line " + std::to_string(number) + " holds control characters: it is no text";
        if (!text.empty() && text[0] != '#') lines.push_back({number, text});
        begin = end + 1;
    }
    return {};
}

} // namespace norvane
