#include "frontends/script/script_text.h"

#include "platform/terminal_text.h"

#include <algorithm>
#include <charconv>

namespace norvane {

namespace {

constexpr const char* blanks = " \t";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::vector<ScriptLine> scriptLines(std::string_view bytes) {
    if (bytes.substr(0, byteOrderMark.size()) == byteOrderMark) bytes.remove_prefix(byteOrderMark.size());
    std::vector<ScriptLine> lines;
    for (int number = 1; !bytes.empty(); ++number) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        std::string_view text = bytes.substr(0, end);
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
        if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
        const std::string_view content = trimmed(text);
        if (!content.empty() && content.front() != '#') lines.push_back({number, std::string(text)});
    }
    return lines;
}

std::string takeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const std::size_t end = std::min(text.find_first_of(blanks), text.size());
    std::string word(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t k = 0; k < text.size(); ++k) {
        const char next = k + 1 < text.size() ? text[k + 1] : '\0';
        const bool isEscape = text[k] == '\\' && (next == 't' || next == 'r' || next == 'n' || next == '\\');
        if (!isEscape) {
            result += text[k];
            continue;
        }
        result += next == 't' ? '\t' : next == 'r' ? '\r' : next == 'n' ? '\n' : '\\';
        ++k;
    }
    return result;
}

std::string escaped(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        // A terminal must not take anything in a name for a command.
        const bool isControl =
            (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) && c != '\t' && c != '\r' && c != '\n';
        const std::string_view pair = text.substr(at, 2);
        const bool isLongControl = pair >= "\xC2\x80" && pair < "\xC2\xA0"; // of UTF-8
        if (isControl || isLongControl) {
            result += printable(isControl ? pair.substr(0, 1) : pair, false);
            at += isLongControl ? 1 : 0;
            continue;
        }
        switch (c) {
        case '\t': result += "\\t"; break;
        case '\r': result += "\\r"; break;
        case '\n': result += "\\n"; break;
        case '\\': result += "\\\\"; break;
        default: result += c;
        }
    }
    return result;
}

bool readWhole(std::string_view text, int& number) {
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

} // namespace norvane
