#include "frontends/cli/export_command.h"

#include "frontends/cli/console.h"
#include "frontends/cli/export_table.h"
#include "frontends/cli/run_frames.h"

#include <cstdio>

namespace norvane {

int exportGeometry(const ExportOptions& options) {
    const bool isTable = asksForTable(options);
#ifndef NORVANE_NETCDF
    if (!isTable) {
        std::fprintf(stderr, "norvane export: %s. --csv FILE and --sheet QUANTITY write tables.\n", noNetcdf);
        return exitBadUse;
    }
#endif
    if (isTable && !mayExportTable(options)) return exitBadUse;
    if (!isTable && options.output == "-") {
        std::fprintf(stderr, "-o: a file of frames can't go to standard output; name a file\n");
        return exitBadUse;
    }
    Console console;
    connectConsole(console);
    ExitStatus status = loadFor(console, options.geometry);
    if (status == exitDone) status = standModel(console, options.state);
    if (status != exitDone) return status;
#ifdef NORVANE_NETCDF
    if (!isTable) return exportFrames(options, console.program.sim);
#endif
    return exportTable(options, console.program.sim);
}

} // namespace norvane
