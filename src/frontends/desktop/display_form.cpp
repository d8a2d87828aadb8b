#include "frontends/desktop/display_form.h"

#include "shell/command_window.h"

namespace norvane {

namespace {

constexpr int noElement = -1;
constexpr const char* dimensionNames[DisplayWindow::columns] = {"X", "Y", "Z", "d4"};

int columnLeft(int column) { return 720 + 1200 * column; }

QString elementOf(const char* name, int element) {
    return element == noElement ? QString(name) : QStringLiteral("%1(%2)").arg(name).arg(element);
}

/// The caption beside or above a control: "Zoom X", "Minscale"; nothing beside the two selectors of the quantity.
QString captionOf(const QString& name, int element) {
    const QString row = name == "zzoom" ? "Zoom" : name == "ComboSlice" ? "Slice" : name;
    if (element != noElement) return row + ' ' + dimensionNames[element];
    return name == "mMinscale" ? "Minscale" : name == "mMaxScale" ? "MaxScale" : "";
}

} // namespace

DisplayForm::DisplayForm(Program& program, Act act)
    : FormWindow(program, program.ui.NV_dsp.form, std::move(act), 5790, 3135) {
    DisplayWindow& panel = program.ui.NV_dsp;
    // The order in which they are made is the order of the Tab key.
    addColumns();
    addSelector("Combo1", panel.Combo1, noElement, {120, 1680, 1935, 315}, "Concentration");
    addSelector("Dimen", panel.Dimen, noElement, {840, 2160, 1215, 315}, "Species 10");
    addScale();
    addButton("Command2", {4200, 1680, 1335, 375});
    addButton("Command3", {4200, 2040, 1335, 375});
    addButton("Command4", {120, 2640, 1335, 375});
    setDefaultButton(addButton("Command1", {4920, 2760, 855, 375}));
}

void DisplayForm::addColumns() {
    DisplayWindow& panel = program_.ui.NV_dsp;
    addLabel("Label7", dimensionNames[0], "", {1320, 0, 105, 195});
    addLabel("Label5", dimensionNames[1], "", {2400, 0, 105, 195});
    addLabel("Label8", dimensionNames[2], "", {3600, 0, 105, 195});
    addLabel("Label9", dimensionNames[3], "", {4800, 0, 180, 195});
    QLabel* zoom = addLabel("Label6", "Zoom", textOf("NV_dsp", "zzoom").key, {240, 360, 405, 195});
    QLabel* offset = addLabel("Label4", "Offset", textOf("NV_dsp", "Offset").key, {240, 840, 420, 195});
    QLabel* slice = addLabel("Label10", "Slice", textOf("NV_dsp", "ComboSlice").key, {240, 1200, 345, 195});
    for (int k = 0; k < DisplayWindow::columns; ++k) {
        TextBoxView* box = addBox("zzoom", panel.zzoom[k], k, {columnLeft(k), 240, 1095, 375});
        if (k == 0) zoom->setBuddy(box);
    }
    for (int k = 0; k < DisplayWindow::columns; ++k) {
        TextBoxView* box = addBox("Offset", panel.Offset[k], k, {columnLeft(k), 720, 1095, 375});
        if (k == 0) offset->setBuddy(box);
    }
    for (int k = 0; k < DisplayWindow::columns; ++k) {
        SelectorView* role =
            addSelector("ComboSlice", panel.ComboSlice[k], k, {columnLeft(k), 1200, 1095, 315}, "Slice 999");
        if (k == 0) slice->setBuddy(role);
    }
}

void DisplayForm::addScale() {
    DisplayWindow& panel = program_.ui.NV_dsp;
    QLabel* low = addLabel("Label1", "Minscale", textOf("NV_dsp", "mMinscale").key, {2280, 2160, 630, 195});
    low->setBuddy(addBox("mMinscale", panel.mMinscale, noElement, {3000, 2040, 1095, 375}));
    QLabel* high = addLabel("Label2", "MaxScale", textOf("NV_dsp", "mMaxScale").key, {2280, 2640, 705, 195});
    high->setBuddy(addBox("mMaxScale", panel.mMaxScale, noElement, {3000, 2520, 1095, 375}));
}

QLabel* DisplayForm::addLabel(const char* name, const char* caption, const char* key, const TwipRect& place) {
    auto* label = new QLabel(captionWithKey(caption, key), this);
    label->setAccessibleName(caption);
    add(label, name, place, label->sizeHint());
    return label;
}

TextBoxView* DisplayForm::addBox(const char* name, TextBox& box, int element, const TwipRect& place) {
    auto* view = new TextBoxView(box, this);
    add(view, elementOf(name, element), place, view->neededSize());
    describe(view, textOf("NV_dsp", name), captionOf(name, element));
    if (element > 0) nameByLabel(view); // the label of the form belongs to the first one of a row
    boxes_.push_back(view);
    return view;
}

SelectorView* DisplayForm::addSelector(
    const char* name, Selector& selector, int element, const TwipRect& place, const char* longest) {
    auto* view = new SelectorView(selector, this);
    add(view, elementOf(name, element), place, view->neededSize(longest));
    describe(view, textOf("NV_dsp", name), captionOf(name, element));
    if (element != 0) nameByLabel(view); // the label of the form belongs to the first one of a row
    view->picked = [this](Selector& picked) { act_([&] { raiseSelectorClick(program_, picked); }); };
    selectors_.push_back(view);
    return view;
}

void DisplayForm::layOut(double factor) {
    FormWindow::layOut(factor);
    setFixedSize(designSize());
}

void DisplayForm::refresh() {
    for (TextBoxView* box : boxes_) box->refresh();
    for (SelectorView* selector : selectors_) selector->refresh();
}

} // namespace norvane
