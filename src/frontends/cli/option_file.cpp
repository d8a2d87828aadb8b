#include "frontends/cli/option_file.h"

#include "exchange/text_lines.h"
#include "platform/letter_case.h"

#include <algorithm>

namespace norvane {

namespace {

using Words = std::vector<OptionWord>;

/// The words of files.
struct FileWords {
    Words geometries;
    Words options;
};

/// Gives what is wrong with a line; empty: nothing. A long option and its value become one word, or a value could be
/// taken for an option.
std::string addLine(const std::string& line, const std::string& origin, FileWords& words) {
    if (line[0] == '@') return origin + "a file of options names no other one";
    if (line.find_first_of("\"'") != std::string::npos)
        return origin + "leave the quotes out: a value goes on to the end of its line";
    const std::size_t blank = line.find_first_of(" \t");
    const std::string name = line.substr(0, blank);
    const std::string value = blank == std::string::npos ? "" : line.substr(line.find_first_not_of(" \t", blank));
    if (line[0] != '-')
        words.geometries.push_back({line, origin});
    else if (value.empty() || name.find('=') != std::string::npos)
        words.options.push_back({line, origin});
    else if (name.starts_with("--"))
        words.options.push_back({name + "=" + value, origin});
    else
        words.options.insert(words.options.end(), {{name, origin}, {value, origin}});
    return {};
}

std::string addFile(const std::string& path, FileWords& words) {
    std::vector<TextLine> lines;
    std::string fault = readTextLines(path, lines);
    if (!fault.empty()) return path + ": " + fault;
    for (const TextLine& line : lines) {
        fault = addLine(line.text, path + ", line " + std::to_string(line.number) + ": ", words);
        if (!fault.empty()) return fault;
    }
    return {};
}

bool isFile(const std::string& word) { return word.size() > 1 && word[0] == '@' && !endsLike(word, ".gmt"); }

} // namespace

std::string withOptionFiles(const std::vector<std::string>& words, std::vector<OptionWord>& expanded) {
    const auto bar = std::find(words.begin(), words.end(), "--"); // what follows is no option
    FileWords fromFiles;
    for (auto word = words.begin(); word != bar; ++word) {
        if (!isFile(*word)) {
            expanded.push_back({*word, {}});
            continue;
        }
        std::string fault = addFile(word->substr(1), fromFiles);
        if (!fault.empty()) return fault;
    }
    const auto behindCommand = expanded.begin() + (expanded.empty() ? 0 : 1);
    expanded.insert(behindCommand, fromFiles.geometries.begin(), fromFiles.geometries.end());
    expanded.insert(expanded.end(), fromFiles.options.begin(), fromFiles.options.end());
    for (auto word = bar; word != words.end(); ++word) expanded.push_back({*word, {}});
    return {};
}

} // namespace norvane
