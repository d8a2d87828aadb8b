// A state file of any bytes: what a recall takes of it is saved and recalled without change.

#include "core/run_driver.h"
#include "exchange/state_file.h"
#include "fuzz_folder.h"

using namespace norvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    enterEmptyFolder();
    FuzzProgram fuzz(20);
    fuzz.load(smallTable);
    writeBytes("m_state", asText(bytes, length));
    if (!recallState(fuzz.sim, fuzz.ui)) return 0;
    std::string saved;
    for (int way = 1; way <= 3; ++way) { // the first rounds to the digits of the file, which the second derives from
        require(saveState(fuzz.sim, fuzz.ui), "a recalled state can be saved");
        require(way < 3 || bytesOf("m_state") == saved, "a state goes through its file unchanged");
        saved = bytesOf("m_state");
        require(recallState(fuzz.sim, fuzz.ui), "a saved state can be recalled");
    }
    continueRun(fuzz.sim, fuzz.ui, fuzz.program.operations);
    return 0;
}
