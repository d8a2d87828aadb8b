// The windows show the records and nothing else, and can be read and reached.

#include "desktop/widget_hands.h"
#include "display/field_plot.h"
#include "display/plot_layout.h"
#include "frontends/desktop/desktop.h"
#include "support/test_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

namespace norvane {
namespace {

using testing::HasSubstr;

/// A program with its windows on the screen. The message boxes are left out.
struct Screen {
    TestProgram test;
    Desktop desktop{test.program};

    Screen() {
        test.ui.NV_dsp.Combo1.entries.clear(); // the program is started once more, with its windows
        desktop.start({test.folder.string(), "norvane", {}});
        test.ui.showMessage = [this](const Report& report) { test.messages.push_back(report.text); };
    }

    void runExample(const std::string& name, int steps) {
        test.loadExample(name);
        test.program.operations.buildModel(test.sim);
        test.sim.stopStep = steps;
        const auto build = test.program.operations.buildModel;
        test.program.operations.buildModel = [](SimState&) {};
        test.click("NV_in.Command2");
        test.program.operations.buildModel = build;
    }

    QWidget* picture() const { return findWidget<QWidget>("NV_out.Picture1"); }
};

std::vector<QWidget*> namedControls() {
    std::vector<QWidget*> controls;
    for (const char* form : {"NV_in", "NV_out", "NV_dsp", "NV_einde"})
        for (QWidget* control : findWindow(form)->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            if (!control->isHidden()) controls.push_back(control);
    return controls;
}

TEST(windows, showThePixelsOfTheSavedPicture) {
    Screen screen;
    screen.runExample("channel", 3);
    ASSERT_TRUE(findWindow("NV_out")->isVisible());
    screen.test.ui.NV_out.Picture1.savePicture("picture.bmp");
    const QImage saved = QImage("picture.bmp").convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(saved.size(), QSize(568, 690));
    const QImage seen = findWindow("NV_out")->grab().toImage().convertToFormat(QImage::Format_RGB32);
    EXPECT_TRUE(seen == saved);

    QTest::keyClick(findWindow("NV_out"), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QGuiApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32) == saved);
}

TEST(windows, findTheCellThatIsPaintedUnderThePointer) {
    Screen screen;
    std::vector<QRectF> boxes;
    Surface& surface = screen.test.ui.NV_out.Picture1;
    surface.box = [&, box = surface.box](float x1, float y1, float x2, float y2) {
        boxes.emplace_back(QPointF(double(x1), double(y1)), QPointF(double(x2), double(y2)));
        box(x1, y1, x2, y2);
    };
    screen.runExample("duct_obstacle", 2);
    SimState& sim = screen.test.sim;
    for (const int columns : {1, 3}) {
        sim.axisPair[0] = static_cast<std::int16_t>(columns);
        sim.zoom[columns] = 1.5f;
        const int slice = columns == 1 ? 3 : 1;
        sim.sliceSel[slice] = 2;
        screen.test.ui.NV_out.form.height = 400;
        boxes.clear();
        screen.test.program.operations.output("plot").write(sim);
        constexpr std::size_t legendRows = 11;
        // The last column does not fit into a map that its width limits, and is left out.
        ASSERT_GT(boxes.size(), legendRows);
        const PlotLayout& layout = screen.test.ui.NV_out.layout;
        std::size_t painted = legendRows;
        for (int j = 0; j < sim.cellCount[2]; ++j) {
            for (int i = 0; i < sim.cellCount[columns]; ++i) {
                const std::int32_t cell =
                    1 + i * sim.cellStride[columns] + j * sim.cellStride[2] + 2 * sim.cellStride[slice];
                const QPointF centre = painted < boxes.size() ? boxes[painted].center() : QPointF();
                if (cellAt(layout, sim, centre.x(), centre.y()) != cell) continue; // a cell that was left out
                painted += 1;
                EXPECT_THAT(describeCell(layout, sim, cell), HasSubstr("Cell " + std::to_string(cell) + " ("));
            }
        }
        EXPECT_EQ(painted, boxes.size()); // each box was found to be its cell, in the order of painting
        EXPECT_EQ(cellAt(layout, sim, 2, 2), 0);
        clearPlot(screen.test.ui);
        EXPECT_EQ(cellAt(layout, sim, boxes.back().center().x(), boxes.back().center().y()), 0);
    }
}

TEST(windows, tellNumberPositionAndValueOfACell) {
    Screen screen;
    screen.test.build("TT 300:DD 0;0.5:SW 1\t\nL\t\nTT 310\t\n\tTT 320\nL\t");
    SimState& sim = screen.test.sim;
    sim.showWhat = 1;
    drawField(sim, screen.test.ui);
    EXPECT_EQ(describeCell(screen.test.ui.NV_out.layout, sim, 4),
              "Cell 4 (X 1, Y 1)\nfrom 0.5, 0.5 m\nTemperature 46.85 \u00b0C");
}

TEST(windows, canBeReadWithAnyFont) {
    const QFont usual = QApplication::font();
    for (const int points : {7, 9, 12, 18}) {
        QFont font = usual;
        font.setPointSize(points);
        QApplication::setFont(font);
        const Screen screen;
        for (const QWidget* control : namedControls()) {
            QSize text;
            if (const auto* button = qobject_cast<const QPushButton*>(control))
                text = button->fontMetrics().size(Qt::TextShowMnemonic, button->text()) + QSize(8, 4);
            if (const auto* label = qobject_cast<const QLabel*>(control)) text = label->sizeHint();
            EXPECT_GE(control->width(), text.width()) << control->objectName().toStdString() << " at " << points;
            EXPECT_GE(control->height(), text.height()) << control->objectName().toStdString() << " at " << points;
            EXPECT_TRUE(control->window()->rect().contains(control->geometry()));
            for (const QWidget* other : namedControls())
                EXPECT_FALSE(other != control && other->window() == control->window()
                             && other->geometry().intersects(control->geometry()))
                    << control->objectName().toStdString() << " and " << other->objectName().toStdString();
        }
    }
    QApplication::setFont(usual);
}

TEST(windows, nameAndExplainEveryControl) {
    const Screen screen;
    for (const QWidget* control : namedControls()) {
        EXPECT_FALSE(control->objectName().isEmpty());
        EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
        const auto* button = qobject_cast<const QPushButton*>(control);
        const QString caption = button == nullptr ? QString() : button->text().remove('&');
        EXPECT_TRUE(control->accessibleName().startsWith(caption, Qt::CaseInsensitive)) << caption.toStdString();
        const bool isExplained =
            qobject_cast<const QLabel*>(control) != nullptr || !control->accessibleDescription().isEmpty();
        EXPECT_TRUE(isExplained) << control->objectName().toStdString();
    }
}

TEST(windows, areWalkedByTheTabKeyInTheOrderOfTheForm) {
    const Screen screen;
    std::vector<std::string> names;
    for (const QWidget* next = findWidget<QWidget>("NV_in.Command1"); names.size() < 10;
         next = next->nextInFocusChain())
        if (next->parentWidget() == findWindow("NV_in") && (next->focusPolicy() & Qt::TabFocus) != 0)
            names.push_back(next->objectName().toStdString());
    EXPECT_THAT(names, testing::ElementsAre("Command1", "Command2", "Command5", "Command4", "Command8", "Text1", "Dir1",
                                            "File1", "Command6", "Command7"));
}

TEST(windows, stayWhenTheyAreClosed) {
    Screen screen;
    for (const char* form : {"NV_dsp", "NV_in"}) {
        findWindow(form)->show();
        EXPECT_FALSE(findWindow(form)->close());
        EXPECT_TRUE(findWindow(form)->isVisible());
        EXPECT_EQ(findWindow("NV_einde")->isVisible(), std::string(form) == "NV_in");
    }
    EXPECT_TRUE(screen.test.sim.stopFlag);
    QTest::keyClick(findWindow("NV_einde"), Qt::Key_Escape);
    EXPECT_FALSE(findWindow("NV_einde")->isVisible());
    screen.desktop.requestEndOfSession();
    EXPECT_TRUE(findWindow("NV_einde")->isVisible());
    EXPECT_TRUE(findWindow("NV_in")->isVisible());
}

TEST(windows, followTheFilesOfTheFolder) {
    Screen screen;
    const auto* files = findWidget<QListWidget>("NV_in.File1");
    EXPECT_EQ(files->count(), 0);
    screen.test.write("a.gmt", "L\n\nL");
    EXPECT_TRUE(QTest::qWaitFor([&] { return files->count() == 1; }));
    std::filesystem::remove(screen.test.folder / "a.gmt");
    EXPECT_TRUE(QTest::qWaitFor([&] { return files->count() == 0; }));
}

TEST(windows, takeADroppedGeometry) {
    Screen screen;
    std::filesystem::create_directories(screen.test.folder / "sub");
    screen.test.write("sub/a.gmt", "L\n\nL");
    const auto drop = [&](const std::string& name) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString((screen.test.folder / name).string()))});
        QDragEnterEvent enters({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enters.setAccepted(false);
        QCoreApplication::sendEvent(findWindow("NV_in"), &enters);
        if (!enters.isAccepted()) return false;
        QDropEvent drops({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(findWindow("NV_in"), &drops);
        return true;
    };
    EXPECT_FALSE(drop("sub/a.txt"));
    EXPECT_TRUE(drop("sub/a.gmt"));
    EXPECT_EQ(screen.test.ui.NV_in.File1.selected, "a.gmt");
    const auto* files = findWidget<QListWidget>("NV_in.File1");
    ASSERT_EQ(files->selectedItems().size(), 1);
    QTest::keyClick(findWidget<QWidget>("NV_in.File1"), Qt::Key_Return); // as the button does
    EXPECT_EQ(screen.test.sim.nDim, 1);
}

/// Picks the entry of the menu of a control, and answers the question that follows. Gives what the question showed.
QString setThreads(const char* control, const QString& number, Qt::Key answer) {
    QWidget* place = findWidget<QWidget>(control);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, place->rect().center(), {5, 5});
    QApplication::sendEvent(place, &event);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (menu == nullptr || menu->actions().size() != 3) return "(no menu)";
    QAction* entry = menu->actions().front();
    menu->close();
    QString shown;
    QTimer::singleShot(0, [&] {
        auto* edit = QApplication::activeModalWidget()->findChild<QSpinBox*>();
        shown = edit->text();
        edit->selectAll();
        QTest::keyClicks(edit, number);
        QTest::keyClick(edit, answer);
    });
    entry->trigger();
    return shown;
}

TEST(windows, keepTheNumberOfThreadsForTheNextRuns) {
    const TestProgram place; // outlives the programs below, as a person's settings do
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromStdString(place.folder.string()));
    {
        const Screen screen;
        EXPECT_EQ(screen.test.sim.threads, 0);
        EXPECT_EQ(setThreads("NV_in.Command2", "3", Qt::Key_Return), "as suits the grid");
        EXPECT_EQ(screen.test.sim.threads, 3);
        EXPECT_EQ(setThreads("NV_in.File1", "4", Qt::Key_Escape), "3");
        EXPECT_EQ(screen.test.sim.threads, 3);
        setThreads("NV_in.Command2", "1025", Qt::Key_Return);
        EXPECT_EQ(screen.test.sim.threads, 102) << "the last digit is refused";
        setThreads("NV_in.Command2", "2", Qt::Key_Return);
    }
    EXPECT_EQ(Screen().test.sim.threads, 2);
    TestProgram named;
    named.sim.threads = 5; // by the command line
    Desktop(named.program).start({named.folder.string(), "norvane", {}});
    EXPECT_EQ(named.sim.threads, 5);
    EXPECT_EQ(Screen().test.sim.threads, 2) << "which counts for one start";
}

TEST(windows, compensateTheNextRunWhereItsEntryIsTicked) {
    Screen screen;
    auto* entry = findWidget<QAction>("NV_in.compensated");
    ASSERT_FALSE(entry->isChecked());
    entry->trigger();
    EXPECT_TRUE(entry->isChecked() && screen.test.sim.compensated);
    entry->trigger();
    EXPECT_FALSE(entry->isChecked() || screen.test.sim.compensated);
}

TEST(windows, checkTheSelectedGeometry) {
    Screen screen;
    std::vector<std::string> shown;
    screen.test.ui.showMessage = [&](const Report& report) { shown.push_back(report.text); };
    screen.test.write("m.gmt", "DT 1E-6\t\nL\t\nTT 3oo\t\nL\t");
    auto* window = findWindow("NV_in");
    for (QAction* action : window->actions())
        if (action->text().startsWith("Check")) action->trigger();
    selectGeometry(screen.test.program, "m.gmt");
    for (QAction* action : window->actions())
        if (action->text().startsWith("Check")) action->trigger();
    EXPECT_THAT(shown,
                testing::ElementsAre(HasSubstr("Select a geometry"), HasSubstr("m.gmt:A3: warning: \"TT 3oo\"")));
    EXPECT_EQ(screen.test.sim.nDim, 0) << "nothing is loaded";
}

TEST(windows, selectorsFollowLettersAndOnlyTheirOwnWheel) {
    Screen screen;
    screen.runExample("channel", 1);
    auto* quantity = findWidget<QComboBox>("NV_dsp.Combo1");
    const int before = screen.test.sim.showWhat;
    QWheelEvent wheel({5, 5}, quantity->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(quantity, &wheel);
    EXPECT_EQ(screen.test.sim.showWhat, before);
    QTest::keyClicks(quantity, "pr"); // not its text, which never has the keys
    EXPECT_EQ(quantity->currentText(), "Pressure");
    EXPECT_EQ(screen.test.sim.showWhat, 4);
}

TEST(windows, showTheFirstFewBoxesOfASeriesAndOneThatClosesIt) {
    TestProgram test;
    Desktop desktop(test.program);
    desktop.start({test.folder.string(), "norvane", {}});
    std::vector<std::string> boxes;
    QTimer dismissal;
    QObject::connect(&dismissal, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) return;
        boxes.push_back(box->text().toStdString());
        EXPECT_EQ(box->parentWidget(), findWindow("NV_in")) << "the window whose button was clicked";
        box->button(QMessageBox::Ok)->click();
    });
    dismissal.start(1);
    test.write("m.gmt", "L\n\nL32767");
    selectGeometry(test.program, "m.gmt");
    QTest::mouseClick(findWidget<QPushButton>("NV_in.Command1"), Qt::LeftButton);
    EXPECT_LT(boxes.size(), 10u);
    EXPECT_THAT(boxes, testing::Contains("... and 995 more such messages, about row 3."));
}

TEST(windows, startAtTheSizeThatTheWindowManagerChooses) {
    Screen screen;
    screen.test.build("TT 300:DD 0;0.5\t\nL\t\n\t\n\t\nL\t");
    drawField(screen.test.sim, screen.test.ui); // shown, and not yet painted: no event has passed
    auto* window = dynamic_cast<PlotForm*>(findWindow("NV_out"));
    int cleared = 0;
    Surface& surface = screen.test.ui.NV_out.Picture1;
    surface.cls = [&, clear = surface.cls] {
        cleared += 1;
        clear();
    };
    QResizeEvent chosen({700, 500}, window->size());
    QSpontaneKeyEvent::setSpontaneous(&chosen);
    qApp->notify(window, &chosen); // sendEvent would take the mark away
    EXPECT_EQ(screen.test.ui.NV_out.form.width, 700 / window->view().pixelSize());
    EXPECT_EQ(cleared, 0) << "the plot was drawn anew, not cleared";
}

TEST(windows, fitOnASmallScreenWithALargeFont) {
    const QFont usual = QApplication::font();
    QFont font = usual;
    font.setPointSize(11);
    QApplication::setFont(font);
    Screen screen;
    const QSize room(910, 512); // of 1366 x 768 at a scale of 1.5
    for (const char* form : {"NV_in", "NV_dsp", "NV_einde"}) {
        QWidget* window = findWindow(form);
        EXPECT_LE(window->minimumWidth(), room.width() - 24) << form;
        EXPECT_LE(window->minimumHeight(), room.height() - 48) << form;
        window->resize(window->minimumSize());
        for (const QWidget* control : namedControls())
            if (control->window() == window) {
                EXPECT_TRUE(window->rect().contains(control->geometry())) << control->objectName().toStdString();
            }
    }
    PictureView& view = dynamic_cast<PlotForm*>(findWindow("NV_out"))->view();
    view.fitPixels({568, 690}, room);
    EXPECT_LE(690 * view.pixelSize(), room.height());
    QApplication::setFont(usual);
}

TEST(windows, aMessageCanBeCopiedAndHoldsUpEverything) {
    TestProgram test;
    Desktop desktop(test.program);
    QString seen;
    bool copies = false;
    bool blocks = false;
    QTimer::singleShot(0, [&] {
        const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        seen = box->text();
        copies = box->textInteractionFlags().testFlag(Qt::TextSelectableByMouse);
        blocks = box->windowModality() == Qt::ApplicationModal;
        box->button(QMessageBox::Ok)->click();
    });
    test.ui.showMessage("<b>m_log</b>\r\ncan't be written");
    EXPECT_EQ(seen, "<b>m_log</b>\r\ncan't be written");
    EXPECT_TRUE(copies);
    EXPECT_TRUE(blocks);
}

TEST(windows, aRunGivesWayToWhatIsPending) {
    Screen screen;
    screen.test.load("DT 1E-6:NT -1:UT 0\nL\n\nL");
    bool answered = false;
    QTimer::singleShot(0, [&] {
        QTest::mouseClick(findWidget<QPushButton>("NV_in.Command4"), Qt::LeftButton);
        answered = true;
    });
    screen.test.click("NV_in.Command2"); // has no end of its own
    EXPECT_TRUE(answered);
    EXPECT_TRUE(findWindow("NV_dsp")->isVisible());
}

} // namespace
} // namespace norvane

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QCoreApplication::setApplicationName("norvane-desktop-tests");
    return RUN_ALL_TESTS();
}
