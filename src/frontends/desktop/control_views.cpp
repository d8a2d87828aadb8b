#include "frontends/desktop/control_views.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

namespace norvane {

TextBoxView::TextBoxView(TextBox& box, QWidget* parent) : QLineEdit(parent), box_(box) {
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) { box_.text = text.toStdString(); });
    refresh();
}

void TextBoxView::refresh() {
    const QString wanted = QString::fromStdString(box_.text);
    if (text() != wanted) setText(wanted); // else the cursor stays where it is
}

QSize TextBoxView::neededSize() const {
    constexpr int frame = 12;
    return {fontMetrics().horizontalAdvance(QStringLiteral("-123.456")) + frame, sizeHint().height()};
}

SelectorView::SelectorView(Selector& selector, QWidget* parent) : QComboBox(parent), selector_(selector) {
    setEditable(true); // only to show a text that is no entry; typing is for the list
    lineEdit()->setReadOnly(true);
    lineEdit()->installEventFilter(this);
    setInsertPolicy(NoInsert);
    setCompleter(nullptr);
    setMaxVisibleItems(15);
    // The box would pick the entry of a text that reads the same.
    lineEdit()->disconnect(SIGNAL(editingFinished()), this);
    lineEdit()->disconnect(SIGNAL(returnPressed()), this);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QComboBox::activated, this, [this](int index) { pick(index); });
    refresh();
}

void SelectorView::setOwnText(const std::string& text) {
    selector_.text = text;
    selector_.listIndex = -1;
    refresh();
}

void SelectorView::pick(int index) {
    selector_.select(index);
    if (picked) picked(selector_);
}

/// As in any closed list: the letters typed in quick succession are the beginning of an entry.
void SelectorView::search(const QString& letters) {
    view()->setCurrentIndex(model()->index(currentIndex(), 0));
    view()->keyboardSearch(letters);
    const int found = view()->currentIndex().row();
    if (found < 0 || found == currentIndex()) return;
    setCurrentIndex(found);
    pick(found);
}

void SelectorView::wheelEvent(QWheelEvent* event) {
    if (hasFocus() || lineEdit()->hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

/// The keys come here and not to the text, to which the box hands them on past every filter.
void SelectorView::keyPressEvent(QKeyEvent* event) {
    const bool isLetter = !event->text().isEmpty() && event->text().at(0).isPrint();
    const bool isCommand = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    if (isLetter && !isCommand)
        search(event->text());
    else
        QComboBox::keyPressEvent(event);
}

bool SelectorView::eventFilter(QObject* watched, QEvent* event) {
    // A click on the text opens the list, as it does on any selector that takes no typing. Not before the button is up:
    // the list would take its release for a choice.
    if (watched == lineEdit() && event->type() == QEvent::MouseButtonRelease) {
        showPopup();
        return true;
    }
    return QComboBox::eventFilter(watched, event);
}

void SelectorView::refresh() {
    if (shownEntries_ != selector_.entries) {
        shownEntries_ = selector_.entries;
        const QSignalBlocker quiet(this);
        clear();
        for (const std::string& entry : shownEntries_) addItem(QString::fromStdString(entry));
    }
    if (currentIndex() != selector_.listIndex) setCurrentIndex(selector_.listIndex);
    const QString wanted = QString::fromStdString(selector_.text);
    if (currentText() != wanted) setEditText(wanted);
    if (isHidden() == selector_.visible) setVisible(selector_.visible);
}

QSize SelectorView::neededSize(const QString& text) const {
    QStyleOptionComboBox option;
    initStyleOption(&option);
    constexpr int cursorRoom = 8;
    const QSize content(fontMetrics().horizontalAdvance(text) + cursorRoom, fontMetrics().height());
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, content, this);
}

} // namespace norvane
