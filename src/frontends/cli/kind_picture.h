#pragma once
// A picture of a drawing that shows what each cell is, in the shape of the table.

#include "core/sim_state.h"
#include "geometry/table_place.h"
#include "platform/files.h"

#include <string>
#include <vector>

namespace norvane {

/// Cells that are framed, and what the legend says of them.
struct PictureMarks {
    std::vector<TablePlace> places;
    std::string meaning;
};

/// Writes the picture of a model that stands; the ending of the name tells the format. Row numbers and column letters
/// are those of the table. Faults: those of files.
FileResult writeKindPicture(const SimState& sim, const PictureMarks& marks, const std::string& path);

/// Writes it for an option --picture. Gives false after a message.
bool drawnPicture(const SimState& sim, const PictureMarks& marks, const std::string& path);

/// Whether a name can be that of a picture of a geometry. Gives false after a message.
bool mayBePicture(const std::string& geometry, const std::string& path);

} // namespace norvane
