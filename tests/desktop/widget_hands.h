#pragma once
// A person's acts as a script tells them, on the controls of the desktop program: clicks and keys. What is printed is
// read from the controls, too.

#include "frontends/script/script_driver.h"

#include <QWidget>

namespace norvane {

ScriptHands handsOnWidgets();

/// The window of a form; null where there is none.
QWidget* findWindow(const std::string& form);

/// A control by its name in scripts, "NV_dsp.zzoom(0)"; null where there is none of this class.
template <class Widget>
Widget* findWidget(const std::string& name) {
    const std::size_t point = name.find('.');
    QWidget* window = point == std::string::npos ? nullptr : findWindow(name.substr(0, point));
    return window == nullptr ? nullptr : window->findChild<Widget*>(QString::fromStdString(name.substr(point + 1)));
}

/// Replaces the text of an edit as a person does.
void typeInto(QWidget* edit, const QString& text);

} // namespace norvane
