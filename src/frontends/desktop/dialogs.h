#pragma once
// The message box and the input box. Both hold up the whole program until they are answered.

#include <optional>
#include <string>

class QWidget;

namespace norvane {

/// Shows a text that can be selected and copied, with an OK button.
void showMessageBox(QWidget* parent, const std::string& text);

/// Asks for a text; no value: cancelled.
std::optional<std::string> askInInputBox(QWidget* parent, const std::string& prompt, const std::string& defaultText);

} // namespace norvane
