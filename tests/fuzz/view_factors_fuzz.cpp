// A file of view factors of any bytes: all or nothing of it is taken, and a run with it reads within its tables.

#include "core/run_driver.h"
#include "exchange/view_factors.h"
#include "fuzz_folder.h"

using namespace norvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    enterEmptyFolder();
    FuzzProgram fuzz(10);
    fuzz.load(smallTable);
    writeBytes("m_rad", asText(bytes, length));
    importViewFactors(fuzz.sim, fuzz.ui);
    require(fuzz.sim.radActive || fuzz.sim.radPairCount == 0, "a refused file leaves no pairs");
    for (std::int32_t pair = 1; pair <= fuzz.sim.radPairCount; ++pair)
        require(fuzz.sim.radPair[0][pair] >= 1 && fuzz.sim.radPair[0][pair] <= fuzz.sim.nCells
                    && std::abs(fuzz.sim.radPair[1][pair]) <= fuzz.sim.nCells,
                "the cells of a pair are cells of the grid");
    runSimulation(fuzz.sim, fuzz.ui, fuzz.program.operations);
    return 0;
}
