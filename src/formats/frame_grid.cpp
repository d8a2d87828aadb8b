#include "formats/frame_grid.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace norvane {

namespace {

constexpr int compression = 1;

/// Dimensions of variables that hold a value of each cell.
struct CellDimensions {
    const std::vector<int>& axes;
    const FrameLayout& layout;

    VariableLayout form() const { return {axes, layout.chunk, compression}; }
};

template <class Value>
int addOfCells(NetcdfFile& file,
               const CellDimensions& cells,
               const std::string& name,
               const char* unit,
               const std::string& meaning,
               const Value* values) {
    const int variable = file.addVariable<Value>(name, cells.form());
    file.setText(variable, "long_name", meaning);
    file.setText(variable, "units", unit);
    file.write(variable, std::vector<std::size_t>(cells.axes.size(), 0), cells.layout.shape, values);
    return variable;
}

/// The dimension along which gravity pulls; 0: none, or several.
int verticalOf(const SimState& sim) {
    int vertical = 0;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (sim.gravity[dim] == 0) continue;
        if (vertical != 0) return 0;
        vertical = dim;
    }
    return vertical;
}

/// The letters of the CF conventions: Z is the vertical, and the first other dimensions are X and Y.
void setAxis(NetcdfFile& file, int variable, const SimState& sim, int dim) {
    const int vertical = verticalOf(sim);
    if (vertical == 0) {
        if (dim <= 3) file.setText(variable, "axis", std::string(1, "XYZ"[dim - 1]));
        return;
    }
    if (dim == vertical) {
        file.setText(variable, "axis", "Z");
        file.setText(variable, "positive", sim.gravity[dim] > 0 ? "down" : "up");
        return;
    }
    const int place = dim - (dim > vertical ? 1 : 0);
    if (place <= 2) file.setText(variable, "axis", std::string(1, "XY"[place - 1]));
}

/// Along a dimension, of the cells of its first line.
struct AxisValues {
    std::vector<double> centres;
    std::vector<double> bounds; ///< lower and upper edge of each cell
    std::vector<float> edges;
};

AxisValues axisValues(const SimState& sim, int dim) {
    AxisValues axis;
    const auto count = std::int64_t{sim.cellCount[dim]};
    for (std::int64_t k = 0; k < count; ++k) {
        const std::int64_t cell = 1 + k * sim.cellStride[dim];
        const float lower = sim.cellPos(cell, dim);
        const float upper = upperEdge(sim, cell, dim);
        axis.centres.push_back((double(lower) + double(upper)) / 2);
        axis.bounds.insert(axis.bounds.end(), {double(lower), double(upper)});
        axis.edges.push_back(lower);
        if (k + 1 == count) axis.edges.push_back(upper);
    }
    return axis;
}

void addCoordinate(NetcdfFile& file, const SimState& sim, int dim, int dimension, int bounds) {
    const std::string name = axisName(dim);
    const AxisValues axis = axisValues(sim, dim);
    const std::size_t count = axis.centres.size();
    const int centre = file.addVariable<double>(name, {{dimension}, {}, 0});
    file.setText(centre, "long_name", "centre of the cell along dimension " + std::to_string(dim) + " of the table");
    file.setText(centre, "units", "m");
    setAxis(file, centre, sim, dim);
    file.setText(centre, "bounds", name + "_bounds");
    file.write(centre, {0}, {count}, axis.centres.data());
    const int both = file.addVariable<double>(name + "_bounds", {{dimension, bounds}, {}, 0});
    file.write(both, {0, 0}, {count, 2}, axis.bounds.data());
    const int edgeDimension = file.addDimension(name + "_edge", count + 1);
    const int edge = file.addVariable<float>("edge_" + name, {{edgeDimension}, {}, 0});
    file.setText(edge, "long_name", "edges between cells along " + name);
    file.setText(edge, "units", "m");
    file.write(edge, {0}, {count + 1}, axis.edges.data());
}

void addCentres(NetcdfFile& file, const SimState& sim, const CellDimensions& cells) {
    std::vector<double> centres(static_cast<std::size_t>(sim.nCells));
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        for (std::int64_t cell = 1; cell <= sim.nCells; ++cell)
            centres[static_cast<std::size_t>(cell - 1)] =
                (double(sim.cellPos(cell, dim)) + double(upperEdge(sim, cell, dim))) / 2;
        const int variable = addOfCells(file, cells, "centre_" + axisName(dim), "m",
                                        "centre of the cell along " + axisName(dim), centres.data());
        setAxis(file, variable, sim, dim);
    }
}

void addSizes(NetcdfFile& file, const SimState& sim, const CellDimensions& cells) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const std::string axis = axisName(dim);
        addOfCells(file, cells, "size_" + axis, "m", "size of the cell along " + axis, sim.cellSize.component(dim) + 1);
        addOfCells(file, cells, "lower_" + axis, "m", "lower edge of the cell along " + axis,
                   sim.cellPos.component(dim) + 1);
    }
    addOfCells(file, cells, "height", "m", "extent of the cell across the dimensions of the grid", &sim.cellHeight[1]);
    addOfCells(file, cells, "volume", "m3", "volume of the cell", &sim.cellVolume[1]);
}

void addWalls(NetcdfFile& file, const SimState& sim, const CellDimensions& cells) {
    const auto add = [&](const std::string& name, const std::string& meaning, const std::int16_t* codes) {
        addOfCells(file, cells, name, "1", meaning, codes);
    };
    add("wall_velocity", "code of the whole cell (WV 0;)", sim.wallVelocity.component(0) + 1);
    for (int dim = 1; dim <= sim.nDim; ++dim)
        add("wall_velocity_" + axisName(dim),
            "code of the upper face (WV): 0 open, positive closed, -2 imposed with a ramp, other negative imposed",
            sim.wallVelocity.component(dim) + 1);
    add("wall_pressure", "code (WP): not 0 masses held, negative pressure held", &sim.wallPressure[1]);
    add("wall_temperature", "code (WT): positive energy held, negative temperature held", &sim.wallTemperature[1]);
    add("wall_concentration", "code (WC): negative mass fractions held, 1 reacts", &sim.wallConcentration[1]);
}

/// Corner k of a cell of a mesh takes the upper edge along dimension d where bit d - 1 of these is set: around each
/// face in turn, as meshes order them.
constexpr std::array<int, 8> cornerBits = {0, 1, 3, 2, 4, 5, 7, 6};

/// Boxes with corners of their own: positions run along each line of cells by themselves, so that those of neighbours
/// need not meet.
void addBoxes(NetcdfFile& file, const SimState& sim) {
    constexpr std::int64_t blockCells = 1 << 16;
    const auto cells = static_cast<std::size_t>(sim.nCells);
    const std::size_t corners = std::size_t{1} << sim.nDim;
    const std::size_t points = cells * corners;
    const std::size_t chunk = std::min<std::size_t>(cells, 1 << 14);
    const std::array<int, 2> ofPoint{file.addDimension("corner", points), file.addDimension("space", 3)};
    const int position =
        file.addVariable<float>("corner_position", {{ofPoint[0], ofPoint[1]}, {chunk * corners, 3}, compression});
    file.setText(position, "long_name", "corners of the cells, those of a cell one after another");
    file.setText(position, "units", "m");
    const std::array<int, 2> ofCell{file.addDimension("box", cells), file.addDimension("box_corner", corners)};
    const int places =
        file.addVariable<std::int32_t>("box_corners", {{ofCell[0], ofCell[1]}, {chunk, corners}, compression});
    file.setText(places, "long_name", "places of the corners of each cell in corner_position");
    for (std::int64_t first = 1; first <= sim.nCells && file.ok(); first += blockCells) {
        const std::int64_t end = std::min(first + blockCells, std::int64_t{sim.nCells} + 1);
        const auto count = static_cast<std::size_t>(end - first);
        std::vector<float> block;
        for (std::int64_t cell = first; cell < end; ++cell)
            for (std::size_t k = 0; k < corners; ++k)
                for (int dim = 1; dim <= 3; ++dim)
                    block.push_back(dim > sim.nDim                     ? 0.0F
                                    : (cornerBits[k] >> (dim - 1) & 1) ? upperEdge(sim, cell, dim)
                                                                       : sim.cellPos(cell, dim));
        std::vector<std::int32_t> numbers(count * corners);
        const std::size_t before = static_cast<std::size_t>(first - 1);
        std::iota(numbers.begin(), numbers.end(), static_cast<std::int32_t>(before * corners));
        file.write(position, {before * corners, 0}, {count * corners, 3}, block.data());
        file.write(places, {before, 0}, {count, corners}, numbers.data());
    }
}

} // namespace

std::vector<int> addAxes(NetcdfFile& file, const SimState& sim, const FrameLayout& layout) {
    std::vector<int> axes;
    for (std::size_t k = 0; k < layout.shape.size(); ++k)
        axes.push_back(file.addDimension(layout.axes[k], layout.shape[k]));
    if (!layout.isRectilinear) return axes;
    const int bounds = file.addDimension("bound", 2);
    for (int dim = 1; dim <= sim.nDim; ++dim)
        addCoordinate(file, sim, dim, axes[static_cast<std::size_t>(sim.nDim - dim)], bounds);
    return axes;
}

void addGrid(NetcdfFile& file, const SimState& sim, const FrameLayout& layout, const std::vector<int>& axes) {
    const CellDimensions cells{axes, layout};
    std::vector<std::int32_t> numbers(static_cast<std::size_t>(sim.nCells));
    std::iota(numbers.begin(), numbers.end(), 1);
    addOfCells(file, cells, "cell", "1", "number of the cell, as the program tells it", numbers.data());
    addSizes(file, sim, cells);
    addWalls(file, sim, cells);
    if (layout.isRectilinear) return;
    addCentres(file, sim, cells);
    if (layout.hasMesh()) addBoxes(file, sim);
}

std::string centreNames(const FrameLayout& layout) {
    std::string names;
    for (const std::string& axis : layout.axes) names += (names.empty() ? "centre_" : " centre_") + axis;
    return names;
}

} // namespace norvane
