// The desktop program.

#include "frontends/desktop/desktop.h"
#include "platform/files.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QSessionManager>

namespace norvane {

namespace {

/// The geometry that the command line names; empty for none. Ends the program for bad use and for --help.
std::string namedGeometry(const QApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription("Norvane simulates compressible gas flow through a grid of cells.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("geometry", "A table of a geometry (.gmt) to select at the start.", "[geometry]");
    parser.process(application);
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() > 1) parser.showHelp(2);
    return arguments.isEmpty() ? std::string() : arguments.front().toStdString();
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
    const std::string geometry = namedGeometry(application);

    Program program;
    connectProgram(program);
    Desktop desktop(program);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, [&](QSessionManager& session) {
        session.cancel();
        desktop.requestEndOfSession();
    });
    // As it was called, which may be a link: its name chooses batch mode, its folder the lists.
    const std::string file = programPath(calledAs);
    desktop.start({folderOf(file), nameOf(file), geometry.empty() ? geometry : absolutePath(geometry)});
    if (!geometry.empty() && program.sim.batchMode == 0) {
        selectGeometry(program, geometry);
        desktop.refresh();
    }
    return QApplication::exec();
}

} // namespace

} // namespace norvane

int main(int argc, char** argv) { return norvane::runDesktop(argc, argv); }
