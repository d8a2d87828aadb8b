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

void addReport(CLI::App& plot, PlotOptions& options) {
    plot.add_option("--style", options.style,
                    "report: on white, in metres, with a colour bar; classic: as the plot window draws it")
        ->check(CLI::IsMember({"report", "classic"}));
    plot.add_option("--panels", options.panels, "several quantities in one figure, such as T,p,u")
        ->type_name("LIST")
        ->excludes("--quantity")
        ->check(notEmpty);
    plot.add_option("--contours", options.contours, "about so many contour lines, at round values")
        ->type_name("N")
        ->check(CLI::Range(2, 100));
    plot.add_flag("--arrows", options.arrows, "arrows of the velocity over the colours");
    plot.add_flag("--streamlines", options.streamlines, "streamlines of the velocity in the plane over the colours");
    plot.add_option("--colors", options.colors, "viridis, coolwarm or grey");
    plot.add_flag("--stretch", options.stretch, "fill the picture instead of keeping true proportions");
    plot.add_flag("--show-walls", options.showWalls, "colour walls by their temperature instead of grey");
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
    CLI::Option* state = plot->add_flag("--state", options.state, "recall the saved state first");
    plot->add_option("--frame", options.frames,
                     "draw the frame of a step in m_frames.nc; of charts several, such as 0,100,last, or all")
        ->type_name("STEPS")
        ->excludes(state)
        ->check(notEmpty);
    plot->add_option("--quantity", options.quantity, "what to show, by name or number: " + listedQuantities());
    plot->add_option("--component", options.component,
                     "total, x, y, z or the number of a dimension; of a species, its number in the table, from 0");
    plot->add_option("--slice", options.slices, "DIMENSION=SLICE, for each dimension that is not drawn; from 0")
        ->type_name("D=N");
    plot->add_option("--columns", options.columns, "the dimension that is drawn across")->type_name("D");
    plot->add_option("--rows", options.rows, "the dimension that is drawn downward")->type_name("D");
    plot->add_option("--scale", options.scale,
                     "the ends of the colour scale, in the unit of the quantity (deg C, m/s, Pa ...); auto fits them "
                     "to the gas of the plane, symmetric puts 0 in the middle; log, or log,1:1000")
        ->type_name("LOW:HIGH");
    plot->add_option("--zoom", options.zoom, "a stretch for each dimension, such as 1,2");
    plot->add_option("--title", options.title, "the title of the plot");
    plot->add_option("--size", options.size, "pixels, such as 1200x900")->type_name("WxH");
    addReport(*plot, options);
    addCharts(*plot, options);
    plot->footer(lookStatusHelp);
    return {plot, [kept, plot] {
                kept->hasTitle = plot->count("--title") > 0;
                return plotGeometry(*kept);
            }};
}

} // namespace norvane
