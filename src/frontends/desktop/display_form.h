#pragma once
// The display panel.

#include "frontends/desktop/control_views.h"
#include "frontends/desktop/form_window.h"

#include <QLabel>

namespace norvane {

class DisplayForm : public FormWindow {
public:
    DisplayForm(Program& program, Act act);

    void layOut(double factor) override;
    void refresh() override;

private:
    void addColumns();
    void addScale();
    QLabel* addLabel(const char* name, const char* caption, const char* key, const TwipRect& place);
    TextBoxView* addBox(const char* name, TextBox& box, int element, const TwipRect& place);
    SelectorView*
    addSelector(const char* name, Selector& selector, int element, const TwipRect& place, const char* longest);

    std::vector<TextBoxView*> boxes_;
    std::vector<SelectorView*> selectors_;
};

} // namespace norvane
