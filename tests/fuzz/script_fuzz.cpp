// A script of any bytes, with a small geometry at hand: commands in any order, also inside the yields of runs.

#include "frontends/script/record_hands.h"
#include "frontends/script/script_driver.h"
#include "fuzz_folder.h"

using namespace norvane;

namespace {

/// Leaves a script where the process would end.
struct Ended {};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    enterEmptyFolder();
    const MemoryLimit limit(std::size_t{1} << 25);
    writeBytes("m_rad", "1 1 2\n1 2 0.1 0.2\n3 0 0.1 1\n");
    FuzzProgram fuzz;
    writeBytes("m.gmt", smallTable);
    ScriptDriver driver(fuzz.program, handsOnRecords(fuzz.program), false, [](int) { throw Ended(); });
    int yields = 400; // of all runs together
    fuzz.ui.yieldToInterface = [&] {
        if (--yields < 0) throw Ended();
        if (driver.countYield()) driver.runDue();
    };
    fuzz.ui.askText = [&](const std::string& prompt, const std::string& defaultText) {
        const std::optional<std::string> answer = driver.takeAnswer(prompt, defaultText);
        return answer && answer->size() > 3 ? defaultText : answer; // no spectrum of a million points
    };
    fuzz.ui.endProgram = [] { throw Ended(); };
    try {
        driver.run(asText(bytes, length));
    } catch (const Ended&) {}
    return 0;
}
