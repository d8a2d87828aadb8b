#pragma once

#include <string>
#include <vector>

namespace norvane {

/// The options as typed; an empty text means that the option was not given.
struct ExportOptions {
    std::string geometry;
    bool state = false; ///< recalls the saved state
    std::string output; ///< of a sheet, "-" is standard output
    std::string csv;    ///< a table of cells; "-" is standard output
    std::string sheet;  ///< a quantity in the shape of the drawing
    std::string quantities;
    std::vector<std::string> slices; ///< "3=4": dimension 3 at slice 4
    std::string line;                ///< "C7:C30"
    std::string cells;               ///< "C7,D9"
    std::vector<std::string> regions;
};

/// Writes fields of a geometry for other programs. Gives the exit status; a fault of an option is reported with the
/// option's name and what it may be.
int exportGeometry(const ExportOptions& options);

} // namespace norvane
