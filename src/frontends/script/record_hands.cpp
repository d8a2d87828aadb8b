#include "frontends/script/record_hands.h"

#include "platform/files.h"
#include "shell/command_window.h"

namespace norvane {

namespace {

Form* findForm(Interface& ui, const std::string& name) {
    Form* forms[] = {&ui.NV_in.form, &ui.NV_out.form, &ui.NV_dsp.form, &ui.NV_einde.form};
    for (Form* form : forms)
        if (form->name == name) return form;
    return nullptr;
}

template <class Control>
struct NamedControl {
    std::string name;
    Control* control;
};

std::vector<NamedControl<TextBox>> textBoxes(Interface& ui) {
    std::vector<NamedControl<TextBox>> boxes{{"NV_in.Text1", &ui.NV_in.Text1},
                                             {"NV_dsp.mMinscale", &ui.NV_dsp.mMinscale},
                                             {"NV_dsp.mMaxScale", &ui.NV_dsp.mMaxScale}};
    for (int column = 0; column < DisplayWindow::columns; ++column) {
        const std::string element = "(" + std::to_string(column) + ")";
        boxes.push_back({"NV_dsp.zzoom" + element, &ui.NV_dsp.zzoom[column]});
        boxes.push_back({"NV_dsp.Offset" + element, &ui.NV_dsp.Offset[column]});
    }
    return boxes;
}

std::vector<NamedControl<Selector>> selectors(Interface& ui) {
    std::vector<NamedControl<Selector>> all{{"NV_dsp.Combo1", &ui.NV_dsp.Combo1}, {"NV_dsp.Dimen", &ui.NV_dsp.Dimen}};
    for (int column = 0; column < DisplayWindow::columns; ++column)
        all.push_back({"NV_dsp.ComboSlice(" + std::to_string(column) + ")", &ui.NV_dsp.ComboSlice[column]});
    return all;
}

template <class Control>
Control* findControl(const std::vector<NamedControl<Control>>& all, const std::string& name) {
    for (const NamedControl<Control>& candidate : all)
        if (candidate.name == name) return candidate.control;
    return nullptr;
}

bool clickButton(Program& program, const std::string& name) {
    for (const Button& button : buttons()) {
        if (name != std::string(button.form) + "." + button.control) continue;
        click(program, button);
        return true;
    }
    return false;
}

bool closeForm(Program& program, const std::string& name) {
    const Form* form = findForm(program.ui, name);
    if (form != nullptr) requestClose(program, *form);
    return form != nullptr;
}

bool resizeForm(Program& program, const std::string& name, int width, int height) {
    Form* form = findForm(program.ui, name);
    if (form == nullptr) return false;
    form->width = static_cast<float>(width);
    form->height = static_cast<float>(height);
    raiseResize(program, *form);
    return true;
}

bool setControl(Interface& ui, const std::string& name, const std::string& text) {
    if (TextBox* box = findControl(textBoxes(ui), name)) {
        box->text = text;
    } else if (Selector* selector = findControl(selectors(ui), name)) {
        selector->text = text;
        selector->listIndex = -1;
    } else {
        return false;
    }
    return true;
}

void choose(Program& program, const std::string& name, int index) {
    Selector* selector = findControl(selectors(program.ui), name);
    selector->select(index);
    raiseSelectorClick(program, *selector);
}

std::optional<std::string> lookAt(Interface& ui, const std::string& name) {
    if (const Form* form = findForm(ui, name)) return formLook(form->visible, form->caption);
    if (const TextBox* box = findControl(textBoxes(ui), name)) return escaped(box->text);
    if (const Selector* selector = findControl(selectors(ui), name))
        return selectorLook(selector->visible, selector->listIndex, selector->entries);
    if (name == "NV_in.Dir1") return escaped(ui.NV_in.Dir1.path);
    if (name == "NV_in.File1")
        return fileListLook(ui.NV_in.File1.selected, listFiles(ui.NV_in.File1.path, FileList::ending));
    return {};
}

} // namespace

ScriptHands handsOnRecords(Program& program) {
    ScriptHands hands;
    hands.changeDirectory = [&program](const std::string& path) { setDirectory(program, path); };
    hands.selectFile = [&program](const std::string& name) { program.ui.NV_in.File1.selected = name; };
    hands.click = [&program](const std::string& button) { return clickButton(program, button); };
    hands.close = [&program](const std::string& form) { return closeForm(program, form); };
    hands.resize = [&program](const std::string& form, int width, int height) {
        return resizeForm(program, form, width, height);
    };
    hands.set = [&program](const std::string& control, const std::string& text) {
        return setControl(program.ui, control, text);
    };
    hands.entryCount = [&program](const std::string& name) {
        const Selector* selector = findControl(selectors(program.ui), name);
        return selector == nullptr ? std::nullopt : std::optional<int>(selector->listCount());
    };
    hands.choose = [&program](const std::string& selector, int index) { choose(program, selector, index); };
    hands.look = [&program](const std::string& name) { return lookAt(program.ui, name); };
    return hands;
}

} // namespace norvane
