// The desktop program.

#include "frontends/desktop/desktop.h"
#include "platform/files.h"
#include "platform/process.h"
#include "shell/command_window.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QSessionManager>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace norvane {

namespace {

/// What the command line asks for.
struct StartOptions {
    std::string geometry; ///< empty: none
    int threads = 0;      ///< 0: those that were set last
};

/// Ends the program for a number out of range, as the command line programs do.
int threadsOf(const QString& text) {
    bool isNumber = false;
    const int threads = text.toInt(&isNumber, 0);
    if (isNumber && threads >= 1 && threads <= maxThreads) return threads;
    std::fprintf(stderr, "--threads: Value %s not in range 1 to %d\nRun with --help for more information.\n",
                 text.toLocal8Bit().constData(), maxThreads);
    std::exit(2);
}

/// Ends the program for bad use and for --help.
StartOptions readOptions(const QApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription("Norvane simulates compressible gas flow through a grid of cells.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("geometry", "A table of a geometry (.gmt) to select at the start.", "[geometry]");
    const QCommandLineOption threads(
        "threads", "Threads of the computation, for this start; the results are the same for any number.", "N");
    parser.addOption(threads);
    parser.process(application);
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() > 1) parser.showHelp(2);
    StartOptions options;
    if (!arguments.isEmpty()) options.geometry = arguments.front().toStdString();
    if (parser.isSet(threads)) options.threads = threadsOf(parser.value(threads));
    return options;
}

/// A folder is opened; a geometry is selected, and its folder with it.
void openArgument(Program& program, const std::string& argument) {
    std::error_code unknown;
    if (std::filesystem::is_directory(argument, unknown)) {
        setDirectory(program, absolutePath(argument));
        return;
    }
    selectGeometry(program, argument);
    const std::vector<std::string> names = listFiles(folderOf(argument), FileList::ending);
    if (std::find(names.begin(), names.end(), nameOf(argument)) != names.end()) return;
    const bool exists = std::filesystem::exists(argument, unknown);
    program.ui.showMessage(absolutePath(argument)
                           + (exists
                                  ? " does not end in .gmt, so the list does not show it. Import reads it all the same."
                                  : ": there is no such file."));
}

int runDesktop(int argc, char** argv) {
    const std::string calledAs = argc > 0 ? argv[0] : "";
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName("Norvane");
    QCoreApplication::setApplicationName("norvane-desktop");
    QCoreApplication::setApplicationVersion(NORVANE_VERSION);
    QGuiApplication::setDesktopFileName("norvane-desktop");
    QGuiApplication::setWindowIcon(QIcon::fromTheme("norvane-desktop", QIcon(":/norvane-desktop.png")));
    QGuiApplication::setQuitOnLastWindowClosed(false); // only the exit question ends the program
    const StartOptions options = readOptions(application);
    const std::string& geometry = options.geometry;

    Program program;
    program.sim.threads = options.threads;
    connectProgram(program);
    Desktop desktop(program);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, [&](QSessionManager& session) {
        session.cancel();
        desktop.requestEndOfSession();
    });
    // As it was called, which may be a link: its name chooses batch mode, its folder the lists.
    const std::string file = programPath(calledAs);
    desktop.start({folderOf(file), nameOf(file), geometry.empty() ? geometry : absolutePath(geometry)});
    if (!geometry.empty() && !program.sim.batchMode) {
        openArgument(program, geometry);
        desktop.refresh();
    }
    return QApplication::exec();
}

} // namespace

} // namespace norvane

int main(int argc, char** argv) {
    norvane::survivesFileSizeLimit();
    return norvane::runDesktop(argc, argv);
}
