#include "formats/frame_reader.h"

#include "core/quantity_names.h"
#include "formats/netcdf_file.h"

#include <algorithm>

namespace norvane {

namespace {

/// Where the values of a short name lie in a model; null: it is derived from others.
float* placeOf(SimState& sim, const NamedQuantity& quantity, std::int32_t cell) {
    if (quantity.name == "T") return &sim.temperature[cell];
    if (quantity.name == "p") return &sim.pressure[cell];
    if (quantity.name == "rho") return &sim.density[cell];
    if (quantity.name == "mass") return &sim.cellMass[cell];
    if (quantity.dimension > 0) return &sim.velocity(cell, quantity.component);
    return quantity.name[0] == 'c' ? &sim.concentration(cell, quantity.component) : nullptr;
}

std::vector<NamedQuantity> storedQuantities(const SimState& sim) {
    std::vector<NamedQuantity> stored = namedQuantities(sim);
    std::erase_if(stored,
                  [](const NamedQuantity& each) { return !each.isShort || each.isOfGrid || each.name == "speed"; });
    return stored;
}

void readField(NetcdfFile& file,
               const NamedQuantity& quantity,
               std::size_t place,
               const std::vector<std::size_t>& cells,
               std::vector<float>& values,
               SimState& sim) {
    const int variable = file.variable(quantity.name);
    std::vector<std::size_t> shape = file.shape(variable);
    if (!file.ok()) return;
    const bool fits = shape.size() == cells.size() + 1 && shape[0] > place
                      && std::equal(cells.begin(), cells.end(), shape.begin() + 1);
    if (!fits) {
        file.fail("its field " + quantity.name + " has another shape than the drawing");
        return;
    }
    std::vector<std::size_t> start(shape.size());
    start[0] = place;
    shape[0] = 1;
    file.read(variable, start, shape, values.data());
    if (!file.ok()) return;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell)
        *placeOf(sim, quantity, cell) = values[static_cast<std::size_t>(cell) - 1];
}

} // namespace

std::vector<std::string> fieldsInFrames(const std::string& path, const SimState& sim) {
    NetcdfFile file = NetcdfFile::openToRead(path);
    std::vector<std::string> names;
    for (const NamedQuantity& quantity : storedQuantities(sim))
        if (file.hasVariable(quantity.name)) names.push_back(quantity.name);
    return names;
}

std::string readFrame(const std::string& path, std::size_t place, std::int32_t step, SimState& sim) {
    NetcdfFile file = NetcdfFile::openToRead(path);
    const int steps = file.variable("step");
    const std::vector<std::size_t> frames = file.shape(steps);
    if (file.ok() && (frames.size() != 1 || frames[0] <= place)) file.fail("it has fewer frames");
    std::int32_t found = 0;
    if (file.ok()) file.read(steps, {place}, {1}, &found);
    if (file.ok() && found != step) file.fail("its frames have changed meanwhile");
    std::vector<std::size_t> cells; // along each dimension, the last one first
    for (int dim = sim.nDim; dim >= 1; --dim) cells.push_back(static_cast<std::size_t>(sim.cellCount[dim]));
    std::vector<float> values(static_cast<std::size_t>(sim.nCells));
    for (const NamedQuantity& quantity : storedQuantities(sim))
        if (file.hasVariable(quantity.name)) readField(file, quantity, place, cells, values, sim);
    if (file.ok()) sim.stepCount = step;
    return file.fault();
}

} // namespace norvane
