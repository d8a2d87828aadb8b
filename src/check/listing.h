#pragma once
// What a build makes of a table, value by value: of a cell, of one key over all cells, of the run; and what differs
// between two tables.

#include "core/sim_state.h"
#include "geometry/build_trace.h"
#include "geometry/table_place.h"
#include "platform/run_events.h"

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace norvane {

/// A value of a model and where it comes from.
struct ListedValue {
    std::string name; ///< the key with its component: "WV 1"
    std::string value;
    std::string unit;
    std::string origin; ///< "default", "rows with defaults, B1", "its own text", "HH of D9, spread" ...
    std::string meaning;
};

/// A model with the origin of each value of some cells.
struct TracedModel {
    SimState sim;
    /// The last assignment of a key to a cell and component: [cell, key, component].
    std::map<std::tuple<std::int32_t, const Key*, int>, Assignment> origins;
};

/// Loads a geometry and builds its model, keeping the origins of the template, of scalars and of one cell (0: of no
/// cell more). Gives an error in words, empty: none. Writes no file.
std::string buildTraced(const std::string& path, std::int32_t cell, TracedModel& model);

/// All keys that count in cells, with the values of a cell [1..nCells].
std::vector<ListedValue> listCell(const TracedModel& model, std::int32_t cell);

/// All keys of the whole model.
std::vector<ListedValue> listSettings(const TracedModel& model);

/// The value of a key's field in a cell [0..nCells], for a component that it has; of a scalar whatever the cell.
double valueOf(const SimState& sim, const Key& key, std::int32_t cell, int component);

/// The components of a key's field on a grid, as valueOf takes them.
std::vector<int> componentsOf(const SimState& sim, const Key& key);

/// One field of all cells in the shape of the drawing: tab-separated, an empty line between layers.
std::string fieldTable(const SimState& sim, const Key& key, int component);

/// A value that differs between two models.
struct Difference {
    std::int32_t cell = 0; ///< 0: a setting of the whole model
    std::string name;
    std::string before;
    std::string after;
};

/// Differences in the order of settings, then cells. Both models need the same shape and species.
std::vector<Difference> differences(const SimState& before, const SimState& after);

} // namespace norvane
