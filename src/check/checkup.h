#pragma once
// All that can be said of a geometry before it is run.

#include "check/finding.h"
#include "check/stable_step.h"
#include "core/sim_state.h"
#include "geometry/table_place.h"
#include "platform/run_events.h"

#include <string>
#include <vector>

namespace norvane {

/// A limit of the time step, and the cell that sets it.
struct NamedLimit {
    StepLimit kind;
    double step; ///< s
    TablePlace place;
};

/// What a model is, in a few numbers. Of a geometry that cannot be loaded, `cells` is 0.
struct ModelSummary {
    std::int32_t cells = 0;
    std::vector<int> shape;      ///< cells along each dimension
    std::vector<double> lengths; ///< m, of the first line of cells along each dimension
    int species = 1;
    std::int32_t walls = 0;
    std::int32_t inlets = 0;
    std::int32_t outlets = 0;
    std::int32_t held = 0;
    std::int32_t heated = 0;
    std::int32_t reacting = 0;
    std::int32_t radiating = 0;
    double soundSpeed = 0;  ///< m/s, isothermal, at the default temperature
    double gasFactor = 0;   ///< J/(kg K)
    double fastest = 0;     ///< m/s: what pressures start, or the largest VV
    double bytes = 0;       ///< memory of a run
    double stepSeconds = 0; ///< of the wall clock for a step on this machine; 0: not measured
    double dt = 0;          ///< s
    std::int32_t steps = 0; ///< NT
    StableStep stable;
    std::vector<NamedLimit> limits; ///< those that there are
};

struct Checkup {
    Findings findings; ///< sorted by place
    ModelSummary summary;
};

/// Checks a geometry file with all that its table, its texts and its model can show. Writes no file. `sim` takes the
/// model, where there is one; it has to be new.
Checkup checkGeometry(const std::string& path, SimState& sim);
Checkup checkGeometry(const std::string& path);

/// Checks a geometry that has been loaded: its frame, texts and model. Builds the model; afterwards runMode is as it
/// was, so that a run begins as if nothing had happened.
Checkup checkLoaded(SimState& sim, const RunEvents& events);

/// Runs a few stages of a model that stands, for a fifth of a second at most, and gives the wall-clock seconds of a
/// step. The fields change. 0: the model can't be run.
double measuredStep(SimState& sim);

/// The gas whose constant is nearest to a value in J/(kg K); empty where none is within a tenth.
std::string gasNear(double gasFactor);

} // namespace norvane
