// The command line. Options are read here and nowhere else.

#include "frontends/cli/exit_status.h"
#include "frontends/cli/run_command.h"
#include "frontends/script/script_front_end.h"
#include "platform/files.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <filesystem>
#include <iostream>

namespace norvane {

namespace {

constexpr const char* runStatusHelp =
    "Exit status:\n"
    "  0  the run reached its stop step\n"
    "  1  the model ended the run (negative density)\n"
    "  2  bad use of the command line\n"
    "  3  the geometry cannot be run\n"
    "  4  a file cannot be read or written\n"
    "  5  stopped early, by a signal or by the value 1 in the file checkstop\n\n"
    "Ctrl-C finishes the step in hand and ends the run in order; a second Ctrl-C ends it at once.";

constexpr const char* runHelp = "Load a geometry and run it to its end.\n\n"
                                "The results lie beside the geometry m.gmt: m_log, a line for each logged step (key LT).";

constexpr const char* scriptHelp =
    "Drive the whole program without a window: the commands of FILE stand for a person's clicks,\n"
    "and every message, question and window that a person would have seen is printed.\n"
    "Exit status: 0, or 2 after a fault of the script.";

int runCommandLine(int argc, char** argv) {
    CLI::App app("Norvane simulates compressible gas flow with heat and species transport through a grid of cells,\n"
                 "drawn in a spreadsheet and saved as a tab-separated .gmt table.");
    app.name("norvane");
    app.set_version_flag("--version", "norvane " NORVANE_VERSION);
    app.require_subcommand(1);

    RunOptions runOptions;
    CLI::App* run = app.add_subcommand("run", runHelp);
    run->add_option("GEOMETRY", runOptions.geometry, "the table of the geometry, a .gmt file")->required();
    run->add_flag("-q,--quiet", runOptions.quiet, "print nothing but messages");
    run->footer(runStatusHelp);

    std::string scriptPath;
    bool trace = false;
    CLI::App* script = app.add_subcommand("script", scriptHelp);
    script->add_option("FILE", scriptPath, "the script; - is standard input")->required();
    script->add_flag("--trace", trace, "print every operation on the drawing surface as well");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        return app.exit(end) == 0 ? exitDone : exitBadUse;
    }
    if (*script) return runScript(scriptPath, trace);
    return runGeometry(runOptions);
}

/// A program file whose name ends in "_" starts in batch mode, with a geometry as its only argument.
int runNamedForBatch(int argc, char** argv) {
    if (argc > 2) {
        std::cerr << "usage: " << nameOf(argv[0]) << " [GEOMETRY]\n";
        return exitBadUse;
    }
    return runBatch({folderOf(argv[0]), nameOf(argv[0]), argc == 2 ? argv[1] : ""});
}

} // namespace

} // namespace norvane

int main(int argc, char** argv) {
    try {
        const std::string name = argc > 0 ? std::filesystem::path(argv[0]).stem().string() : "";
        if (!name.empty() && name.back() == '_') return norvane::runNamedForBatch(argc, argv);
        return norvane::runCommandLine(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "norvane: out of memory\n";
    } catch (const std::exception& fault) {
        std::cerr << "norvane: " << fault.what() << '\n';
    }
    return norvane::exitFileFault;
}
