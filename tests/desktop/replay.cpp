// Replays a script on the windows of the desktop program, and prints what the script front end prints: one script, two
// front ends. Commands inside yields arrive as events, and are carried out by the polls of the run.

#include "desktop/widget_hands.h"
#include "frontends/desktop/desktop.h"
#include "frontends/script/surface_trace.h"
#include "platform/files.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <cstring>

namespace norvane {

namespace {

/// Prints windows as they come and go.
class WindowWatch : public QObject {
public:
    bool eventFilter(QObject* window, QEvent* event) override {
        if (event->spontaneous()) return false; // an act of the window system, not of the program
        if (event->type() == QEvent::Show) printLine("shown: " + window->objectName().toStdString());
        if (event->type() == QEvent::Hide) printLine("hidden: " + window->objectName().toStdString());
        return false;
    }
};

/// Of a series of messages only some come as boxes.
void dismissMessage() {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box != nullptr) QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
}

void answerQuestion(ScriptDriver& driver) {
    auto* box = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
    auto* edit = box->findChild<QLineEdit*>();
    const std::optional<std::string> answer =
        driver.takeAnswer(box->labelText().toStdString(), edit->text().toStdString());
    if (answer) typeInto(edit, QString::fromStdString(*answer));
    const auto button = answer ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel;
    QTest::mouseClick(box->findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
}

/// Puts the script's part before the operations of the desktop: it acts inside the boxes and the polls themselves.
void connectDriver(Interface& ui, Desktop& desktop, ScriptDriver& driver) {
    ui.showMessage = [show = ui.showMessage](const Report& report) {
        printLine("message: " + escaped(report.text));
        show(report);
    };
    ui.askText = [ask = ui.askText, &driver](const std::string& prompt, const std::string& defaultText) {
        QTimer::singleShot(0, [&driver] { answerQuestion(driver); });
        return ask(prompt, defaultText);
    };
    ui.yieldToInterface = [yield = ui.yieldToInterface, &desktop, &driver] {
        if (!driver.countYield()) return yield();
        QMetaObject::invokeMethod(
            qApp, [&driver] { driver.runDue(); }, Qt::QueuedConnection);
        desktop.poll();
    };
    ui.beep = [beep = ui.beep] {
        printLine("beep");
        beep();
    };
    ui.endProgram = [end = ui.endProgram] {
        printLine("ended");
        end();
    };
}

int replay(const std::string& path, bool trace) {
    std::string bytes;
    if (!readFile(path, bytes)) return 2;
    Program program;
    connectProgram(program);
    Desktop desktop(program);
    ScriptDriver driver(program, handsOnWidgets());
    connectDriver(program.ui, desktop, driver);
    if (trace) traceSurface(program.ui.NV_out.Picture1, printLine);
    desktop.start({folderOf(path), "norvane", {}});
    WindowWatch watch;
    QTimer dismissal;
    QObject::connect(&dismissal, &QTimer::timeout, dismissMessage);
    dismissal.start(1);
    for (FormWindow* window : desktop.windows()) window->installEventFilter(&watch);
    driver.run(bytes);
    for (FormWindow* window : desktop.windows()) window->removeEventFilter(&watch);
    return 0;
}

} // namespace

} // namespace norvane

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QCoreApplication::setApplicationName("norvane-desktop-replay");
    const bool trace = argc == 3 && std::strcmp(argv[1], "--trace") == 0;
    if (argc != (trace ? 3 : 2)) return 2;
    return norvane::replay(argv[argc - 1], trace);
}
