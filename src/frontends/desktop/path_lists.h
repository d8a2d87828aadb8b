#pragma once
// The lists of folders and of geometries.

#include <QListWidget>
#include <functional>
#include <string>
#include <vector>

namespace norvane {

/// A list whose names are kept as the bytes that the file system has for them.
class PathList : public QListWidget {
public:
    explicit PathList(QWidget* parent);

    /// Called for a double click on an entry, or Enter.
    std::function<void()> entered;

    /// The name of an entry; empty for none.
    static std::string nameOfEntry(const QListWidgetItem* entry);

protected:
    QListWidgetItem* addEntry(const std::string& name, const QString& shown);
    void keyPressEvent(QKeyEvent* event) override;
};

/// The folder that is open, the one above it, and the folders in it.
class FolderList : public PathList {
public:
    explicit FolderList(QWidget* parent);

    /// Called when a person opens a folder.
    std::function<void(const std::string& path)> opened;

    void show(const std::string& path);

    std::string path() const { return path_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void open(const QListWidgetItem* entry);
    void showPath();

    std::string path_;
    std::vector<std::string> names_;
};

/// The geometries of a folder.
class GeometryList : public PathList {
public:
    explicit GeometryList(QWidget* parent);

    /// Called when a person selects a geometry.
    std::function<void(const std::string& name)> selected;

    void show(const std::vector<std::string>& names, const std::string& selectedName);

private:
    std::vector<std::string> names_;
};

} // namespace norvane
