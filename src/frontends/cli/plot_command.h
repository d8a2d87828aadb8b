#pragma once

#include <string>
#include <vector>

namespace norvane {

/// The options as typed; an empty text means that the option was not given.
struct PlotOptions {
    std::string geometry;
    std::string output;
    bool state = false; ///< recalls the saved state
    std::string frames; ///< "100,200", "last" or "all": steps of frames
    std::string quantity;
    std::string component;
    std::vector<std::string> slices; ///< "3=4": dimension 3 at slice 4
    std::string columns;             ///< dimension across
    std::string rows;                ///< dimension downward
    std::string scale;               ///< "290:400" or "auto"
    std::string zoom;                ///< "1,2", a stretch for each dimension
    std::string title;
    bool hasTitle = false;
    std::string size;             ///< "1200x900" pixels
    std::string style = "report"; ///< "report" or "classic"
    std::string panels;           ///< "T,p,u"
    std::string colors;           ///< the name of a colour table
    int contours = 0;             ///< how many contour lines, about; 0: none
    bool arrows = false;          ///< of the velocity
    bool streamlines = false;
    bool stretch = false;                  ///< gives up true proportions
    bool showWalls = false;                ///< with the temperature of walls
    std::vector<std::string> along;        ///< "C7:C30", lines of cells
    bool history = false;                  ///< the probes over time
    std::string probes;                    ///< the file of the probes
    std::vector<std::string> probeColumns; ///< "C7:T"
};

/// Draws a picture of a geometry without a window; the ending of its name gives the format. Gives the exit status. A
/// fault of an option is reported with the option's name and what it may be.
int plotGeometry(const PlotOptions& options);

} // namespace norvane
