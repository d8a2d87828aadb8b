#pragma once
// An engine whose fields lie elsewhere, as those of a device do: it works on a copy of the record, which it takes anew
// where the revision has moved, and gives fields back only when it is asked to.

#include "core/processor_engine.h"

#include <memory>

namespace norvane {

inline StageEngine remoteEngine(SimState& sim) {
    struct Remote {
        SimState copy;
        StageEngine engine;
    };

    const auto remote = std::make_shared<std::unique_ptr<Remote>>();
    const auto runStage = [&sim, remote](int stage, const FaultSink& fault) {
        if (!*remote || (*remote)->copy.revision != sim.revision) {
            *remote = std::make_unique<Remote>(Remote{sim, {}});
            (*remote)->engine = processorEngine((*remote)->copy, planStages((*remote)->copy));
        }
        (*remote)->copy.stepCount = sim.stepCount;
        (*remote)->engine.runStage(stage, fault);
    };
    const auto download = [&sim, remote] {
        if (!*remote || (*remote)->copy.revision != sim.revision) return;
        const SimState& copy = (*remote)->copy;
        sim.stageSpecies = copy.stageSpecies;
        sim.stageEnergy = copy.stageEnergy;
        sim.stageMomentum = copy.stageMomentum;
        sim.speciesRemainder = copy.speciesRemainder;
        sim.energyRemainder = copy.energyRemainder;
        sim.momentumRemainder = copy.momentumRemainder;
        sim.cellMass = copy.cellMass;
        sim.density = copy.density;
        sim.concentration = copy.concentration;
        sim.temperature = copy.temperature;
        sim.pressure = copy.pressure;
        sim.velocity = copy.velocity;
    };
    return {"elsewhere", runStage, download};
}

} // namespace norvane
