#include "frontends/desktop/command_form.h"

#include "check/check_text.h"
#include "frontends/desktop/thread_setting.h"
#include "frontends/desktop/window_places.h"
#include "platform/files.h"
#include "shell/command_window.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QUrl>
#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace norvane {

namespace {

/// As many lines as a box of a small screen has room for.
std::string firstLines(const std::vector<std::string>& lines) {
    constexpr std::size_t most = 16;
    constexpr std::size_t atEnd = 5; // how many findings there are, and what the model is
    std::string text;
    for (std::size_t k = 0; k < lines.size(); ++k) {
        const bool isLeftOut = lines.size() > most && k + atEnd >= most && k + atEnd < lines.size();
        if (isLeftOut && k + atEnd == most)
            text += "... and " + std::to_string(lines.size() - most) + " more findings; norvane check shows all\r\n";
        if (!isLeftOut) text += lines[k] + "\r\n";
    }
    return text;
}

/// The path of the one geometry that is dragged; empty for anything else.
std::string draggedGeometry(const QMimeData& data) {
    const QList<QUrl> urls = data.urls();
    if (urls.size() != 1 || !urls.front().isLocalFile()) return {};
    const QString path = urls.front().toLocalFile();
    return path.endsWith(FileList::ending, Qt::CaseInsensitive) ? path.toStdString() : std::string();
}

} // namespace

CommandForm::CommandForm(Program& program, Act act)
    : FormWindow(program, program.ui.NV_in.form, std::move(act), 2640, 5370) {
    // The order in which they are made is the order of the Tab key.
    QPushButton* import = addButton("Command1", {0, 0, 1695, 495});
    addButton("Command2", {0, 480, 855, 495});
    addButton("Command5", {840, 480, 855, 495});
    addButton("Command4", {0, 960, 855, 495});
    addButton("Command8", {840, 960, 855, 495});
    status_ = new QPlainTextEdit(this);
    status_->setReadOnly(true);
    status_->setTabChangesFocus(true);
    status_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    add(status_, "Text1", {0, 1440, 1695, 855}, {status_->fontMetrics().horizontalAdvance(" columns: 99999") + 16, 0});
    describe(status_, textOf("NV_in", "Text1"));
    addLists();
    addButton("Command6", {0, 4920, 735, 375});
    addButton("Command7", {720, 4920, 735, 375});
    geometries_->entered = [import] { import->click(); };
    setAcceptDrops(true);
    addCheck();
    addThreads();
    addCompensated();
}

void CommandForm::addLists() {
    folders_ = new FolderList(this);
    geometries_ = new GeometryList(this);
    const QSize rows(0, 4 * folders_->fontMetrics().height());
    add(folders_, "Dir1", {0, 2400, 2175, 990}, rows);
    add(geometries_, "File1", {0, 3600, 2175, 1260}, rows);
    describe(folders_, textOf("NV_in", "Dir1"));
    describe(geometries_, textOf("NV_in", "File1"));
    folders_->opened = [this](const std::string& path) { act_([&] { setDirectory(program_, path); }); };
    geometries_->selected = [this](const std::string& name) { program_.ui.NV_in.File1.selected = name; };
    // A run may write its files many times a second, and an editor takes a file away before it puts the new one there.
    changed_.setSingleShot(true);
    changed_.setInterval(std::chrono::milliseconds(250));
    connect(&changed_, &QTimer::timeout, this, [this] { refreshLists(); });
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (!changed_.isActive()) changed_.start();
    });
}

/// The number of threads is no control of the form: it is in the menu, and works with its key.
void CommandForm::addThreads() {
    threads_ = new QAction("&Threads ...", this);
    threads_->setShortcut(Qt::CTRL | Qt::Key_T);
    addAction(threads_);
    connect(threads_, &QAction::triggered, this, [this] {
        act_([this] {
            const std::optional<int> threads = askForThreads(this, program_.sim.threads);
            if (!threads) return;
            program_.sim.threads = *threads;
            keepThreads(*threads);
        });
    });
}

/// Nor is this: it changes results, and so is off at each start of the program.
void CommandForm::addCompensated() {
    compensated_ = new QAction("Co&mpensate rounding in the next run", this);
    compensated_->setObjectName("compensated");
    compensated_->setCheckable(true);
    connect(compensated_, &QAction::toggled, this, [this](bool on) { program_.sim.compensated = on; });
}

/// Neither is the check, which looks at the file as it is now, loaded or not.
void CommandForm::addCheck() {
    check_ = new QAction("Check the &geometry", this);
    check_->setShortcut(Qt::CTRL | Qt::Key_K);
    addAction(check_);
    connect(check_, &QAction::triggered, this, [this] {
        act_([this] {
            const FileList& files = program_.ui.NV_in.File1;
            if (files.selected.empty()) {
                program_.ui.showMessage("Select a geometry in the list first.");
                return;
            }
            const Checkup checkup = checkGeometry(joinPath(files.path, files.selected));
            program_.ui.showMessage(firstLines(checkLines(files.selected, checkup, true)));
        });
    });
}

void CommandForm::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(threads_);
    menu->addAction(compensated_);
    menu->addAction(check_);
    menu->popup(event->globalPos()); // without waiting: a run goes on meanwhile
}

void CommandForm::refreshLists() {
    const CommandWindow& window = program_.ui.NV_in;
    const QStringList wanted{QString::fromStdString(window.File1.path)};
    if (watcher_.directories() != wanted) {
        if (!watcher_.directories().isEmpty()) watcher_.removePaths(watcher_.directories());
        if (!window.File1.path.empty()) watcher_.addPaths(wanted);
    }
    folders_->show(window.Dir1.path);
    geometries_->show(listFiles(window.File1.path, FileList::ending), window.File1.selected);
}

void CommandForm::refreshStatus() {
    const std::string& text = program_.ui.NV_in.Text1.text;
    if (text == shownStatus_) return;
    shownStatus_ = text;
    status_->setPlainText(QString::fromStdString(text));
}

void CommandForm::refresh() {
    refreshStatus();
    refreshLists();
}

/// The window may shrink by what its lists have beyond two rows; on a small screen it begins so.
void CommandForm::layOut(double factor) {
    factor_ = factor;
    FormWindow::layOut(factor);
    const int leastRows = 2 * folders_->sizeHintForRow(0) + 2 * folders_->frameWidth();
    const int spare = std::max(0, folders_->height() - leastRows) + std::max(0, geometries_->height() - leastRows);
    setMinimumSize(designSize() - QSize(0, spare));
    const int room = roomFor(*this).height();
    if (designSize().height() > room) resize(designSize().width(), std::max(room, minimumHeight()));
}

/// What the window is larger or smaller than in its design goes to the lists, for long names and many of them.
void CommandForm::resizeEvent(QResizeEvent* event) {
    FormWindow::resizeEvent(event);
    const QSize extra = size() - designSize();
    const int toFolders = extra.height() * 2 / 5; // the lists have heights as 2 to 3, about
    for (const PlacedControl& each : controls()) {
        QRect place = pixelRect(each.place, factor_);
        const bool isList = each.control == folders_ || each.control == geometries_;
        if (isList) place.setWidth(place.width() + std::max(0, extra.width()));
        if (each.control == folders_) place.setHeight(place.height() + toFolders);
        if (each.control == geometries_) place.adjust(0, toFolders, 0, extra.height());
        if (each.place.top > 4000) place.translate(0, extra.height());
        each.control->setGeometry(place);
    }
}

void CommandForm::dragEnterEvent(QDragEnterEvent* event) {
    // Not every desktop keeps drops from the windows below a message.
    const bool isHeldUp = QApplication::activeModalWidget() != nullptr;
    if (!isHeldUp && !draggedGeometry(*event->mimeData()).empty()) event->acceptProposedAction();
}

void CommandForm::dropEvent(QDropEvent* event) {
    const std::string path = draggedGeometry(*event->mimeData());
    if (path.empty()) return;
    event->acceptProposedAction();
    act_([&] { selectGeometry(program_, path); });
}

} // namespace norvane
