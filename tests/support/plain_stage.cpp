#include "support/plain_stage.h"

#include "core/accumulate.h"
#include "core/addressing.h"
#include "core/remainders.h"
#include "core/source_terms.h"

#include <cmath>
#include <string>
#include <type_traits>
#include <vector>

namespace norvane::plain {

namespace {

/// One face as a visiting cell sees it. Flow and coefficients belong to the lower cell, the carried values to the
/// donor, whichever side the visitor is on: so what one cell gains the other loses.
struct Face {
    int dim;
    bool isUpper;           ///< it is the upper face of the visiting cell
    bool exists;            ///< false at the end of a row
    bool advects;           ///< neither closed nor fed by an empty donor
    std::int32_t neighbour; ///< the cell across the face
    std::int32_t lower;     ///< the cell below the face, which owns its momentum
    std::int32_t donor;     ///< the cell that the flow comes from
    double massFlow; ///< kg/s upwards: into the visiting cell through its lower face, out of it through the upper
};

Face locateFace(const SimState& sim, std::int32_t cell, int faceIndex) {
    Face face{};
    face.dim = (faceIndex - 1) / 2 + 1;
    face.isUpper = faceIndex % 2 == 0;
    const std::int64_t stride = sim.cellStride[face.dim];
    const std::int64_t neighbour = face.isUpper ? cell + stride : cell - stride;
    face.exists = inSameRow(sim, cell, neighbour, face.dim);
    if (!face.exists) return face;

    face.neighbour = static_cast<std::int32_t>(neighbour);
    face.lower = face.isUpper ? cell : face.neighbour;
    const std::int32_t upper = face.isUpper ? face.neighbour : cell;
    face.donor = sim.velocity(face.lower, face.dim) > 0 ? face.lower : upper;
    face.advects = sim.wallVelocity(face.lower, face.dim) <= 0 && sim.density[face.donor] > sim.rhoFloor;

    face.massFlow =
        double(sim.inverseSize(face.lower, face.dim)) * double(sim.stageMomentum(workSlot, face.lower, face.dim));
    return face;
}

/// The slopes of a cell in a stage, which each term rounds.
struct RoundedSlopes {
    SimState& sim;
    int stage;
    std::int32_t cell;

    float& species(int k) const { return sim.stageSpecies(stage, k, cell); }

    float& energy() const { return sim.stageEnergy(stage, cell); }

    float& momentum(int dim) const { return sim.stageMomentum(stage, cell, dim); }
};

/// The slopes of a cell in a stage as the terms of one dimension find them and leave them: doubles in between.
class WideSlopes {
public:
    explicit WideSlopes(const SimState& sim)
        : species_(static_cast<std::size_t>(sim.nsMax + 1)), momentum_(static_cast<std::size_t>(sim.nDim + 1)) {}

    double& species(int k) { return species_[static_cast<std::size_t>(k)]; }

    double& energy() { return energy_; }

    double& momentum(int dim) { return momentum_[static_cast<std::size_t>(dim)]; }

    void load(const RoundedSlopes& slopes) {
        forAll(slopes, [](double& wide, float& stored) { wide = stored; });
    }

    void store(const RoundedSlopes& slopes) {
        forAll(slopes, [](double& wide, float& stored) { stored = static_cast<float>(wide); });
    }

private:
    template <class Work>
    void forAll(const RoundedSlopes& slopes, const Work& work) {
        for (int k = 0; k <= slopes.sim.nsMax; ++k) work(species(k), slopes.species(k));
        work(energy(), slopes.energy());
        for (int dim = 1; dim <= slopes.sim.nDim; ++dim) work(momentum(dim), slopes.momentum(dim));
    }

    std::vector<double> species_;
    double energy_ = 0;
    std::vector<double> momentum_;
};

/// Adds what the flow through a face brings. A subtraction, not the addition of a negative, leaves the sign of a NaN as
/// it is.
template <class Number>
void addFlow(Number& slope, const Face& face, double amount) {
    slope = static_cast<Number>(face.isUpper ? double(slope) - amount : double(slope) + amount);
}

template <class Number>
void add(Number& slope, double amount) {
    slope = static_cast<Number>(double(slope) + amount);
}

/// (1)
template <class Slopes>
void addSpeciesAdvection(const SimState& sim, Slopes& slopes, const Face& face) {
    for (int species = 0; species <= sim.nsMax; ++species)
        addFlow(slopes.species(species), face, face.massFlow * double(sim.concentration(face.donor, species)));
}

/// (2)
template <class Slopes>
void addHeatAdvection(const SimState& sim, Slopes& slopes, std::int32_t cell, const Face& face) {
    if (sim.wallTemperature[cell] > 0) return;
    addFlow(slopes.energy(), face,
            face.massFlow * double(sim.heatCapacity[face.donor]) * double(sim.temperature[face.donor]));
}

/// (3), as if momentum were cell-centred.
template <class Slopes>
void addMomentumAdvection(const SimState& sim, Slopes& slopes, std::int32_t cell, const Face& face) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (sim.wallVelocity(cell, dim) > 0) continue;
        addFlow(slopes.momentum(dim), face, face.massFlow * double(sim.velocity(face.donor, dim)));
    }
}

/// (4), only for the cell below the face, which keeps the momentum of the face.
template <class Slopes>
void addPressureForce(const SimState& sim, Slopes& slopes, std::int32_t cell, const Face& face) {
    if (sim.wallVelocity(cell, face.dim) > 0) return;
    const double difference = double(sim.pressure[cell]) - double(sim.pressure[face.neighbour]);
    add(slopes.momentum(face.dim), difference * double(sim.faceArea(cell, face.dim)));
}

/// (5)
template <class Slopes>
void addHeatConduction(const SimState& sim, Slopes& slopes, std::int32_t cell, const Face& face) {
    if (sim.wallTemperature[cell] > 0) return;
    const double difference = double(sim.temperature[face.neighbour]) - double(sim.temperature[cell]);
    add(slopes.energy(), difference * double(sim.conductionCoef(face.lower, face.dim)));
}

/// (6)
template <class Slopes>
void addViscousExchange(const SimState& sim, Slopes& slopes, std::int32_t cell, const Face& face) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (sim.wallVelocity(cell, dim) > 0) continue;
        const double difference = double(sim.velocity(face.neighbour, dim)) - double(sim.velocity(cell, dim));
        add(slopes.momentum(dim), difference * double(sim.viscousCoef(face.lower, face.dim)));
    }
}

template <class Slopes>
void addFaceTerms(const SimState& sim, Slopes& slopes, std::int32_t cell, int faceIndex) {
    const Face face = locateFace(sim, cell, faceIndex);
    if (!face.exists) return;
    if (face.advects) {
        addSpeciesAdvection(sim, slopes, face);
        addHeatAdvection(sim, slopes, cell, face);
        addMomentumAdvection(sim, slopes, cell, face);
    }
    if (face.isUpper) addPressureForce(sim, slopes, cell, face);
    // Heat and shear pass through a closed face and out of an empty cell as well.
    addHeatConduction(sim, slopes, cell, face);
    addViscousExchange(sim, slopes, cell, face);
}

/// (7)
void addDrag(SimState& sim, int stage, std::int32_t cell) {
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (sim.wallVelocity(cell, 0) != 0 || sim.wallVelocity(cell, dim) > 0) continue;
        float& slope = sim.stageMomentum(stage, cell, dim);
        slope = static_cast<float>(double(slope) - double(sim.velocity(cell, dim)) * double(sim.friction[cell]));
    }
}

/// (8)
void addGravity(SimState& sim, int stage, std::int32_t cell) {
    if (sim.wallVelocity(cell, 0) != 0) return;
    for (int dim = 1; dim <= sim.nDim; ++dim)
        accumulate(sim.stageMomentum(stage, cell, dim), double(sim.gravity[dim]) * double(sim.cellMass[cell]));
}

/// (P1), (P2)
void updateMassAndDensity(SimState& sim, std::int32_t cell) {
    float mass = 0;
    for (int species = 0; species <= sim.nsMax; ++species)
        mass = static_cast<float>(double(mass) + double(sim.stageSpecies(sim.stageWork, species, cell)));
    sim.cellMass[cell] = mass;
    sim.density[cell] = static_cast<float>(double(mass) / double(sim.cellVolume[cell]));
}

/// (P3)
void updateConcentrations(SimState& sim, std::int32_t cell) {
    const double mass = sim.cellMass[cell];
    for (int species = 0; species <= sim.nsMax; ++species) {
        float& speciesMass = sim.stageSpecies(sim.stageWork, species, cell);
        float& concentration = sim.concentration(cell, species);
        if (sim.wallConcentration[cell] < 0)
            speciesMass = static_cast<float>(double(concentration) * mass);
        else
            concentration = static_cast<float>(double(speciesMass) / mass);
    }
}

void checkDensity(SimState& sim, const Interface& ui, std::int32_t cell) {
    // "not >=" instead of "<": a NaN fails every comparison, and it has to stop the run as well.
    if (!(sim.density[cell] >= 0.0f)) {
        ui.showMessage("Stopped because of negative density in point " + std::to_string(cell));
        sim.stopFlag = true;
        sim.outcome.negativeDensity = true;
    }
}

/// (P4)
void updateTemperature(SimState& sim, std::int32_t cell) {
    float& energy = sim.stageEnergy(sim.stageWork, cell);
    const double capacity = double(sim.heatCapacity[cell]) * double(sim.cellMass[cell]);
    if (sim.wallTemperature[cell] < 0)
        energy = static_cast<float>(capacity * double(sim.temperature[cell]));
    else
        sim.temperature[cell] = static_cast<float>(double(energy) / capacity);
}

/// The mass flow of an imposed velocity is velocityInit at the template's density, whatever the density of the cell is.
float imposedVelocity(const SimState& sim, std::int32_t cell, int dim) {
    const double init = sim.velocityInit(cell, dim);
    const double reference = sim.density[0];
    const double density = sim.density[cell];
    if (sim.wallVelocity(cell, dim) != -2) return static_cast<float>(init * reference / density);
    double ramp = double(sim.stepCount) / double(sim.rampSteps);
    if (ramp > 1) ramp = 1;
    return static_cast<float>(ramp * init * reference / density);
}

/// (P5)
void updateVelocities(SimState& sim, std::int32_t cell) {
    const double mass = sim.cellMass[cell];
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const int code = sim.wallVelocity(cell, dim);
        float& momentum = sim.stageMomentum(sim.stageWork, cell, dim);
        float& velocity = sim.velocity(cell, dim);
        if (code == 0) {
            velocity = static_cast<float>(double(momentum) / mass);
        } else if (code < 0) {
            velocity = imposedVelocity(sim, cell, dim);
            momentum = static_cast<float>(double(velocity) * mass);
        }
    }
}

/// (P6)
void updatePressure(SimState& sim, std::int32_t cell) {
    if (sim.wallPressure[cell] < 0) return;
    sim.pressure[cell] = static_cast<float>(double(sim.gasFactor) * double(sim.cellMass[cell])
                                            * double(sim.temperature[cell]) / double(sim.cellVolume[cell]));
}

/// One quantity of one cell in all six slots.
template <class Slots>
struct SlotValues {
    Slots& slots;
    float* remainder; ///< null where none is kept
    std::int64_t first;
    std::int64_t second;

    float& at(int slot) {
        if constexpr (std::is_same_v<Slots, EnergySlots>)
            return slots(slot, first);
        else
            return slots(slot, first, second);
    }
};

/// (S2), (S4)
template <class Slots>
void formTrial(SlotValues<Slots> q, int stage, double h) {
    const double increment = h * double(q.at(stage - 1));
    if (q.remainder == nullptr)
        q.at(workSlot) = static_cast<float>(double(q.at(committedSlot)) + increment);
    else
        q.at(workSlot) = static_cast<float>(double(q.at(committedSlot)) + double(*q.remainder) + increment);
}

/// (S3), (S5)
template <class Slots>
void completeStep(SlotValues<Slots> q, double dt) {
    const double k1 = q.at(1);
    const double k2 = q.at(2);
    const double k3 = q.at(3);
    const double k4 = q.at(4);
    const double increment = ((2 * k2 + k1) + 2 * k3 + k4) * dt / 6;
    if (q.remainder == nullptr) {
        q.at(workSlot) = static_cast<float>(double(q.at(committedSlot)) + increment);
    } else {
        const double sum = double(q.at(committedSlot)) + double(*q.remainder) + increment;
        q.at(workSlot) = static_cast<float>(sum);
        *q.remainder = static_cast<float>(sum - double(q.at(workSlot)));
    }
}

/// Calls `work(q, isIntegrated)` for every quantity of a cell, with whether the wall codes leave it to be integrated.
template <class Work>
void forQuantities(SimState& sim, std::int32_t cell, const Work& work) {
    const auto in = [&](CellTable<float>& remainders, int component) {
        return hasRemainders(sim) ? &remainders(cell, component) : nullptr;
    };
    for (int species = 0; species <= sim.nsMax; ++species)
        work(SlotValues<SpeciesSlots>{sim.stageSpecies, in(sim.speciesRemainder, species), species, cell},
             sim.wallPressure[cell] == 0);
    work(SlotValues<EnergySlots>{sim.stageEnergy, in(sim.energyRemainder, 0), cell, 0}, sim.wallTemperature[cell] == 0);
    for (int dim = 1; dim <= sim.nDim; ++dim)
        work(SlotValues<MomentumSlots>{sim.stageMomentum, in(sim.momentumRemainder, dim), cell, dim},
             sim.wallVelocity(cell, dim) == 0);
}

template <class Slots>
void completeStep(SlotValues<Slots> q, bool isIntegrated, double dt) {
    if (isIntegrated)
        completeStep(q, dt);
    else if (q.remainder != nullptr)
        *q.remainder = 0;
    q.at(committedSlot) = q.at(workSlot);
}

void clearSlopes(SimState& sim, int stage, std::int32_t cell) {
    forQuantities(sim, cell, [&](auto q, bool) { q.at(stage) = 0; });
}

} // namespace

void updatePrimitives(SimState& sim, const Interface& ui) {
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        updateMassAndDensity(sim, cell);
        updateConcentrations(sim, cell);
        checkDensity(sim, ui, cell);
        updateTemperature(sim, cell);
        updateVelocities(sim, cell);
        updatePressure(sim, cell);
    }
}

void formWorkState(SimState& sim, int stage) {
    const double dt = sim.dt;
    const double h = stage == 4 ? dt : dt * 0.5;
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        forQuantities(sim, cell, [&](auto q, bool isIntegrated) {
            if (stage == 1)
                completeStep(q, isIntegrated, dt);
            else if (isIntegrated)
                formTrial(q, stage, h);
        });
    }
}

void computeSlopes(SimState& sim, int stage) {
    WideSlopes wide(sim);
    for (std::int32_t cell = 1; cell <= sim.nCells; ++cell) {
        clearSlopes(sim, stage, cell);
        RoundedSlopes rounded{sim, stage, cell};
        for (int dim = 1; dim <= sim.nDim; ++dim) {
            const int lower = 2 * dim - 1;
            if (hasRemainders(sim)) {
                wide.load(rounded);
                for (const int faceIndex : {lower, lower + 1}) addFaceTerms(sim, wide, cell, faceIndex);
                wide.store(rounded);
            } else {
                for (const int faceIndex : {lower, lower + 1}) addFaceTerms(sim, rounded, cell, faceIndex);
            }
        }
        addDrag(sim, stage, cell);
        addGravity(sim, stage, cell);
        addSink(sim, stage, cell);
        addSpeciesExchange(sim, stage, cell);
    }
    if (sim.radActive) radiationPairs(sim, stage);
}

} // namespace norvane::plain
