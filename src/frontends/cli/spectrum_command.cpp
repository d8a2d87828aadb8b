#include "frontends/cli/spectrum_command.h"

#include "exchange/spectrum.h"
#include "frontends/cli/console.h"

namespace norvane {

int writeSpectrumOf(const SpectrumOptions& options) {
    Console console;
    connectConsole(console);
    SimState& sim = console.program.sim;
    ExitStatus status = loadFor(console, options.geometry);
    if (status == exitDone) status = standModel(console, options.state);
    if (status != exitDone) return status;
    return writeSpectrum(sim, console.program.ui, options.points) ? exitDone : exitFileFault;
}

} // namespace norvane
