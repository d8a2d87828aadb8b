#pragma once
// Controls that show a record, and copy into it what a person types or picks.

#include "platform/controls.h"

#include <QComboBox>
#include <QLineEdit>
#include <functional>

namespace norvane {

/// A text box. It waits for OK, so typing raises nothing.
class TextBoxView : public QLineEdit {
public:
    TextBoxView(TextBox& box, QWidget* parent);

    void refresh();

    /// Pixels that an ordinary number takes; a longer one scrolls.
    QSize neededSize() const;

private:
    TextBox& box_;
};

/// A selector. A person picks from the list, with letters too: they look for the entry that begins so. A wheel counts
/// only where the selector has the focus, or one notch on the way across would change the plot of a run.
class SelectorView : public QComboBox {
public:
    SelectorView(Selector& selector, QWidget* parent);

    /// Called when a person has picked an entry, also the one that was picked already; the record shows it by then.
    std::function<void(Selector& selector)> picked;

    void refresh();

    /// Shows a text that is no entry, as a script may set it; the list then has no selection.
    void setOwnText(const std::string& text);

    /// Pixels that the box takes to show a text.
    QSize neededSize(const QString& text) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void pick(int index);
    void search(const QString& letters);

    Selector& selector_;
    std::vector<std::string> shownEntries_;
};

} // namespace norvane
