#pragma once
// What a file of frames holds of a geometry: its axes and the fields of a frame. Values of cells lie as they do in the
// program, dimension 1 running fastest.

#include "core/quantity_names.h"
#include "core/sim_state.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

/// The name of the field whose vectors lie in the centres of the cells.
inline constexpr std::string_view vectorField = "velocity_centre";

struct FrameField {
    std::string name; ///< of the variable
    std::string longName;
    std::string standardName; ///< of the CF conventions; empty: there is none
    std::string unit;
    std::string cellMethods;
    std::string comment;
    NamedQuantity quantity; ///< whose values these are; of the vectors without a function
    std::size_t components = 1;
};

struct FrameLayout {
    std::vector<std::size_t> shape; ///< cells along each dimension, the last one first
    std::vector<std::string> axes;  ///< their names in the same order: "z", "y", "x"
    std::vector<std::size_t> chunk; ///< cells that are compressed together, in the same order
    bool isRectilinear = true;      ///< each size depends on the coordinate along its own dimension alone
    std::vector<FrameField> fields;

    std::size_t cells() const;
    /// Of all fields of a frame, as they are in memory.
    std::size_t frameBytes() const;
    /// What frames take at most in a file: what compression makes larger is kept as it is.
    std::uint64_t roomOfFrames(std::size_t count) const;
    /// The same for all that comes before the first frame, but for texts.
    std::uint64_t roomOfGrid() const;
    /// Whether other programs can draw the grid: up to three dimensions, and corners that a number of 32 bits counts.
    bool hasMesh() const;
    /// "T p rho u".
    std::string fieldNames() const;
};

/// "x", "y", "z", "d4" ... of a dimension from 1.
std::string axisName(int dim);

/// Of a loaded geometry. `names` are those of the fields, "T,p,u"; empty: the usual ones. Gives what is wrong with
/// them, with all names and the nearest one; empty: nothing. `isRectilinear` is that of a model that stands: see
/// isOnAxes.
std::string layoutOf(const SimState& sim, const std::string& names, FrameLayout& layout);

/// Whether each size of a cell of a model depends on the coordinate along its own dimension alone.
bool isOnAxes(const SimState& sim);

/// Where the upper edge of a cell along a dimension lies, m; the lower edge of the next one on the same axis.
inline float upperEdge(const SimState& sim, std::int64_t cell, int dim) {
    return static_cast<float>(double(sim.cellSize(cell, dim)) + double(sim.cellPos(cell, dim)));
}

/// The fields of one moment.
struct Frame {
    std::int32_t step = 0;
    double time = 0;                        ///< s
    std::vector<std::vector<float>> values; ///< as the fields of the layout; vectors component by component of a cell
};

/// Copies the fields as they stand. The room of `frame` is used again. Throws std::bad_alloc.
void takeFields(const SimState& sim, const FrameLayout& layout, Frame& frame);

} // namespace norvane
