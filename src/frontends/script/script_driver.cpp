#include "frontends/script/script_driver.h"

#include "platform/files.h"
#include "platform/terminal_text.h"

#include <cstdio>
#include <cstdlib>

namespace norvane {

namespace {

/// What is wrong with a command. Caught where the command began, so that none of a run's frames sees it.
struct ScriptFault {
    std::string what;
};

[[noreturn]] void fail(std::string what) { throw ScriptFault{std::move(what)}; }

void requireForm(const std::string& name, bool found) {
    if (!found) fail("there is no form \"" + name + "\"");
}

void requireControl(const std::string& name, const char* act, bool found) {
    if (!found) fail("there is no control \"" + name + "\" to " + act);
}

/// A script of a bug report must not write over just any file of whoever replays it.
void putFile(std::string_view rest, bool anywhere) {
    const std::string path = takeWord(rest);
    if (!anywhere && !liesBelow(path, "."))
        fail("\"" + path + "\" lies outside the working directory; --allow-outside lets put write there");
    const FileResult written = writeFile(path, unescaped(rest));
    if (!written) fail("can't write \"" + path + "\": " + written.reason);
}

std::string listedEntries(const std::vector<std::string>& entries) {
    std::string text = " of";
    for (const std::string& entry : entries) text += " \"" + escaped(entry) + "\"";
    return text;
}

} // namespace

void endAtOnce(int status) {
    std::fflush(nullptr);
    std::_Exit(status);
}

bool allIsPrinted() {
    if (std::ferror(stdout) == 0) return true;
    std::fprintf(stderr, "script:0: not all could be printed\n");
    return false;
}

void printLine(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

std::string formLook(bool visible, const std::string& caption) {
    return (visible ? "visible \"" : "hidden \"") + escaped(caption) + "\"";
}

std::string selectorLook(bool visible, int listIndex, const std::vector<std::string>& entries) {
    return (visible ? "visible " : "hidden ") + std::to_string(listIndex) + listedEntries(entries);
}

std::string fileListLook(const std::string& selected, const std::vector<std::string>& names) {
    return escaped(selected) + listedEntries(names);
}

ScriptDriver::ScriptDriver(Program& program, ScriptHands hands, bool putsAnywhere, EndProcess endProcess)
    : program_(program), hands_(std::move(hands)), putsAnywhere_(putsAnywhere), endProcess_(std::move(endProcess)) {
    program.ui.runBegan = [this] { yieldsOfRuns_.push_back(0); };
    program.ui.stepBegan = [this] { yieldsOfRuns_.back() = 0; };
    program.ui.runEnded = [this] { yieldsOfRuns_.pop_back(); };
}

void ScriptDriver::run(std::string_view bytes) {
    for (const ScriptLine& line : scriptLines(bytes)) execute(line);
}

void ScriptDriver::resizeForm(std::string_view rest) const {
    const std::string name = takeWord(rest);
    int width = 0;
    int height = 0;
    requireForm(name, hands_.look(name).has_value() && name.find('.') == std::string::npos);
    if (!readWhole(takeWord(rest), width) || !readWhole(takeWord(rest), height) || width < 0 || height < 0)
        fail("a size is two whole numbers of pixels, not negative");
    hands_.resize(name, width, height);
}

void ScriptDriver::chooseEntry(std::string_view rest) const {
    const std::string name = takeWord(rest);
    const std::optional<int> count = hands_.entryCount(name);
    requireControl(name, "choose from", count.has_value());
    int index = 0;
    if (!readWhole(trimmed(rest), index) || index < 0 || index >= *count)
        fail(name + " has no entry \"" + std::string(trimmed(rest)) + "\"; it has " + std::to_string(*count)
             + ", counted from 0");
    hands_.choose(name, index);
}

void ScriptDriver::print(const std::string& name) const {
    const std::optional<std::string> seen = hands_.look(name);
    requireControl(name, "print", seen.has_value());
    printLine(name + ": " + *seen);
}

void ScriptDriver::awaitYield(const ScriptLine& line, std::string_view rest) {
    const std::string moment = takeWord(rest);
    const std::size_t point = moment.find('.');
    int step = 0;
    int yield = 0;
    if (point == std::string::npos || !readWhole(std::string_view(moment).substr(0, point), step)
        || !readWhole(std::string_view(moment).substr(point + 1), yield))
        fail("a moment is written STEP.K, such as 40.2");
    if (trimmed(rest).empty()) fail("there is no command after the moment");
    awaited_[{step, yield}].push_back({line.number, std::string(rest)});
}

void ScriptDriver::execute(const ScriptLine& line) {
    std::string fault;
    try {
        carryOut(line);
        return;
    } catch (const ScriptFault& caught) {
        fault = caught.what;
    }
    std::fprintf(stderr, "script:%d: %s\n", line.number, printableName(fault).c_str());
    endProcess_(2);
}

void ScriptDriver::carryOut(const ScriptLine& line) {
    std::string_view rest = line.text;
    const std::string command = takeWord(rest);
    if (command == "dir") {
        if (trimmed(rest).empty()) fail("there is no path after dir");
        hands_.changeDirectory(absolutePath(std::string(trimmed(rest))));
    } else if (command == "file") {
        hands_.selectFile(std::string(trimmed(rest)));
    } else if (command == "click") {
        const std::string name = takeWord(rest);
        requireControl(name, "click", hands_.click(name));
    } else if (command == "close") {
        const std::string name = takeWord(rest);
        requireForm(name, hands_.close(name));
    } else if (command == "resize") {
        resizeForm(rest);
    } else if (command == "set") {
        const std::string name = takeWord(rest);
        requireControl(name, "set", hands_.set(name, unescaped(rest)));
    } else if (command == "choose") {
        chooseEntry(rest);
    } else if (command == "answer") {
        answers_.emplace_back(unescaped(rest));
    } else if (command == "cancel") {
        answers_.emplace_back(std::nullopt);
    } else if (command == "put") {
        putFile(rest, putsAnywhere_);
    } else if (command == "print") {
        print(takeWord(rest));
    } else if (command == "at") {
        awaitYield(line, rest);
    } else if (command == "end") {
        endProcess_(allIsPrinted() ? 0 : 2);
    } else {
        fail("there is no command \"" + command + "\"");
    }
}

bool ScriptDriver::countYield() {
    if (yieldsOfRuns_.empty()) return false; // a yield of a load
    const int yield = ++yieldsOfRuns_.back();
    const auto awaited = awaited_.find({program_.sim.stepCount, yield});
    if (awaited != awaited_.end()) {
        due_.insert(due_.end(), awaited->second.begin(), awaited->second.end());
        awaited_.erase(awaited);
    }
    return !due_.empty();
}

void ScriptDriver::runDue() {
    std::vector<ScriptLine> due;
    due.swap(due_); // a command may yield itself
    for (const ScriptLine& line : due) execute(line);
}

std::optional<std::string> ScriptDriver::takeAnswer(const std::string& prompt, const std::string& defaultText) {
    std::optional<std::string> answer = defaultText;
    if (!answers_.empty()) {
        answer = answers_.front();
        answers_.pop_front();
    }
    printLine("ask: " + escaped(prompt) + " [" + escaped(defaultText) + "] -> " + escaped(answer.value_or("")));
    return answer;
}

} // namespace norvane
