// A geometry of any bytes that has cells: its build, a few steps with all outputs, a plot, and the way back from its
// state file.

#include "core/run_driver.h"
#include "display/field_plot.h"
#include "drawing/image_surface.h"
#include "exchange/spectrum.h"
#include "exchange/state_file.h"
#include "fuzz_folder.h"

using namespace norvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
    enterEmptyFolder();
    const MemoryLimit limit(std::size_t{1} << 25);
    FuzzProgram fuzz(30);
    fuzz.load(asText(bytes, length));
    if (fuzz.sim.nCells == 0 || stateBytes(fuzz.sim.nDim, fuzz.sim.nsMax, fuzz.sim.nCells) > 1e7) return 0;
    runSimulation(fuzz.sim, fuzz.ui, fuzz.program.operations);
    {
        const DrawnSurface drawn(fuzz.ui.NV_out.Picture1);
        drawField(fuzz.sim, fuzz.ui);
    }
    writeSpectrum(fuzz.sim, fuzz.ui, 1);
    const bool saved = saveState(fuzz.sim, fuzz.ui);
    require(!saved || recallState(fuzz.sim, fuzz.ui), "a state that was saved can be recalled");
    return 0;
}
