#pragma once
// The command window.

#include "frontends/desktop/form_window.h"
#include "frontends/desktop/path_lists.h"

#include <QAction>
#include <QFileSystemWatcher>
#include <QPlainTextEdit>
#include <QTimer>

namespace norvane {

class CommandForm : public FormWindow {
public:
    CommandForm(Program& program, Act act);

    void layOut(double factor) override;
    void refresh() override;

    /// Shows the status alone: the one record here that a run changes.
    void refreshStatus();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void addLists();
    void addThreads();
    void addCompensated();
    void addCheck();
    void refreshLists();

    QPlainTextEdit* status_ = nullptr;
    std::string shownStatus_;
    FolderList* folders_ = nullptr;
    GeometryList* geometries_ = nullptr;
    QFileSystemWatcher watcher_;
    QAction* check_ = nullptr;
    QAction* threads_ = nullptr;
    QAction* compensated_ = nullptr;
    QTimer changed_; ///< runs while the folder is known to have changed
    double factor_ = 1;
};

} // namespace norvane
