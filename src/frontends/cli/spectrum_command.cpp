#include "frontends/cli/spectrum_command.h"

#include "exchange/spectrum.h"
#include "frontends/cli/console.h"
#include "platform/files.h"

namespace norvane {

int writeSpectrumOf(const SpectrumOptions& options) {
    Console console;
    connectConsole(console);
    SimState& sim = console.program.sim;
    ExitStatus status = loadFor(console, options.geometry);
    if (status == exitDone && wouldOverwrite(options.geometry, joinPath(sim.inputDir, "NV_spectrum")))
        return exitBadUse;
    if (status == exitDone) status = standModel(console, options.state);
    if (status != exitDone) return status;
    return writeSpectrum(sim, console.program.ui, options.points) ? exitDone : exitFileFault;
}

} // namespace norvane
