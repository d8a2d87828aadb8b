// The command line: its commands, and what is wrong with one that can't be read.

#include "frontends/cli/command_line.h"

#include "core/nearest.h"
#include "frontends/cli/check_command.h"
#include "frontends/cli/command_options.h"
#include "frontends/cli/exit_status.h"
#include "frontends/cli/option_file.h"
#include "frontends/cli/run_command.h"
#include "frontends/cli/show_command.h"
#include "frontends/cli/spectrum_command.h"
#include "frontends/cli/verify_command.h"
#include "frontends/script/script_front_end.h"
#include "platform/files.h"
#include "platform/process.h"
#include "platform/terminal_text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace norvane {

namespace {

constexpr const char* spectrumHelp =
    "Write the velocity spectrum of a geometry into the file NV_spectrum beside it, or another one:\n"
    "a row for each random wave vector, with its length and the power found there.";

constexpr const char* checkHelp =
    "Look at geometries as a careful colleague would: texts that do not do what they seem to, cells that cannot,\n"
    "and a time step that is too large. Each finding names the cell of the spreadsheet. Writes no file.";

constexpr const char* showHelp =
    "Show what the program makes of a drawing: the settings of the run, or with an address all values of that cell,\n"
    "each with where it comes from.";

constexpr const char* diffHelp = "Compare two drawings value by value, not by their text.";

constexpr const char* verifyHelp =
    "Run verification cases: folders that hold drawings and a file case.txt, which tells what their results are\n"
    "compared with and how near they have to come (docs/verification_cases.md). Writes no file.";

constexpr const char* scriptHelp =
    "Drive the whole program without a window: the commands of FILE are a person's clicks,\n"
    "and every message, question and window that a person would have seen is printed.\n"
    "Exit status: 0, or 2 after a fault of the script.";

/// The status of a command whose result is what it prints.
int printedStatus(ExitStatus status) {
    errno = 0;
    const bool printed = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (printed || errno == EPIPE) return status;
    std::cerr << "norvane: not all could be printed\n";
    return exitFileFault;
}

Command addSpectrum(CLI::App& app) {
    const auto kept = std::make_shared<SpectrumOptions>();
    SpectrumOptions& options = *kept;
    CLI::App* spectrum = app.add_subcommand("spectrum", spectrumHelp);
    addGeometry(spectrum, options.geometry);
    spectrum->add_option("-o,--output", options.output, "the file, instead of NV_spectrum beside the geometry")
        ->type_name("FILE")
        ->check(notEmpty);
    spectrum->add_option("--points", options.points, "frequency points; there is one row more")
        ->capture_default_str()
        ->type_name("N")
        ->check(CLI::Range(0, 2147483646));
    spectrum->add_flag("--state", options.state, "recall the saved state first");
    spectrum->footer(lookStatusHelp);
    return {spectrum, [kept] { return writeSpectrumOf(*kept); }};
}

Command addCheck(CLI::App& app) {
    const auto kept = std::make_shared<CheckOptions>();
    CheckOptions& options = *kept;
    CLI::App* check = app.add_subcommand("check", checkHelp);
    check->add_option("GEOMETRY", options.geometries, "the geometries (*.gmt)")->required();
    check->add_option("--format", options.format, "text or json")->check(CLI::IsMember({"text", "json"}));
    check->add_flag("--strict", options.strict, "exit status 3 for warnings, too");
    check->add_option("--picture", options.picture, "draw what each cell is; .png, .svg, .pdf or .bmp")
        ->type_name("FILE");
    check->add_flag("--suggest", options.suggest, "print a time step to write");
    check->footer("Exit status: 0 no error, 2 bad use, 3 a geometry has an error (or with --strict a warning).");
    return {check, [kept] { return printedStatus(checkGeometries(*kept)); }};
}

Command addShow(CLI::App& app) {
    const auto kept = std::make_shared<ShowOptions>();
    ShowOptions& options = *kept;
    CLI::App* show = app.add_subcommand("show", showHelp);
    addGeometry(show, options.geometry);
    show->add_option("ADDRESS", options.address, "a cell of the spreadsheet, such as C7");
    CLI::Option* key = show->add_option("--key", options.key,
                                        "one key of all cells as a table in the shape of the drawing, such as LA");
    key->excludes("ADDRESS")->check(notEmpty);
    show->add_option("--component", options.component, "of that key: the dimension, or the species from 0")
        ->needs(key)
        ->check(CLI::Range(0, 32767));
    show->add_option("--picture", options.picture, "draw what each cell is; .png, .svg, .pdf or .bmp")
        ->type_name("FILE");
    show->footer(lookStatusHelp);
    return {show, [kept] { return printedStatus(showGeometry(*kept)); }};
}

struct DiffOptions {
    std::string before;
    std::string after;
    std::string picture;
};

Command addDiff(CLI::App& app) {
    const auto kept = std::make_shared<DiffOptions>();
    CLI::App* diff = app.add_subcommand("diff", diffHelp);
    diff->add_option("BEFORE", kept->before, "a geometry")->required();
    diff->add_option("AFTER", kept->after, "another one")->required();
    diff->add_option("--picture", kept->picture, "draw the cells that differ; .png, .svg, .pdf or .bmp")
        ->type_name("FILE");
    diff->footer("Exit status: 0 nothing differs, 1 something does, 2 bad use, 3 a geometry cannot be used.");
    return {diff, [kept] { return printedStatus(diffGeometries(kept->before, kept->after, kept->picture)); }};
}

Command addVerify(CLI::App& app) {
    const auto kept = std::make_shared<VerifyOptions>();
    VerifyOptions& options = *kept;
    CLI::App* verify = app.add_subcommand("verify", verifyHelp);
    verify->add_option("FOLDER", options.folders, "the folders of the cases")->required();
    verify->add_option("--format", options.format, "text or json")->check(CLI::IsMember({"text", "json"}));
    verify->add_flag("--short", options.isShort, "run the first grid of each case alone, without orders");
    verify->add_flag("-q,--quiet", options.quiet, "do not print which run is under way");
    verify->add_option("--threads", options.threads, "threads of a run; 1 unless told otherwise")
        ->type_name("N")
        ->check(CLI::Range(1, maxThreads));
    verify->footer("Exit status: 0 all cases pass, 1 one fails, 2 bad use, 3 a case can't be run, 4 a file can't be\n"
                   "read.");
    return {verify, [kept] { return printedStatus(verifyFolders(*kept)); }};
}

struct ScriptOptions {
    std::string path;
    bool trace = false;
    bool putsAnywhere = false;
};

Command addScript(CLI::App& app) {
    const auto kept = std::make_shared<ScriptOptions>();
    CLI::App* script = app.add_subcommand("script", scriptHelp);
    script->add_option("FILE", kept->path, "the script; - is standard input")->required();
    script->add_flag("--trace", kept->trace, "print every operation on the drawing surface as well");
    script->add_flag("--allow-outside", kept->putsAnywhere, "let put write files outside the working directory");
    return {script, [kept] { return runScript(kept->path, kept->trace, kept->putsAnywhere); }};
}

std::string withNearest(std::string text, const std::string& given, const std::vector<std::string>& words) {
    const std::string nearest = nearestWord(given, words);
    return nearest.empty() ? text : text + " Did you mean \"" + nearest + "\"?";
}

/// What is wrong with the first word that is no command; empty: nothing.
std::string unknownCommand(const CLI::App& app, const std::string& given) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    if (std::find(names.begin(), names.end(), given) != names.end()) return {};
    const std::string text = "norvane: \"" + printableName(given) + "\" is no command.";
    std::error_code unknown;
    if (std::filesystem::is_regular_file(given, unknown))
        return text + " Did you mean \"norvane run " + printableName(given) + "\"?";
    return withNearest(text, given, names);
}

/// What is wrong with an option that a command does not have; empty: nothing.
std::string unknownOption(const CLI::App& command, const std::string& given) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    const std::string name = given.substr(0, given.find('='));
    if (std::find(names.begin(), names.end(), name) != names.end()) return {};
    const std::string where = command.get_parent() == nullptr ? "norvane" : "norvane " + command.get_name();
    return withNearest(where + ": there is no option \"" + printableName(name) + "\".", name, names);
}

/// What is wrong with the first word of a command line that is neither a command nor an option; empty: nothing. The
/// parser would rather blame what follows such a word.
std::string unknownWord(const CLI::App& app, const std::vector<OptionWord>& words) {
    const CLI::App* command = &app;
    for (const auto& [word, origin] : words) {
        if (word == "--") break;
        const bool isOption = word.size() > 2 && word.compare(0, 2, "--") == 0;
        std::string fault;
        if (isOption) {
            fault = unknownOption(*command, word);
        } else if (command == &app && !word.empty() && word[0] != '-') {
            fault = unknownCommand(app, word);
            if (fault.empty()) command = app.get_subcommand(word);
        }
        if (!fault.empty()) return printableName(origin) + fault;
    }
    return {};
}

/// The words of the command line; those in the options of a run may come from files. Gives false after a message.
bool takeWords(int argc, char** argv, std::vector<OptionWord>& words) {
    const std::vector<std::string> given(argv + std::min(argc, 1), argv + argc);
    if (given.empty() || given.front() != "run") {
        for (const std::string& word : given) words.push_back({word, {}});
        return true;
    }
    const std::string fault = withOptionFiles(given, words);
    if (!fault.empty()) std::cerr << "norvane run: " << printableName(fault) << '\n';
    return fault.empty();
}

int runCommandLine(int argc, char** argv) {
    CLI::App app("Norvane simulates compressible gas flow with heat and species transport through a grid of cells,\n"
                 "drawn in a spreadsheet and saved as a tab-separated .gmt table.");
    app.name("norvane");
    app.set_version_flag("--version", "norvane " NORVANE_VERSION);
    app.require_subcommand(1);

    const Command commands[] = {addRun(app),  addPlot(app), addExport(app), addSpectrum(app), addCheck(app),
                                addShow(app), addDiff(app), addVerify(app), addScript(app)};

    std::vector<OptionWord> words;
    if (!takeWords(argc, argv, words)) return exitBadUse;
    const std::string unknown = unknownWord(app, words);
    if (!unknown.empty()) {
        std::cerr << unknown << "\nRun with --help for more information.\n";
        return exitBadUse;
    }
    try {
        std::vector<std::string> texts;
        texts.reserve(words.size());
        for (const OptionWord& word : words) texts.push_back(word.text);
        std::reverse(texts.begin(), texts.end()); // as the parser takes them
        app.parse(std::move(texts));
    } catch (const CLI::ParseError& end) {
        std::ostringstream fault; // it may hold any argument
        const int status = app.exit(end, std::cout, fault);
        std::cerr << printable(fault.str(), true);
        return status == 0 ? exitDone : exitBadUse;
    }
    for (const Command& command : commands)
        if (*command.app) return command.act();
    return exitBadUse; // not reached: a command is asked for
}

/// A program file whose name ends in "_" starts in batch mode, with a geometry as its only argument.
int runNamedForBatch(int argc, char** argv) {
    if (argc > 2) {
        std::cerr << "usage: " << printableName(nameOf(argv[0])) << " [GEOMETRY]\n";
        return exitBadUse;
    }
    const std::string program = programPath(argv[0]);
    return runBatch({folderOf(program), nameOf(program), argc == 2 ? argv[1] : ""});
}

} // namespace

int programMain(int argc, char** argv) {
    survivesFileSizeLimit();
    try {
        const std::string name = argc > 0 ? std::filesystem::path(argv[0]).stem().string() : "";
        if (!name.empty() && name.back() == '_') return runNamedForBatch(argc, argv);
        return runCommandLine(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "norvane: out of memory\n";
    } catch (const std::exception& fault) {
        std::cerr << "norvane: " << printable(fault.what(), true) << '\n';
    }
    return exitFileFault;
}

} // namespace norvane
