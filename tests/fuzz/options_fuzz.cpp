// Command lines of any words, one to a line, in a folder with a small geometry. The program's own main is called.

#include "frontends/cli/command_line.h"
#include "fuzz_folder.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

using namespace norvane;

namespace {

/// What would leave the folder, start another program, end the process, or take minutes.
bool mayBeTried(const std::string& word) {
    for (const char* const part : {"/", "\\", "script", "--m", "-m", "--time"})
        if (word.find(part) != std::string::npos) return false;
    const auto digits = std::count_if(word.begin(), word.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
    const bool isTime = word.find_first_of("eE") != std::string::npos && word.find_first_of("0123456789") == 0;
    return word != "." && word != ".." && digits < 4 && !isTime;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    std::vector<std::string> words{"norvane"};
    for (const char c : asText(bytes, std::min<std::size_t>(length, 300)))
        if (c == '\n' || c == '\0')
            words.emplace_back();
        else
            words.back() += words.size() == 1 ? std::string() : std::string(1, c);
    if (!std::all_of(words.begin(), words.end(), mayBeTried)) return 0;
    enterEmptyFolder();
    const MemoryLimit limit(std::size_t{1} << 28);
    writeBytes("m.gmt", smallTable);
    writeBytes("m_rad", "1 1 2\n1 2 0.1 0.2\n3 0 0.1 1\n");
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    const auto count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    const int status = programMain(count, arguments.data());
    require(status >= 0 && status <= 5, "the status is one of those that are told");
    require(bytesOf("m.gmt") == smallTable, "no command writes over the geometry");
    return 0;
}
