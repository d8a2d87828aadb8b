#pragma once
// What the four windows have in common.

#include "frontends/desktop/control_texts.h"
#include "frontends/desktop/twip_layout.h"
#include "shell/program.h"

#include <QMainWindow>
#include <QPushButton>
#include <functional>

namespace norvane {

/// Raises an event: runs a handler of the program, and then shows the records.
using Act = std::function<void(const std::function<void()>& handler)>;

/// A window of one of the program's forms. The form always stays: a close request goes to the program and is refused.
class FormWindow : public QMainWindow {
public:
    FormWindow(Program& program, Form& form, Act act, int widthTwips, int heightTwips);

    Form& form() { return form_; }

    const std::vector<PlacedControl>& controls() const { return controls_; }

    /// Puts the controls in place and gives the window its size.
    virtual void layOut(double factor);

    /// Shows the records of this window.
    virtual void refresh() {}

protected:
    /// Adds a button of the program's table under its own name.
    QPushButton* addButton(const char* control, const TwipRect& place);

    /// Adds a control. `needed`: its smallest size in pixels, for the factor of the window.
    void add(QWidget* control, const QString& name, const TwipRect& place, const QSize& needed);

    /// Gives a control its tool tip and its name for assistive programs, which begins with its caption: a person may
    /// speak what is on the screen.
    void describe(QWidget* control, const ControlText& text, const QString& caption = {}) const;

    /// A label that only assistive programs meet, for a control that no label of the form belongs to.
    void nameByLabel(QWidget* control);

    /// The button that Enter clicks, and the one that Escape clicks.
    void setDefaultButton(QPushButton* button);

    void setEscapeButton(QPushButton* button) { escape_ = button; }

    QSize designSize() const { return designSize_; }

    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    Program& program_;
    Act act_;

private:
    Form& form_;
    int widthTwips_;
    int heightTwips_;
    QSize designSize_;
    std::vector<PlacedControl> controls_;
    QPushButton* default_ = nullptr;
    QPushButton* escape_ = nullptr;
};

/// A caption with the mark of its key, and with whatever it holds itself shown unchanged.
QString captionWithKey(const QString& caption, const QString& key);

} // namespace norvane
