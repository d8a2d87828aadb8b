#include "geometry/model_build.h"

#include "core/checkstop.h"
#include "geometry/model_parts.h"

#include <algorithm>
#include <limits>

namespace norvane {

namespace {

void layStrides(SimState& sim) {
    sim.cellStride[1] = 1;
    for (int dim = 1; dim <= sim.nDim; ++dim)
        sim.cellStride[dim + 1] = sim.cellCount[dim] * sim.cellStride[dim]; // at most nCells, which the load limits
}

std::int32_t limitedSum(std::int32_t a, std::int32_t b) {
    const std::int64_t sum = std::int64_t{a} + b;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(sum, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

} // namespace

void buildModel(SimState& sim, const RunEvents& events, const BuildTrace& trace) {
    sim.revision += 1;
    if (sim.nDim == 0) {
        events.showMessage("select an input geometry first");
        return;
    }
    const bool continues = sim.runMode == modeContinuation;
    if (sim.showWhat < 1) sim.showWhat = 1;
    clearCheckstop(sim, events);
    layStrides(sim);
    setDefaults(sim, !continues);
    readDefaults(sim, !continues, trace);
    sim.gasFactor = static_cast<float>(double(sim.pressure[0]) / (double(sim.temperature[0]) * double(sim.density[0])));
    copyTemplate(sim, trace);

    readCellTexts(sim, trace);
    if (!continues && sim.nCells > 0) sim.stepCount = 0;
    deriveCells(sim, continues);
    resolveWallVelocities(sim, trace);

    sim.stopStep = limitedSum(sim.stepCount, sim.stepLimit);
    sim.runMode = modeModelStands;
}

} // namespace norvane
