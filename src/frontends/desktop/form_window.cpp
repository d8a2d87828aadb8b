#include "frontends/desktop/form_window.h"

#include "shell/command_window.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <string_view>

namespace norvane {

namespace {

/// Beside a caption, for the frame of its button.
constexpr int buttonRoomX = 12;
constexpr int buttonRoomY = 6;

/// The buttons' places overlap by one twip pixel, the line that their frames once shared.
constexpr int sharedEdge = 15;

const Button* findButton(const Form& form, const char* control) {
    for (const Button& button : buttons())
        if (form.name == button.form && std::string_view(button.control) == control) return &button;
    return nullptr;
}

bool isEnter(const QKeyEvent& event) { return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter; }

} // namespace

QString captionWithKey(const QString& caption, const QString& key) {
    QString text = caption;
    text.replace('&', QStringLiteral("&&"));
    const auto place = key.isEmpty() ? -1 : text.indexOf(key);
    if (place >= 0) text.insert(place, '&');
    return text;
}

FormWindow::FormWindow(Program& program, Form& form, Act act, int widthTwips, int heightTwips)
    : program_(program), act_(std::move(act)), form_(form), widthTwips_(widthTwips), heightTwips_(heightTwips) {
    setObjectName(QString::fromStdString(form.name));
    setWindowTitle(QString::fromStdString(form.caption));
    setAccessibleName(windowTitle());
    setAttribute(Qt::WA_AlwaysShowToolTips); // a person works with several windows, and one of them is active
}

void FormWindow::layOut(double factor) {
    designSize_ = {pixelsOf(widthTwips_, factor), pixelsOf(heightTwips_, factor)};
    for (const PlacedControl& each : controls_) each.control->setGeometry(pixelRect(each.place, factor));
    resize(designSize_);
}

QPushButton* FormWindow::addButton(const char* control, const TwipRect& place) {
    const Button* command = findButton(form_, control);
    const ControlText& text = textOf(form_.name.c_str(), control);
    auto* button = new QPushButton(captionWithKey(command->caption, text.key), this);
    const QSize caption = button->fontMetrics().size(Qt::TextShowMnemonic, button->text());
    add(button, control, {place.left, place.top, place.width - sharedEdge, place.height - sharedEdge},
        caption + QSize(buttonRoomX, buttonRoomY));
    describe(button, text, command->caption);
    button->setAutoDefault(true); // Enter clicks the button that has the focus
    connect(button, &QPushButton::clicked, this, [this, command] { act_([&] { click(program_, *command); }); });
    return button;
}

void FormWindow::add(QWidget* control, const QString& name, const TwipRect& place, const QSize& needed) {
    control->setObjectName(name);
    controls_.push_back({control, place, needed});
}

void FormWindow::describe(QWidget* control, const ControlText& text, const QString& caption) const {
    const QString name = text.name;
    const bool saysAll = caption.isEmpty() || name.startsWith(caption);
    control->setAccessibleName(saysAll ? name : caption + ": " + name);
    control->setAccessibleDescription(text.toolTip);
    control->setToolTip(text.toolTip);
}

void FormWindow::nameByLabel(QWidget* control) {
    auto* label = new QLabel(control->accessibleName(), this);
    label->setObjectName("name of " + control->objectName());
    label->setBuddy(control);
    label->hide();
}

void FormWindow::setDefaultButton(QPushButton* button) {
    default_ = button;
    button->setDefault(true);
}

void FormWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    act_([this] { requestClose(program_, form_); });
}

void FormWindow::keyPressEvent(QKeyEvent* event) {
    if (isEnter(*event) && default_ != nullptr)
        default_->click();
    else if (event->key() == Qt::Key_Escape && escape_ != nullptr)
        escape_->click();
    else
        QMainWindow::keyPressEvent(event);
}

} // namespace norvane
