#include "formats/frame_layout.h"

#include "core/addressing.h"

#include <algorithm>
#include <limits>

namespace norvane {

namespace {

constexpr std::size_t chunkCells = std::size_t{1} << 17; // 512 KB of floats stay in the cache while they are compressed
constexpr std::size_t spaceDimensions = 3;               // of vectors and meshes, as other programs have them

std::string pairText(const std::vector<std::string>& axes, const std::string& without) {
    std::string text;
    for (const std::string& axis : axes)
        if (axis != without) text += axis + ": ";
    return text;
}

/// A value of a cell is the mean of it; one on its upper face a value along that dimension and a mean across it.
std::string cellMethodsOf(const FrameLayout& layout, int faceDimension) {
    if (faceDimension == 0) return "time: point " + pairText(layout.axes, "") + "mean";
    const std::string axis = axisName(faceDimension);
    const std::string others = pairText(layout.axes, axis);
    return "time: point " + axis + ": point" + (others.empty() ? "" : " " + others + "mean");
}

/// The CF conventions name the quantities of a gas after the air.
std::string standardNameOf(const NamedQuantity& quantity) {
    if (!quantity.isShort) return {};
    if (quantity.name == "T") return "air_temperature";
    if (quantity.name == "p") return "air_pressure";
    return quantity.name == "rho" ? "air_density" : "";
}

/// A name of a variable that programs of any kind take: "Std Velocity 1" is Std_Velocity_1.
std::string variableName(std::string name) {
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

std::string commentOf(const NamedQuantity& quantity) {
    if (quantity.location != Location::upperFace) return {};
    if (quantity.dimension == 0) return "made of values on the upper faces of the cell";
    const std::string axis = axisName(quantity.dimension);
    return "on the upper face of the cell along " + axis + ", the one towards larger " + axis;
}

FrameField fieldOf(const FrameLayout& layout, const NamedQuantity& quantity) {
    FrameField field;
    field.name = variableName(quantity.name);
    field.longName = quantity.meaning;
    field.standardName = standardNameOf(quantity);
    field.unit = quantity.unit.empty() ? "1" : quantity.unit;
    field.cellMethods = cellMethodsOf(layout, quantity.dimension);
    field.comment = commentOf(quantity);
    field.quantity = quantity;
    return field;
}

FrameField vectorsOf(const FrameLayout& layout) {
    FrameField field;
    field.name = vectorField;
    field.longName = "velocity in the centre of the cell";
    field.unit = "m/s";
    field.cellMethods = cellMethodsOf(layout, 0);
    field.comment = "for arrows: along each dimension the mean of both faces of the cell, where a closed face and the "
                    "lower end of the grid count as 0; components along x, y, z ...";
    field.components = std::max(spaceDimensions, layout.shape.size());
    return field;
}

std::string addNamed(const SimState& sim, const std::string& name, FrameLayout& layout) {
    const auto isThere = [&](const FrameField& field) {
        return std::any_of(layout.fields.begin(), layout.fields.end(),
                           [&](const FrameField& other) { return other.name == field.name; });
    };
    FrameField field;
    if (name == vectorField) {
        field = vectorsOf(layout);
    } else {
        std::vector<NamedQuantity> found;
        std::string fault = findQuantity(sim, name, found);
        if (!fault.empty()) return fault + " And " + std::string(vectorField) + ", vectors for arrows.";
        if (found[0].isOfGrid) return "\"" + name + "\" does not change in a run; each file holds the grid anyway";
        field = fieldOf(layout, found[0]);
    }
    if (!isThere(field)) layout.fields.push_back(std::move(field));
    return {};
}

std::string addFields(const SimState& sim, const std::string& names, FrameLayout& layout) {
    if (names.empty()) {
        for (const NamedQuantity& quantity : usualQuantities(sim)) layout.fields.push_back(fieldOf(layout, quantity));
        layout.fields.push_back(vectorsOf(layout));
        return {};
    }
    for (std::size_t begin = 0; begin <= names.size();) {
        const std::size_t end = std::min(names.find(',', begin), names.size());
        std::string fault = addNamed(sim, names.substr(begin, end - begin), layout);
        if (!fault.empty()) return fault;
        begin = end + 1;
    }
    return {};
}

/// Whole rows, planes ... as far as they fit, in parts of the same size.
std::vector<std::size_t> chunkOf(const std::vector<std::size_t>& shape) {
    std::vector<std::size_t> chunk(shape.size());
    std::size_t room = chunkCells;
    for (std::size_t k = shape.size(); k-- > 0;) {
        const std::size_t most = std::max<std::size_t>(std::min(shape[k], room), 1);
        const std::size_t parts = (shape[k] + most - 1) / most;
        chunk[k] = (shape[k] + parts - 1) / parts;
        room /= chunk[k];
    }
    return chunk;
}

/// On the upper face, as a flow through it: none where it is closed.
float throughUpperFace(const SimState& sim, std::int64_t cell, int dim) {
    return sim.wallVelocity(cell, dim) > 0 ? 0.0F : sim.velocity(cell, dim);
}

void takeVectors(const SimState& sim, std::size_t components, std::vector<float>& values) {
    std::fill(values.begin(), values.end(), 0.0F);
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const std::int64_t stride = sim.cellStride[dim];
        const std::int64_t period = sim.cellStride[dim + 1];
        float* value = values.data() + (dim - 1);
        for (std::int64_t cell = 1; cell <= sim.nCells; ++cell, value += components) {
            const bool isFirst = (cell - 1) % period < stride;
            const double below = isFirst ? 0.0 : double(throughUpperFace(sim, cell - stride, dim));
            *value = static_cast<float>((below + double(throughUpperFace(sim, cell, dim))) / 2);
        }
    }
}

} // namespace

std::size_t FrameLayout::cells() const {
    std::size_t count = 1;
    for (const std::size_t length : shape) count *= length;
    return count;
}

std::size_t FrameLayout::frameBytes() const {
    std::size_t components = 0;
    for (const FrameField& field : fields) components += field.components;
    return components * cells() * sizeof(float);
}

std::uint64_t FrameLayout::roomOfFrames(std::size_t count) const {
    constexpr std::uint64_t treeBytes = 1 << 14; // of new nodes of the tree that finds the chunks of a field
    constexpr std::uint64_t entryBytes = 128;    // of a chunk in there
    std::uint64_t chunks = 1;
    std::uint64_t cellsOfChunk = 1;
    for (std::size_t k = 0; k < shape.size(); ++k) {
        chunks *= (shape[k] + chunk[k] - 1) / chunk[k];
        cellsOfChunk *= chunk[k];
    }
    std::uint64_t bytes = 1 << 16;
    for (const FrameField& field : fields)
        bytes += treeBytes + count * chunks * (cellsOfChunk * field.components * sizeof(float) + entryBytes);
    return bytes;
}

std::uint64_t FrameLayout::roomOfGrid() const {
    constexpr std::uint64_t boxBytes = 128; // corners of a cell and their numbers
    const std::uint64_t perCell = 32 + 24 * shape.size() + (isRectilinear ? 0 : boxBytes);
    return cells() * perCell + (1 << 18);
}

bool FrameLayout::hasMesh() const {
    constexpr std::size_t mostCorners = std::numeric_limits<std::int32_t>::max();
    return shape.size() <= spaceDimensions && (isRectilinear || cells() <= mostCorners >> shape.size());
}

std::string FrameLayout::fieldNames() const {
    std::string names;
    for (const FrameField& field : fields) names += (names.empty() ? "" : " ") + field.name;
    return names;
}

std::string axisName(int dim) {
    static constexpr const char* names[] = {"x", "y", "z"};
    return dim <= 3 ? names[dim - 1] : "d" + std::to_string(dim);
}

std::string layoutOf(const SimState& sim, const std::string& names, FrameLayout& layout) {
    layout = {};
    for (int dim = sim.nDim; dim >= 1; --dim) {
        layout.shape.push_back(static_cast<std::size_t>(sim.cellCount[dim]));
        layout.axes.push_back(axisName(dim));
    }
    layout.chunk = chunkOf(layout.shape);
    return addFields(sim, names, layout);
}

bool isOnAxes(const SimState& sim) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const std::int64_t stride = sim.cellStride[dim];
        const std::int64_t period = sim.cellStride[dim + 1];
        for (std::int64_t cell = 1; cell <= sim.nCells; ++cell) {
            const std::int64_t onAxis = 1 + (cell - 1) % period / stride * stride;
            if (sim.cellSize(cell, dim) != sim.cellSize(onAxis, dim)) return false;
        }
    }
    return true;
}

void takeFields(const SimState& sim, const FrameLayout& layout, Frame& frame) {
    frame.step = sim.stepCount;
    frame.time = double(sim.stepCount) * double(sim.dt);
    frame.values.resize(layout.fields.size());
    const std::size_t cells = layout.cells();
    for (std::size_t k = 0; k < layout.fields.size(); ++k) {
        const FrameField& field = layout.fields[k];
        std::vector<float>& values = frame.values[k];
        values.resize(cells * field.components);
        if (field.quantity.value == nullptr) {
            takeVectors(sim, field.components, values);
            continue;
        }
        for (std::size_t cell = 0; cell < cells; ++cell)
            values[cell] = field.quantity.of(sim, static_cast<std::int32_t>(cell) + 1);
    }
}

} // namespace norvane
