// The command line. Options are read here and nowhere else.

#include "core/number_text.h"
#include "core/quantities.h"
#include "core/sim_state.h"
#include "frontends/cli/check_command.h"
#include "frontends/cli/exit_status.h"
#include "frontends/cli/nearest.h"
#include "frontends/cli/plot_command.h"
#include "frontends/cli/run_command.h"
#include "frontends/cli/show_command.h"
#include "frontends/cli/spectrum_command.h"
#include "frontends/script/script_front_end.h"
#include "platform/files.h"
#include "platform/process.h"
#include "platform/terminal_text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace norvane {

namespace {

constexpr const char* runStatusHelp =
    "Exit status:\n"
    "  0  the run reached its stop step\n"
    "  1  the model ended the run (negative density, or a value that no gas has)\n"
    "  2  bad use of the command line\n"
    "  3  the geometry cannot be run, or a check refuses it\n"
    "  4  a file cannot be read or written\n"
    "  5  stopped early, by a signal or by the value 1 in the file checkstop\n\n"
    "Ctrl-C finishes the step in hand and ends the run in order; a second Ctrl-C ends it at once.";

constexpr const char* runHelp =
    "Load a geometry and run it to its end.\n\n"
    "The results lie beside the geometry m.gmt: m_out, the table of the latest plot, m_log, a line for each logged\n"
    "step (key LT), m_state with --save or key ST, pictures with --snapshots or key FT.";

constexpr const char* plotHelp = "Draw a picture of a geometry, as it starts or with --state as it was saved.";

constexpr const char* spectrumHelp = "Write the velocity spectrum of a geometry into the file NV_spectrum beside it:\n"
                                     "a row for each random wave vector, with its length and the power found there.";

constexpr const char* checkHelp =
    "Look at geometries as a careful colleague would: texts that do not do what they seem to, cells that cannot,\n"
    "and a time step that is too large. Each finding names the cell of the spreadsheet. Writes no file.";

constexpr const char* showHelp =
    "Show what the program makes of a drawing: the settings of the run, or with an address all values of that cell,\n"
    "each with where it comes from.";

constexpr const char* diffHelp = "Compare two drawings value by value, not by their text.";

constexpr const char* scriptHelp =
    "Drive the whole program without a window: the commands of FILE are a person's clicks,\n"
    "and every message, question and window that a person would have seen is printed.\n"
    "Exit status: 0, or 2 after a fault of the script.";

constexpr const char* lookStatusHelp = "Exit status: 0 done, 2 bad use, 3 the geometry cannot be used,\n"
                                       "4 a file cannot be read or written.";

/// What is wrong with an option's text; empty: nothing.
std::string notEmpty(const std::string& text) { return text.empty() ? "it is empty" : ""; }

std::string positiveTime(const std::string& text) {
    std::size_t length = 0;
    const double seconds = numericPrefix(text, length);
    const bool isTime = length > 0 && length == text.size() && std::isfinite(seconds) && seconds > 0;
    return isTime ? "" : "\"" + printableName(text) + "\" is no time in seconds above 0";
}

void addGeometry(CLI::App* command, std::string& geometry) {
    command->add_option("GEOMETRY", geometry, "the table of the geometry, a .gmt file")->required();
}

CLI::App* addRun(CLI::App& app, RunOptions& options) {
    CLI::App* run = app.add_subcommand("run", runHelp);
    addGeometry(run, options.geometry);
    run->add_flag("-q,--quiet", options.quiet, "print nothing but messages");
    run->add_flag("--recall", options.recall, "go on from the saved state, as Recall and Cont do");
    run->add_flag("--save", options.save, "save the state at the end, also after a signal");
    run->add_flag("--radiation", options.radiation, "import the view factors m_rad first");
    run->add_option("--plot-every", options.plotEvery, "plot every N steps instead of key UT")
        ->type_name("N")
        ->check(CLI::Range(1, 2147483647));
    run->add_option("--snapshots", options.frameEvery, "write a picture m_STEP.png every N steps")
        ->type_name("N")
        ->check(CLI::Range(1, 2147483647));
    run->add_option("--threads", options.threads, "threads of the computation; the results are the same for any number")
        ->type_name("N")
        ->check(CLI::Range(1, maxThreads));
    run->add_flag(
        "--compensated", options.compensated,
        "carry what single precision rounds away on to the next step; other results, closer to the equations");
    run->add_option("--movie", options.movie, "make a film of these pictures, such as m.mp4, with ffmpeg")
        ->type_name("FILE")
        ->needs("--snapshots");
    run->add_flag("--strict", options.strict, "refuse a drawing that \"norvane check\" warns about");
    run->add_flag("--force", options.force, "run a drawing that \"norvane check\" finds errors in");
    run->add_option("--set", options.changes,
                    "change the drawing in memory: DT=2E-5, \"GG 2=9.81\", C7=\"TT 400\"; may be repeated")
        ->type_name("CHANGE")
        ->check(notEmpty);
    run->add_option("--time", options.time, "seconds to run, instead of the steps of key NT")
        ->type_name("SECONDS")
        ->check(positiveTime);
    run->add_option("-o,--output", options.folder, "the folder of all outputs, made if missing")
        ->type_name("DIR")
        ->check(notEmpty);
    run->add_option("--name", options.name, "the name that all outputs begin with")->type_name("BASE")->check(notEmpty);
    run->add_option("--stop-file", options.stopFile, "a stop file of its own, instead of checkstop")
        ->type_name("FILE")
        ->check(notEmpty);
    run->add_option("--summary", options.summary, "write how the run ended as JSON")
        ->type_name("FILE")
        ->check(notEmpty);
    run->footer(runStatusHelp);
    return run;
}

std::string listedQuantities() {
    std::string text;
    int number = 0;
    for (const Quantity& quantity : quantities()) {
        text += (number > 0 ? ", " : "") + std::to_string(number + 1) + " " + quantity.name;
        ++number;
    }
    return text;
}

CLI::App* addPlot(CLI::App& app, PlotOptions& options) {
    CLI::App* plot = app.add_subcommand("plot", plotHelp);
    addGeometry(plot, options.geometry);
    plot->add_option("-o,--output", options.output, "the picture; .png, .svg, .pdf or .bmp")
        ->type_name("FILE")
        ->required();
    plot->add_flag("--state", options.state, "recall the saved state first");
    plot->add_option("--quantity", options.quantity, "what to show, by name or number: " + listedQuantities());
    plot->add_option("--component", options.component,
                     "total, x, y, z or the number of a dimension; of a species, its number in the table, from 0");
    plot->add_option("--slice", options.slices, "DIMENSION=SLICE, for each dimension that is not drawn; from 0")
        ->type_name("D=N");
    plot->add_option("--columns", options.columns, "the dimension that is drawn across")->type_name("D");
    plot->add_option("--rows", options.rows, "the dimension that is drawn downward")->type_name("D");
    plot->add_option("--scale", options.scale,
                     "the ends of the colour scale, in the unit of the quantity (deg C, m/s, Pa ...); auto fits them "
                     "to the plane")
        ->type_name("LOW:HIGH");
    plot->add_option("--zoom", options.zoom, "a stretch for each dimension, such as 1,2");
    plot->add_option("--title", options.title, "the title of the plot");
    plot->add_option("--size", options.size, "pixels, such as 1200x900")->type_name("WxH");
    plot->footer(lookStatusHelp);
    return plot;
}

CLI::App* addSpectrum(CLI::App& app, SpectrumOptions& options) {
    CLI::App* spectrum = app.add_subcommand("spectrum", spectrumHelp);
    addGeometry(spectrum, options.geometry);
    spectrum->add_option("--points", options.points, "frequency points; there is one row more")
        ->capture_default_str()
        ->type_name("N")
        ->check(CLI::Range(0, 2147483646));
    spectrum->add_flag("--state", options.state, "recall the saved state first");
    spectrum->footer(lookStatusHelp);
    return spectrum;
}

CLI::App* addCheck(CLI::App& app, CheckOptions& options) {
    CLI::App* check = app.add_subcommand("check", checkHelp);
    check->add_option("GEOMETRY", options.geometries, "the geometries (*.gmt)")->required();
    check->add_option("--format", options.format, "text or json")->check(CLI::IsMember({"text", "json"}));
    check->add_flag("--strict", options.strict, "exit status 3 for warnings, too");
    check->add_option("--picture", options.picture, "draw what each cell is; .png, .svg, .pdf or .bmp")
        ->type_name("FILE");
    check->add_flag("--suggest", options.suggest, "print a time step to write");
    check->footer("Exit status: 0 no error, 2 bad use, 3 a geometry has an error (or with --strict a warning).");
    return check;
}

CLI::App* addShow(CLI::App& app, ShowOptions& options) {
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
    return show;
}

CLI::App* addDiff(CLI::App& app, std::string& before, std::string& after, std::string& picture) {
    CLI::App* diff = app.add_subcommand("diff", diffHelp);
    diff->add_option("BEFORE", before, "a geometry")->required();
    diff->add_option("AFTER", after, "another one")->required();
    diff->add_option("--picture", picture, "draw the cells that differ; .png, .svg, .pdf or .bmp")->type_name("FILE");
    diff->footer("Exit status: 0 nothing differs, 1 something does, 2 bad use, 3 a geometry cannot be used.");
    return diff;
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
std::string unknownWord(const CLI::App& app, const std::vector<std::string>& words) {
    const CLI::App* command = &app;
    for (const std::string& word : words) {
        if (word == "--") break;
        const bool isOption = word.size() > 2 && word.compare(0, 2, "--") == 0;
        std::string fault;
        if (isOption) {
            fault = unknownOption(*command, word);
        } else if (command == &app && !word.empty() && word[0] != '-') {
            fault = unknownCommand(app, word);
            if (fault.empty()) command = app.get_subcommand(word);
        }
        if (!fault.empty()) return fault;
    }
    return {};
}

/// The status of a command whose result is what it prints.
int printedStatus(ExitStatus status) {
    errno = 0;
    const bool printed = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (printed || errno == EPIPE) return status;
    std::cerr << "norvane: not all could be printed\n";
    return exitFileFault;
}

int runCommandLine(int argc, char** argv) {
    CLI::App app("Norvane simulates compressible gas flow with heat and species transport through a grid of cells,\n"
                 "drawn in a spreadsheet and saved as a tab-separated .gmt table.");
    app.name("norvane");
    app.set_version_flag("--version", "norvane " NORVANE_VERSION);
    app.require_subcommand(1);

    RunOptions runOptions;
    const CLI::App* run = addRun(app, runOptions);
    PlotOptions plotOptions;
    const CLI::App* plot = addPlot(app, plotOptions);
    SpectrumOptions spectrumOptions;
    const CLI::App* spectrum = addSpectrum(app, spectrumOptions);
    CheckOptions checkOptions;
    const CLI::App* check = addCheck(app, checkOptions);
    ShowOptions showOptions;
    const CLI::App* show = addShow(app, showOptions);
    std::string before;
    std::string after;
    std::string picture;
    const CLI::App* diff = addDiff(app, before, after, picture);
    std::string scriptPath;
    bool trace = false;
    CLI::App* script = app.add_subcommand("script", scriptHelp);
    script->add_option("FILE", scriptPath, "the script; - is standard input")->required();
    script->add_flag("--trace", trace, "print every operation on the drawing surface as well");
    bool putsAnywhere = false;
    script->add_flag("--allow-outside", putsAnywhere, "let put write files outside the working directory");

    const std::string unknown = unknownWord(app, {argv + std::min(argc, 1), argv + argc});
    if (!unknown.empty()) {
        std::cerr << unknown << "\nRun with --help for more information.\n";
        return exitBadUse;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        std::ostringstream fault; // it may hold any argument
        const int status = app.exit(end, std::cout, fault);
        std::cerr << printable(fault.str(), true);
        return status == 0 ? exitDone : exitBadUse;
    }
    plotOptions.hasTitle = plot->count("--title") > 0;
    if (*run) return runGeometry(runOptions);
    if (*plot) return plotGeometry(plotOptions);
    if (*spectrum) return writeSpectrumOf(spectrumOptions);
    if (*check) return printedStatus(checkGeometries(checkOptions));
    if (*show) return printedStatus(showGeometry(showOptions));
    if (*diff) return printedStatus(diffGeometries(before, after, picture));
    return runScript(scriptPath, trace, putsAnywhere);
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

} // namespace norvane

int main(int argc, char** argv) {
    norvane::survivesFileSizeLimit();
    try {
        const std::string name = argc > 0 ? std::filesystem::path(argv[0]).stem().string() : "";
        if (!name.empty() && name.back() == '_') return norvane::runNamedForBatch(argc, argv);
        return norvane::runCommandLine(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "norvane: out of memory\n";
    } catch (const std::exception& fault) {
        std::cerr << "norvane: " << norvane::printable(fault.what(), true) << '\n';
    }
    return norvane::exitFileFault;
}
