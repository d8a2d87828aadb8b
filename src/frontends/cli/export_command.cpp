#include "frontends/cli/export_command.h"

#include "frontends/cli/console.h"
#include "frontends/cli/export_table.h"

#include <cstdio>

namespace norvane {

int exportGeometry(const ExportOptions& options) {
    if (!asksForTable(options)) {
        std::fprintf(stderr, "norvane export: name a table to write: --csv FILE or --sheet QUANTITY\n");
        return exitBadUse;
    }
    if (!mayExportTable(options)) return exitBadUse;
    Console console;
    connectConsole(console);
    ExitStatus status = loadFor(console, options.geometry);
    if (status == exitDone) status = standModel(console, options.state);
    if (status != exitDone) return status;
    return exportTable(options, console.program.sim);
}

} // namespace norvane
