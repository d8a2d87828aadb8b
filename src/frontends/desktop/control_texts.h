#pragma once

// What the windows say about their controls beside the captions: keys, names for screen readers, tool tips.

namespace norvane {

struct ControlText {
    const char* form;
    const char* control; ///< without its element where it is an array
    const char* key;     ///< the letter of the caption that is underlined, and works with Alt; empty: none
    const char* name;    ///< for screen readers
    const char* toolTip; ///< what it does, and what else that does
};

/// The texts of a control of the four windows.
const ControlText& textOf(const char* form, const char* control);

} // namespace norvane
