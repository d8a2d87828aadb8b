// The options of "norvane plot".

#include "frontends/cli/command_options.h"
#include "frontends/cli/plot_command.h"

#include <memory>

namespace norvane {

namespace {

constexpr const char* plotHelp = "Draw a picture of a geometry, as it starts or with --state as it was saved.";

void addCharts(CLI::App& plot, PlotOptions& options) {
    CLI::Option* along =
        plot.add_option("--along", options.along,
                        "a chart of values along a line of cells, such as C7:C30; may be repeated. --quantity takes "
                        "several here, such as T,p,u, a panel for each")
            ->type_name("CELL:CELL")
            ->check(notEmpty);
    CLI::Option* history =
        plot.add_flag("--history", options.history, "a chart of the probes of a run over time, from m_probes.csv");
    along->excludes(history);
    plot.add_option("--probes", options.probes, "read the probes from another file")
        ->type_name("FILE")
        ->needs(history)
        ->check(notEmpty);
    plot.add_option("--column", options.probeColumns, "a probe to draw, such as C7:T; may be repeated")
        ->type_name("NAME")
        ->needs(history)
        ->check(notEmpty);
}

} // namespace

Command addPlot(CLI::App& app) {
    const auto kept = std::make_shared<PlotOptions>();
    PlotOptions& options = *kept;
    CLI::App* plot = app.add_subcommand("plot", plotHelp);
    addGeometry(plot, options.geometry);
    plot->add_option("-o,--output", options.output, "the picture; .png, .svg, .pdf or .bmp")
        ->type_name("FILE")
        ->required();
    plot->add_flag("--state", options.state, "recall the saved state first");
    plot->add_option("--quantity", options.quantity, "what to show, by name or number: " + listedQuantities());
    plot->add_option("--component", options.component,
                     "total, x, y, z or the number of a dimension; of a species, its number in the table, from 0");
    plot->add_option("--slice", options.slices, "DIMENSION=SLICE, for each dimension that is not drawn; from 0")
        ->type_name("D=N");
    plot->add_option("--columns", options.columns, "the dimension that is drawn across")->type_name("D");
    plot->add_option("--rows", options.rows, "the dimension that is drawn downward")->type_name("D");
    plot->add_option("--scale", options.scale,
                     "the ends of the colour scale, in the unit of the quantity (deg C, m/s, Pa ...); auto fits them "
                     "to the plane")
        ->type_name("LOW:HIGH");
    plot->add_option("--zoom", options.zoom, "a stretch for each dimension, such as 1,2");
    plot->add_option("--title", options.title, "the title of the plot");
    plot->add_option("--size", options.size, "pixels, such as 1200x900")->type_name("WxH");
    addCharts(*plot, options);
    plot->footer(lookStatusHelp);
    return {plot, [kept, plot] {
                kept->hasTitle = plot->count("--title") > 0;
                return plotGeometry(*kept);
            }};
}

} // namespace norvane
