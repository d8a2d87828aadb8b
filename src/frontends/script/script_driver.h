#pragma once
// Carries out a script on the windows of a program. The script is the same whatever the windows are made of: records
// alone, or controls on a screen.

#include "frontends/script/script_text.h"
#include "shell/program.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace norvane {

/// A person's acts on the windows, and what a person sees there. Controls are named as in scripts, "NV_in.Command1".
/// An act gives false, a question no value, where there is no such form or control.
struct ScriptHands {
    std::function<void(const std::string& path)> changeDirectory;
    std::function<void(const std::string& name)> selectFile;
    std::function<bool(const std::string& button)> click;
    std::function<bool(const std::string& form)> close;
    std::function<bool(const std::string& form, int width, int height)> resize;
    std::function<bool(const std::string& control, const std::string& text)> set;
    std::function<std::optional<int>(const std::string& selector)> entryCount;
    std::function<void(const std::string& selector, int index)> choose;
    /// What is printed after the name of a form or a control.
    std::function<std::optional<std::string>(const std::string& name)> look;
};

/// Ends the process with a status, without unwinding what is under way.
[[noreturn]] void endAtOnce(int status);

class ScriptDriver {
public:
    /// Does not return.
    using EndProcess = std::function<void(int status)>;

    /// Counts the steps and yields of the program's runs from now on. Both must outlive the driver.
    /// `putsAnywhere`: put may write outside the working directory.
    ScriptDriver(Program& program, ScriptHands hands, bool putsAnywhere = false, EndProcess endProcess = endAtOnce);

    /// Carries out a whole script. A fault of it is printed on standard error, and ends the process with status 2.
    void run(std::string_view bytes);

    /// A yield of the program has begun. Gives whether commands were kept for it.
    bool countYield();

    /// Carries out the commands that were kept for the yields counted since the last call.
    void runDue();

    /// The answer that the script has for an input box; no value: Cancel. Prints question and answer.
    std::optional<std::string> takeAnswer(const std::string& prompt, const std::string& defaultText);

private:
    void execute(const ScriptLine& line);
    void carryOut(const ScriptLine& line);
    void resizeForm(std::string_view rest) const;
    void chooseEntry(std::string_view rest) const;
    void print(const std::string& name) const;
    void awaitYield(const ScriptLine& line, std::string_view rest);

    Program& program_;
    ScriptHands hands_;
    const bool putsAnywhere_;
    const EndProcess endProcess_;
    std::deque<std::optional<std::string>> answers_; ///< for input boxes; no value: Cancel
    std::map<std::pair<int, int>, std::vector<ScriptLine>>
        awaited_; ///< by step and yield of a run, from 1 in each step
    std::vector<ScriptLine> due_;
    std::vector<int> yieldsOfRuns_; ///< yields in the step in hand, of each run that is under way
};

/// Whether standard output took all lines. Says so where it did not.
bool allIsPrinted();

/// Prints a line on standard output, and flushes it.
void printLine(const std::string& line);

/// What `look` gives of a form, of a selector and of the list of files.
std::string formLook(bool visible, const std::string& caption);
std::string selectorLook(bool visible, int listIndex, const std::vector<std::string>& entries);
std::string fileListLook(const std::string& selected, const std::vector<std::string>& names);

} // namespace norvane
