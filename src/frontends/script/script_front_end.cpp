#include "frontends/script/script_front_end.h"

#include "drawing/image_surface.h"
#include "frontends/script/record_hands.h"
#include "frontends/script/surface_trace.h"
#include "platform/files.h"
#include "platform/terminal_text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <iterator>

namespace norvane {

namespace {

void connectInterface(Interface& ui, ScriptDriver& driver) {
    ui.showMessage = [](const Report& report) { printLine("message: " + escaped(report.text)); };
    ui.askText = [&driver](const std::string& prompt, const std::string& defaultText) {
        return driver.takeAnswer(prompt, defaultText);
    };
    ui.yieldToInterface = [&driver] {
        if (driver.countYield()) driver.runDue();
    };
    ui.endProgram = [] {
        printLine("ended");
        std::exit(allIsPrinted() ? 0 : 2);
    };
    ui.beep = [] { printLine("beep"); };
    ui.formShown = [](Form& form, bool wasVisible) {
        if (!wasVisible) printLine("shown: " + form.name);
    };
    ui.formHidden = [](Form& form) { printLine("hidden: " + form.name); };
}

/// Gives false where the script can't be read.
bool readScript(const std::string& path, std::string& bytes) {
    if (path == "-") {
        bytes.assign(std::istreambuf_iterator<char>(std::cin), {});
        return true;
    }
    constexpr ItemForm lines{"\n", std::size_t{1} << 26};
    bool tooLong = false;
    FileResult read = readItems(path, lines, bytes, tooLong);
    if (tooLong) read = {EFBIG, "a line of it is longer than 64 MB"};
    if (!read)
        std::fprintf(stderr, "script:0: can't read \"%s\": %s\n", printableName(path).c_str(), read.reason.c_str());
    return static_cast<bool>(read);
}

} // namespace

int runScript(const std::string& path, bool trace, bool putsAnywhere) {
    std::string bytes;
    if (!readScript(path, bytes)) return 2;
    Program program;
    connectProgram(program);
    ScriptDriver driver(program, handsOnRecords(program), putsAnywhere);
    connectInterface(program.ui, driver);
    drawOnImage(program.ui.NV_out.Picture1); // no screen, but snapshots are real pictures
    if (trace) traceSurface(program.ui.NV_out.Picture1, printLine);
    const std::string folder = path == "-" ? absolutePath(".") : folderOf(path);
    startProgram(program, {folder, "norvane", {}});
    driver.run(bytes);
    return allIsPrinted() ? 0 : 2;
}

} // namespace norvane
