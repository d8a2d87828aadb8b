#include "geometry/table_text.h"

#include "platform/digest.h"

namespace norvane {

std::string tableText(const SimState& sim) {
    std::string text;
    for (std::int64_t row = 1; row <= sim.grid.rowCount(); ++row) {
        text += sim.grid.row(row);
        text += '\n';
    }
    return text;
}

std::string tableFingerprint(const SimState& sim) { return sha256(tableText(sim)); }

} // namespace norvane
