#include "frontends/desktop/path_lists.h"

#include "platform/files.h"

#include <QKeyEvent>
#include <QSignalBlocker>
#include <QStyle>
#include <algorithm>
#include <filesystem>

namespace norvane {

namespace {

constexpr int nameRole = Qt::UserRole;
constexpr const char* self = ".";
constexpr const char* above = "..";

/// The folders in a folder but for hidden ones, sorted.
std::vector<std::string> foldersIn(const std::string& path) {
    std::vector<std::string> names;
    std::error_code failed;
    for (std::filesystem::directory_iterator entry(path, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        std::error_code unknown;
        const std::string name = entry->path().filename().string();
        if (name.front() != '.' && entry->is_directory(unknown)) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

PathList::PathList(QWidget* parent) : QListWidget(parent) {
    setUniformItemSizes(true);
    setIconSize({fontMetrics().height(), fontMetrics().height()}); // the icons of a style come in several sizes
    setTextElideMode(Qt::ElideNone);                               // long names are scrolled to
    connect(this, &QListWidget::itemDoubleClicked, this, [this] {
        if (entered) entered();
    });
}

std::string PathList::nameOfEntry(const QListWidgetItem* entry) {
    return entry == nullptr ? std::string() : entry->data(nameRole).toByteArray().toStdString();
}

QListWidgetItem* PathList::addEntry(const std::string& name, const QString& shown) {
    auto* entry = new QListWidgetItem(shown, this);
    entry->setData(nameRole, QByteArray::fromStdString(name));
    return entry;
}

void PathList::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && currentItem() != nullptr && entered)
        entered();
    else
        QListWidget::keyPressEvent(event);
}

FolderList::FolderList(QWidget* parent) : PathList(parent) {
    entered = [this] { open(currentItem()); };
}

void FolderList::open(const QListWidgetItem* entry) {
    const std::string name = nameOfEntry(entry);
    if (name.empty() || !opened) return;
    opened(name == self ? path_ : absolutePath(joinPath(path_, name)));
}

void FolderList::show(const std::string& path) {
    std::vector<std::string> names = foldersIn(path);
    if (path == path_ && names == names_) return;
    path_ = path;
    names_ = std::move(names);
    clear();
    const std::string name = norvane::nameOf(path);
    QListWidgetItem* here = addEntry(self, {});
    here->setIcon(style()->standardIcon(QStyle::SP_DirOpenIcon));
    // As markup with all of its own marks taken away: a name may look like markup, and would be taken for it.
    here->setToolTip("<p style='white-space:pre'>" + QString::fromStdString(path).toHtmlEscaped() + "</p>");
    if (!name.empty()) addEntry(above, above)->setIcon(style()->standardIcon(QStyle::SP_FileDialogToParent));
    for (const std::string& folder : names_)
        addEntry(folder, QString::fromStdString(folder))->setIcon(style()->standardIcon(QStyle::SP_DirIcon));
    setCurrentRow(0);
    showPath();
}

/// The end of the path, as much of it as the list has room for.
void FolderList::showPath() {
    constexpr int frame = 8;
    QListWidgetItem* here = item(0);
    if (here == nullptr) return;
    const int room = viewport()->width() - iconSize().width() - frame;
    here->setText(fontMetrics().elidedText(QString::fromStdString(path_), Qt::ElideLeft, room));
}

void FolderList::resizeEvent(QResizeEvent* event) {
    PathList::resizeEvent(event);
    showPath();
}

GeometryList::GeometryList(QWidget* parent) : PathList(parent) {
    connect(this, &QListWidget::itemSelectionChanged, this, [this] {
        const QList<QListWidgetItem*> entries = selectedItems();
        if (selected) selected(entries.isEmpty() ? std::string() : nameOfEntry(entries.front()));
    });
}

void GeometryList::show(const std::vector<std::string>& names, const std::string& selectedName) {
    const QSignalBlocker quiet(this);
    if (names != names_) {
        names_ = names;
        clear();
        for (const std::string& name : names_) addEntry(name, QString::fromStdString(name));
    }
    const auto found = std::find(names_.begin(), names_.end(), selectedName);
    if (found == names_.end()) {
        clearSelection();
        setCurrentItem(nullptr);
    } else {
        setCurrentRow(static_cast<int>(found - names_.begin()));
    }
}

} // namespace norvane
