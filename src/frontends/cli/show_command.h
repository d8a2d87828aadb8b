#pragma once

#include "frontends/cli/exit_status.h"

#include <string>

namespace norvane {

struct ShowOptions {
    std::string geometry;
    std::string address; ///< of a cell; empty: the settings of the run
    std::string key;     ///< one field of all cells; empty: none
    int component = -1;  ///< of it; -1: the first
    std::string picture; ///< of what each cell is; empty: none
};

/// Prints what the build makes of a table: of a cell, of a key, or the settings.
ExitStatus showGeometry(const ShowOptions& options);

/// Prints what differs between two geometries, by cell and value, and draws the cells into a picture where one is
/// named. Gives exitEndedByModel (1) where anything differs.
ExitStatus diffGeometries(const std::string& before, const std::string& after, const std::string& picture);

} // namespace norvane
