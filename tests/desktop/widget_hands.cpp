#include "desktop/widget_hands.h"

#include "frontends/desktop/control_views.h"
#include "frontends/desktop/path_lists.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QResizeEvent>
#include <QTest>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace norvane {

namespace {

[[noreturn]] void endUnable(const std::string& what) {
    std::fprintf(stderr, "a person can't %s\n", what.c_str());
    std::fflush(nullptr);
    std::_Exit(2);
}

QListWidget* list(const char* name) { return findWidget<QListWidget>(name); }

QPoint scrollTo(QListWidget* list, QListWidgetItem* entry) {
    list->scrollToItem(entry);
    return list->visualItemRect(entry).center();
}

void doubleClick(QListWidget* list, QListWidgetItem* entry) {
    const QPoint place = scrollTo(list, entry);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place); // the second press alone
}

QListWidgetItem* entryNamed(QListWidget* list, const std::string& name) {
    const QList<QListWidgetItem*> found = list->findItems(QString::fromStdString(name), Qt::MatchExactly);
    if (found.isEmpty()) endUnable("find \"" + name + "\" in " + list->objectName().toStdString());
    return found.back(); // behind the entry of the open folder itself
}

std::string openFolder() { return dynamic_cast<FolderList&>(*list("NV_in.Dir1")).path(); }

/// Goes up to the nearest common folder, and down from there.
void walkTo(const std::string& target) {
    QListWidget* folders = list("NV_in.Dir1");
    const auto wayDown = [&] { return std::filesystem::path(target).lexically_relative(openFolder()); };
    if (openFolder() == target) doubleClick(folders, folders->item(0));
    while (wayDown().begin()->string() == "..") doubleClick(folders, folders->item(1));
    for (const std::filesystem::path& folder : wayDown())
        if (folder != ".") doubleClick(folders, entryNamed(folders, folder.string()));
}

void selectFile(const std::string& name) {
    QListWidget* files = list("NV_in.File1");
    QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, scrollTo(files, entryNamed(files, name)));
}

bool clickButton(const std::string& name) {
    auto* button = findWidget<QPushButton>(name);
    if (button != nullptr) QTest::mouseClick(button, Qt::LeftButton);
    return button != nullptr;
}

bool resizeWindow(const std::string& form, int width, int height) {
    QWidget* window = findWindow(form);
    const QSize former = window->size();
    window->resize(width, height);
    if (!window->isVisible()) { // it would hear of it only when it is shown
        QResizeEvent event(window->size(), former);
        QCoreApplication::sendEvent(window, &event);
    }
    return true;
}

bool setControl(const std::string& name, const std::string& text) {
    if (auto* box = findWidget<QComboBox>(name)) {
        dynamic_cast<SelectorView&>(*box).setOwnText(text); // a person could not: the box takes no typing
        return true;
    }
    auto* edit = findWidget<QLineEdit>(name);
    if (edit != nullptr) typeInto(edit, QString::fromStdString(text));
    return edit != nullptr;
}

void choose(const std::string& name, int index) {
    auto* box = findWidget<QComboBox>(name);
    box->showPopup();
    box->view()->setCurrentIndex(box->model()->index(index, 0));
    QTest::keyClick(box->view(), Qt::Key_Return);
}

std::string filesLook() {
    const QListWidget* files = list("NV_in.File1");
    std::vector<std::string> names;
    for (int row = 0; row < files->count(); ++row) names.push_back(files->item(row)->text().toStdString());
    const QList<QListWidgetItem*> selected = files->selectedItems();
    return fileListLook(selected.isEmpty() ? "" : selected.front()->text().toStdString(), names);
}

std::string boxLook(const QComboBox& box) {
    std::vector<std::string> entries;
    for (int index = 0; index < box.count(); ++index) entries.push_back(box.itemText(index).toStdString());
    return selectorLook(!box.isHidden(), box.currentIndex(), entries);
}

std::optional<std::string> lookAt(const std::string& name) {
    if (const QWidget* window = findWindow(name))
        return formLook(window->isVisible(), window->windowTitle().toStdString());
    if (const auto* status = findWidget<QPlainTextEdit>(name))
        return escaped(status->toPlainText().replace('\n', QStringLiteral("\r\n")).toStdString());
    if (const auto* box = findWidget<QComboBox>(name)) return boxLook(*box);
    if (const auto* edit = findWidget<QLineEdit>(name)) return escaped(edit->text().toStdString());
    if (name == "NV_in.Dir1") return escaped(openFolder());
    if (name == "NV_in.File1") return filesLook();
    return {};
}

} // namespace

QWidget* findWindow(const std::string& form) {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName().toStdString() == form) return window;
    return nullptr;
}

void typeInto(QWidget* edit, const QString& text) {
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
    const bool isPlain = std::all_of(text.begin(), text.end(), [](QChar c) { return c.isPrint() && c < QChar(127); });
    if (isPlain) {
        QTest::keyClicks(edit, text);
    } else {
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    }
}

ScriptHands handsOnWidgets() {
    ScriptHands hands;
    hands.changeDirectory = walkTo;
    hands.selectFile = selectFile;
    hands.click = clickButton;
    hands.close = [](const std::string& form) {
        QWidget* window = findWindow(form);
        if (window != nullptr) window->close();
        return window != nullptr;
    };
    hands.resize = resizeWindow;
    hands.set = setControl;
    hands.entryCount = [](const std::string& name) {
        const auto* box = findWidget<QComboBox>(name);
        return box == nullptr ? std::nullopt : std::optional<int>(box->count());
    };
    hands.choose = choose;
    hands.look = lookAt;
    return hands;
}

} // namespace norvane
