#pragma once
// Neighbours of a cell and the faces between them.

#include "core/sim_state.h"
#include "core/wall_codes.h"

#include <cstdint>

namespace norvane {

/// Calls `take(neighbour, dim, face)` for each neighbour of a cell; `face` is the cell whose upper face they share.
template <class Take>
void forEachNeighbour(const SimState& sim, std::int32_t cell, const Take& take) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const std::int32_t stride = sim.cellStride[dim];
        const std::int32_t place = (cell - 1) % sim.cellStride[dim + 1];
        if (place >= stride) take(cell - stride, dim, cell - stride);
        if (place < sim.cellStride[dim + 1] - stride) take(cell + stride, dim, cell);
    }
}

/// Whether two neighbours along a dimension, `lower` and the next one, share a face that lets gas through.
inline bool isOpenFace(const SimState& sim, std::int32_t lower, int dim) {
    return !isClosed(sim.wallVelocity(lower, dim));
}

/// Whether a cell is a wall: it has neighbours, and none of its faces is open.
inline bool isWall(const SimState& sim, std::int32_t cell) {
    bool isOpen = false;
    bool hasNeighbour = false;
    forEachNeighbour(sim, cell, [&](std::int32_t, int dim, std::int32_t face) {
        hasNeighbour = true;
        isOpen = isOpen || isOpenFace(sim, face, dim);
    });
    return hasNeighbour && !isOpen;
}

} // namespace norvane
