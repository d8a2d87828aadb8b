// The options of "norvane export".

#include "frontends/cli/command_options.h"
#include "frontends/cli/export_command.h"

#include <memory>

namespace norvane {

namespace {

constexpr const char* exportHelp =
    "Write the fields of a geometry for other programs, as it starts or with --state as it was saved: into "
    "m_frames.nc\n"
    "(netCDF, with m_frames.xdmf beside it for programs that draw meshes) or the file of -o, or as a table.\n\n"
    "--csv writes a line for each cell: its number, its address in the table, the coordinates of its centre in m,\n"
    "and the quantities with 9 digits, from which a single comes back to the bit. Velocities hold on the upper face\n"
    "of the cell in their dimension, as the headings say. --sheet writes one quantity in the shape of the drawing,\n"
    "tab-separated, so that the value of cell C7 stands in C7.\n\n"
    "Quantities: T (K), p, rho, u v w or u1 u2 ..., speed, c0 c1 ..., mass, volume, and the names of the catalogue,\n"
    "such as Temperature (deg C), \"Std Velocity 1\" or dx1.";

void addTableOptions(CLI::App* app, ExportOptions& options) {
    CLI::Option* csv = app->add_option("--csv", options.csv, "a table with a line for each cell; - is standard output")
                           ->type_name("FILE")
                           ->check(notEmpty);
    app->add_option("--quantity", options.quantities, "its columns, such as T,p,u; without: T, p, rho and velocities")
        ->type_name("LIST")
        ->needs(csv)
        ->check(notEmpty);
    CLI::Option* slice =
        app->add_option("--slice", options.slices, "only the cells of a slice, from 0; once for each dimension")
            ->type_name("D=N")
            ->needs(csv);
    CLI::Option* line = app->add_option("--line", options.line, "only the cells of a row or column, such as C7:C30")
                            ->type_name("RANGE")
                            ->needs(csv)
                            ->excludes(slice)
                            ->check(notEmpty);
    app->add_option("--cells", options.cells, "only these cells, ranges and labels, such as C7,D3:K9")
        ->type_name("LIST")
        ->needs(csv)
        ->excludes(slice)
        ->excludes(line)
        ->check(notEmpty);
    app->add_option("--region", options.regions, "a label for a range of cells, such as radiator=B2:B18")
        ->type_name("NAME=RANGE");
    app->add_option("--sheet", options.sheet, "a quantity in the shape of the drawing")
        ->type_name("QUANTITY")
        ->excludes(csv)
        ->check(notEmpty);
}

} // namespace

Command addExport(CLI::App& app) {
    const auto kept = std::make_shared<ExportOptions>();
    ExportOptions& options = *kept;
    CLI::App* command = app.add_subcommand("export", exportHelp);
    addGeometry(command, options.geometry);
    command->add_flag("--state", options.state, "recall the saved state first");
    command->add_option("-o,--output", options.output, "the file of frames or of --sheet, where - is standard output")
        ->type_name("FILE")
        ->check(notEmpty);
    addTableOptions(command, options);
    command->footer(lookStatusHelp);
    return {command, [kept] { return exportGeometry(*kept); }};
}

} // namespace norvane
