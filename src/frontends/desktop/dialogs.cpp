#include "frontends/desktop/dialogs.h"

#include <QCoreApplication>
#include <QInputDialog>
#include <QMessageBox>

namespace norvane {

namespace {

constexpr const char* title = "Norvane";

} // namespace

void showMessageBox(QWidget* parent, const std::string& text) {
    QMessageBox box(QMessageBox::NoIcon, title, QString::fromStdString(text), QMessageBox::Ok, parent);
    box.setObjectName("message");
    box.setTextFormat(Qt::PlainText); // a file name may look like markup
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setDefaultButton(QMessageBox::Ok);
    box.setEscapeButton(QMessageBox::Ok);
    box.setWindowModality(Qt::ApplicationModal);
    box.exec();
}

std::optional<std::string> askInInputBox(QWidget* parent, const std::string& prompt, const std::string& defaultText) {
    QInputDialog box(parent);
    box.setObjectName("question");
    box.setWindowTitle(title);
    box.setLabelText(QString::fromStdString(prompt));
    box.setTextValue(QString::fromStdString(defaultText));
    box.setWindowModality(Qt::ApplicationModal);
    const bool accepted = box.exec() == QDialog::Accepted;
    // What follows may take long: without this the box would stay on the screen meanwhile.
    box.hide();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    return accepted ? std::optional(box.textValue().toStdString()) : std::nullopt;
}

} // namespace norvane
