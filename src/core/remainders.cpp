#include "core/remainders.h"

#include "core/cell_fields.h"

#include <algorithm>

namespace norvane {

namespace {

/// Calls `work(table, components)` for the three tables.
template <class Work>
void forRemainders(SimState& sim, const Work& work) {
    for (const CellField& field : remainderFields())
        work(sim.*std::get<CellTable<float> SimState::*>(field.member),
             componentRange(field.components, sim.nDim, sim.nsMax));
}

/// The cache colour after those of all other fields.
std::size_t firstColour(const SimState& sim) {
    std::size_t colour = 0;
    for (const CellField& field : cellFields()) colour += sizeOf(field, sim.nDim, sim.nsMax).arrays;
    return colour;
}

} // namespace

void fitRemainders(SimState& sim) {
    if (!sim.compensated) dropRemainders(sim);
    if (!sim.compensated || hasRemainders(sim)) return;
    try {
        std::size_t colour = firstColour(sim);
        forRemainders(sim, [&](CellTable<float>& table, ComponentRange components) {
            table.allocate(sim.nCells, components.first, components.last, colour);
            colour += static_cast<std::size_t>(components.count());
        });
    } catch (...) {
        dropRemainders(sim);
        throw;
    }
}

void clearRemainders(SimState& sim) {
    if (!hasRemainders(sim)) return;
    forRemainders(sim, [&](CellTable<float>& table, ComponentRange components) {
        for (int component = components.first; component <= components.last; ++component)
            std::fill_n(table.component(component), std::int64_t{sim.nCells} + 1, 0.0f);
    });
}

void dropRemainders(SimState& sim) {
    forRemainders(sim, [](CellTable<float>& table, ComponentRange) { table = {}; });
}

} // namespace norvane
