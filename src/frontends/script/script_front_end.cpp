#include "frontends/script/script_front_end.h"

#include "frontends/image/image_surface.h"
#include "frontends/script/script_text.h"
#include "frontends/script/surface_trace.h"
#include "platform/files.h"
#include "shell/command_window.h"
#include "shell/program.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <iterator>
#include <optional>

namespace norvane {

namespace {

/// A command that waits for a yield of a run.
struct Awaited {
    int step = 0;
    int yield = 0; ///< counted from 1 in each step
    ScriptLine command;
};

struct ScriptRun {
    Program program;
    std::deque<std::optional<std::string>> answers; ///< for input boxes; no value: Cancel
    std::vector<Awaited> awaited;
    std::vector<int> yieldsOfRuns; ///< yields in the step in hand, of each run that is under way
};

void printLine(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

[[noreturn]] void endWithFault(const ScriptLine& line, const std::string& what) {
    std::fprintf(stderr, "script:%d: %s\n", line.number, what.c_str());
    std::exit(2);
}

// --- controls by name ------------------------------------------------------------------------------------------------

Form* findForm(Interface& ui, const std::string& name) {
    Form* forms[] = {&ui.NV_in.form, &ui.NV_out.form, &ui.NV_dsp.form, &ui.NV_einde.form};
    for (Form* form : forms)
        if (form->name == name) return form;
    return nullptr;
}

template <class Control>
struct NamedControl {
    std::string name;
    Control* control;
};

std::vector<NamedControl<TextBox>> textBoxes(Interface& ui) {
    std::vector<NamedControl<TextBox>> boxes{{"NV_in.Text1", &ui.NV_in.Text1},
                                             {"NV_dsp.mMinscale", &ui.NV_dsp.mMinscale},
                                             {"NV_dsp.mMaxScale", &ui.NV_dsp.mMaxScale}};
    for (int column = 0; column < DisplayWindow::columns; ++column) {
        const std::string element = "(" + std::to_string(column) + ")";
        boxes.push_back({"NV_dsp.zzoom" + element, &ui.NV_dsp.zzoom[column]});
        boxes.push_back({"NV_dsp.Offset" + element, &ui.NV_dsp.Offset[column]});
    }
    return boxes;
}

std::vector<NamedControl<Selector>> selectors(Interface& ui) {
    std::vector<NamedControl<Selector>> all{{"NV_dsp.Combo1", &ui.NV_dsp.Combo1}, {"NV_dsp.Dimen", &ui.NV_dsp.Dimen}};
    for (int column = 0; column < DisplayWindow::columns; ++column)
        all.push_back({"NV_dsp.ComboSlice(" + std::to_string(column) + ")", &ui.NV_dsp.ComboSlice[column]});
    return all;
}

template <class Control>
Control* findControl(const std::vector<NamedControl<Control>>& all, const std::string& name) {
    for (const NamedControl<Control>& candidate : all)
        if (candidate.name == name) return candidate.control;
    return nullptr;
}

Form& formOf(ScriptRun& run, const ScriptLine& line, const std::string& name) {
    Form* form = findForm(run.program.ui, name);
    if (form == nullptr) endWithFault(line, "there is no form \"" + name + "\"");
    return *form;
}

[[noreturn]] void endWithUnknownControl(const ScriptLine& line, const std::string& name, const std::string& act) {
    endWithFault(line, "there is no control \"" + name + "\" to " + act);
}

// --- commands --------------------------------------------------------------------------------------------------------

void changeDirectory(ScriptRun& run, std::string_view rest) {
    setDirectory(run.program, absolutePath(std::string(trimmed(rest))));
}

void clickButton(ScriptRun& run, const ScriptLine& line, const std::string& name) {
    for (const Button& button : buttons()) {
        if (name == std::string(button.form) + "." + button.control) {
            click(run.program, button);
            return;
        }
    }
    endWithUnknownControl(line, name, "click");
}

void resizeForm(ScriptRun& run, const ScriptLine& line, std::string_view rest) {
    Form& form = formOf(run, line, takeWord(rest));
    int width = 0;
    int height = 0;
    if (!readWhole(takeWord(rest), width) || !readWhole(takeWord(rest), height) || width < 0 || height < 0)
        endWithFault(line, "a size is two whole numbers of pixels, not negative");
    form.width = static_cast<float>(width);
    form.height = static_cast<float>(height);
    raiseResize(run.program, form);
}

void setControl(ScriptRun& run, const ScriptLine& line, std::string_view rest) {
    const std::string name = takeWord(rest);
    if (TextBox* box = findControl(textBoxes(run.program.ui), name)) {
        box->text = unescaped(rest);
    } else if (Selector* selector = findControl(selectors(run.program.ui), name)) {
        selector->text = unescaped(rest);
        selector->listIndex = -1;
    } else {
        endWithUnknownControl(line, name, "set");
    }
}

void chooseEntry(ScriptRun& run, const ScriptLine& line, std::string_view rest) {
    const std::string name = takeWord(rest);
    Selector* selector = findControl(selectors(run.program.ui), name);
    if (selector == nullptr) endWithUnknownControl(line, name, "choose from");
    int index = 0;
    if (!readWhole(trimmed(rest), index) || index < 0 || index >= selector->listCount())
        endWithFault(line, name + " has no entry \"" + std::string(trimmed(rest)) + "\"; it has "
                               + std::to_string(selector->listCount()) + ", counted from 0");
    selector->select(index);
    raiseSelectorClick(run.program, *selector);
}

void putFile(const ScriptLine& line, std::string_view rest) {
    const std::string path = takeWord(rest);
    const FileResult written = writeFile(path, unescaped(rest));
    if (!written) endWithFault(line, "can't write \"" + path + "\": " + written.reason);
}

std::string listedEntries(const std::vector<std::string>& entries) {
    std::string text = " of";
    for (const std::string& entry : entries) text += " \"" + escaped(entry) + "\"";
    return text;
}

void printControl(ScriptRun& run, const ScriptLine& line, const std::string& name) {
    Interface& ui = run.program.ui;
    if (const Form* form = findForm(ui, name)) {
        printLine(name + (form->visible ? ": visible \"" : ": hidden \"") + escaped(form->caption) + "\"");
    } else if (const TextBox* box = findControl(textBoxes(ui), name)) {
        printLine(name + ": " + escaped(box->text));
    } else if (const Selector* selector = findControl(selectors(ui), name)) {
        printLine(name + (selector->visible ? ": visible " : ": hidden ") + std::to_string(selector->listIndex)
                  + listedEntries(selector->entries));
    } else if (name == "NV_in.Dir1") {
        printLine(name + ": " + escaped(ui.NV_in.Dir1.path));
    } else if (name == "NV_in.File1") {
        printLine(name + ": " + escaped(ui.NV_in.File1.selected)
                  + listedEntries(listFiles(ui.NV_in.File1.path, FileList::ending)));
    } else {
        endWithUnknownControl(line, name, "print");
    }
}

void awaitYield(ScriptRun& run, const ScriptLine& line, std::string_view rest) {
    const std::string moment = takeWord(rest);
    const std::size_t point = moment.find('.');
    Awaited awaited;
    if (point == std::string::npos || !readWhole(std::string_view(moment).substr(0, point), awaited.step)
        || !readWhole(std::string_view(moment).substr(point + 1), awaited.yield))
        endWithFault(line, "a moment is written STEP.K, such as 40.2");
    if (trimmed(rest).empty()) endWithFault(line, "there is no command behind the moment");
    awaited.command = {line.number, std::string(rest)};
    run.awaited.push_back(awaited);
}

void execute(ScriptRun& run, const ScriptLine& line) {
    std::string_view rest = line.text;
    const std::string command = takeWord(rest);
    if (command == "dir") {
        changeDirectory(run, rest);
    } else if (command == "file") {
        run.program.ui.NV_in.File1.selected = trimmed(rest);
    } else if (command == "click") {
        clickButton(run, line, takeWord(rest));
    } else if (command == "close") {
        requestClose(run.program, formOf(run, line, takeWord(rest)));
    } else if (command == "resize") {
        resizeForm(run, line, rest);
    } else if (command == "set") {
        setControl(run, line, rest);
    } else if (command == "choose") {
        chooseEntry(run, line, rest);
    } else if (command == "answer") {
        run.answers.emplace_back(unescaped(rest));
    } else if (command == "cancel") {
        run.answers.emplace_back(std::nullopt);
    } else if (command == "put") {
        putFile(line, rest);
    } else if (command == "print") {
        printControl(run, line, takeWord(rest));
    } else if (command == "at") {
        awaitYield(run, line, rest);
    } else if (command == "end") {
        std::exit(0);
    } else {
        endWithFault(line, "there is no command \"" + command + "\"");
    }
}

// --- what the program asks of its front end --------------------------------------------------------------------------

/// Carries out the commands that were kept for this yield, those registered when it began, in the order written.
void runAwaited(ScriptRun& run) {
    if (run.yieldsOfRuns.empty()) return; // a yield of a load
    const int yield = ++run.yieldsOfRuns.back();
    if (run.awaited.empty()) return;
    std::vector<ScriptLine> due;
    std::erase_if(run.awaited, [&](const Awaited& awaited) {
        const bool isDue = awaited.step == run.program.sim.stepCount && awaited.yield == yield;
        if (isDue) due.push_back(awaited.command);
        return isDue;
    });
    for (const ScriptLine& line : due) execute(run, line);
}

std::optional<std::string> takeAnswer(ScriptRun& run, const std::string& prompt, const std::string& defaultText) {
    std::optional<std::string> answer = defaultText;
    if (!run.answers.empty()) {
        answer = run.answers.front();
        run.answers.pop_front();
    }
    printLine("ask: " + escaped(prompt) + " [" + escaped(defaultText) + "] -> " + escaped(answer.value_or("")));
    return answer;
}

void connectInterface(ScriptRun& run) {
    Interface& ui = run.program.ui;
    ui.showMessage = [](const std::string& text) { printLine("message: " + escaped(text)); };
    ui.askText = [&run](const std::string& prompt, const std::string& defaultText) {
        return takeAnswer(run, prompt, defaultText);
    };
    ui.yieldToInterface = [&run] { runAwaited(run); };
    ui.endProgram = [] {
        printLine("ended");
        std::exit(0);
    };
    ui.beep = [] { printLine("beep"); };
    ui.formShown = [](Form& form, bool wasVisible) {
        if (!wasVisible) printLine("shown: " + form.name);
    };
    ui.formHidden = [](Form& form) { printLine("hidden: " + form.name); };
    ui.runBegan = [&run] { run.yieldsOfRuns.push_back(0); };
    ui.stepBegan = [&run] { run.yieldsOfRuns.back() = 0; };
    ui.runEnded = [&run] { run.yieldsOfRuns.pop_back(); };
}

/// Gives false where the script can't be read.
bool readScript(const std::string& path, std::string& bytes) {
    if (path == "-") {
        bytes.assign(std::istreambuf_iterator<char>(std::cin), {});
        return true;
    }
    const FileResult read = readFile(path, bytes);
    if (!read) std::fprintf(stderr, "script:0: can't read \"%s\": %s\n", path.c_str(), read.reason.c_str());
    return static_cast<bool>(read);
}

} // namespace

int runScript(const std::string& path, bool trace) {
    std::string bytes;
    if (!readScript(path, bytes)) return 2;
    ScriptRun run;
    connectProgram(run.program);
    connectInterface(run);
    drawOnImage(run.program.ui.NV_out.Picture1); // no screen, but snapshots are real pictures
    if (trace) traceSurface(run.program.ui.NV_out.Picture1, printLine);
    const std::string folder = path == "-" ? absolutePath(".") : folderOf(path);
    startProgram(run.program, {folder, "norvane", {}});
    for (const ScriptLine& line : scriptLines(bytes)) execute(run, line);
    return 0;
}

} // namespace norvane
