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
    const std::string output = options.output.empty() ? joinPath(sim.inputDir, "NV_spectrum") : options.output;
    if (status == exitDone && wouldOverwrite(options.geometry, output)) return exitBadUse;
    if (status == exitDone) status = standModel(console, options.state);
    if (status != exitDone) return status;
    return writeSpectrum(sim, console.program.ui, options.points, output) ? exitDone : exitFileFault;
}

} // namespace norvane
