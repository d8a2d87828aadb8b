#include "check/cell_kinds.h"

#include "core/wall_codes.h"

namespace norvane {

namespace {

/// Whether an imposed velocity leads from a cell through one of its faces.
bool feeds(const SimState& sim, std::int32_t cell) {
    bool found = false;
    forEachNeighbour(sim, cell, [&](std::int32_t, int dim, std::int32_t face) {
        if (!isImposed(sim.wallVelocity(face, dim))) return;
        const float velocity = sim.velocityInit(face, dim);
        found = found || (face == cell ? velocity > 0 : velocity < 0);
    });
    return found;
}

unsigned kindOf(const SimState& sim, std::int32_t cell) {
    unsigned kind = isWall(sim, cell) ? kindWall : kindGas;
    const std::int16_t pressure = sim.wallPressure[cell];
    if (pressure < 0) kind |= kindOutlet;
    if (pressure > 0) kind |= feeds(sim, cell) ? kindInlet : kindHeld;
    if (isHeld(sim.wallTemperature[cell])) kind |= kindHeated;
    if (exchangesSpecies(sim.wallConcentration[cell]) && sim.nsMax >= 1) kind |= kindReacting;
    return kind;
}

} // namespace

std::vector<unsigned> cellKinds(const SimState& sim) {
    std::vector<unsigned> kinds(static_cast<std::size_t>(sim.nCells) + 1, kindGas);
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) kinds[static_cast<std::size_t>(cell)] = kindOf(sim, cell);
    for (std::int32_t pair = 1; sim.radActive && pair <= sim.radPairCount; ++pair)
        for (const Array<std::int32_t>& side : sim.radPair)
            if (side[pair] >= 1 && side[pair] <= sim.nCells)
                kinds[static_cast<std::size_t>(side[pair])] |= kindRadiating;
    return kinds;
}

GasParts gasParts(const SimState& sim, const std::vector<unsigned>& kinds, FaceRule rule) {
    const auto joins = [&](std::int32_t face, int dim) {
        return rule == FaceRule::open ? isOpenFace(sim, face, dim) : sim.wallVelocity(face, dim) == wallFree;
    };
    GasParts parts;
    parts.partOf.assign(kinds.size(), 0);
    std::vector<std::int32_t> open;
    for (std::int32_t start = 1; start <= sim.nCells; ++start) {
        if (parts.partOf[static_cast<std::size_t>(start)] != 0
            || (kinds[static_cast<std::size_t>(start)] & kindWall) != 0)
            continue;
        parts.count += 1;
        open.assign(1, start);
        parts.partOf[static_cast<std::size_t>(start)] = parts.count;
        while (!open.empty()) {
            const std::int32_t cell = open.back();
            open.pop_back();
            forEachNeighbour(sim, cell, [&](std::int32_t neighbour, int dim, std::int32_t face) {
                std::int32_t& part = parts.partOf[static_cast<std::size_t>(neighbour)];
                if (part != 0 || !joins(face, dim)) return;
                part = parts.count;
                open.push_back(neighbour);
            });
        }
    }
    return parts;
}

} // namespace norvane
