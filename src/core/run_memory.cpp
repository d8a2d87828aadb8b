#include "core/run_memory.h"

#include "core/cell_fields.h"
#include "core/remainders.h"
#include "platform/checksum.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <variant>

namespace norvane {

namespace {

using S = SimState;

const FieldMember changing[] = {
    &S::stageSpecies, &S::stageEnergy,   &S::stageMomentum, &S::cellMass, &S::density,
    &S::temperature,  &S::concentration, &S::pressure,      &S::velocity,
};

bool isKept(const CellField& field) {
    return std::find(std::begin(changing), std::end(changing), field.member) != std::end(changing);
}

const char* kindOf(FieldComponents components) {
    if (components == FieldComponents::one) return "";
    return components == FieldComponents::species ? "species" : "dimension";
}

/// Adds the arrays of a field, slot by slot.
struct ArrayList {
    SimState& sim;
    ComponentRange range;
    KeptField& kept;

    void operator()(Array<float> S::*member) const { kept.arrays.push_back(&(sim.*member)[0] + 1); }

    void operator()(CellTable<float> S::*member) const { addTable(sim.*member); }

    template <class Slots>
    void operator()(Slots S::*member) const {
        kept.slots = Slots::slots;
        for (int slot = 0; slot < kept.slots; ++slot) addTable((sim.*member).slot(slot));
    }

    void operator()(Array<std::int16_t> S::*) const {}

    void operator()(CellTable<std::int16_t> S::*) const {}

    void addTable(CellTable<float>& table) const {
        for (int component = range.first; component <= range.last; ++component)
            kept.arrays.push_back(table.component(component) + 1);
    }
};

template <class T>
void addValues(Crc64& crc, const T* values, std::int64_t count) {
    crc.add(std::as_bytes(std::span(values, static_cast<std::size_t>(count))));
}

template <class... Scalars>
void addScalars(Crc64& crc, const Scalars&... scalars) {
    (addValues(crc, &scalars, 1), ...);
}

/// Adds the values of all cells, the template included.
struct FieldBits {
    const SimState& sim;
    ComponentRange range;
    Crc64& crc;

    template <class T>
    void operator()(Array<T> S::*member) const {
        addValues(crc, &(sim.*member)[0], std::int64_t{sim.nCells} + 1);
    }

    template <class T>
    void operator()(CellTable<T> S::*member) const {
        for (int component = range.first; component <= range.last; ++component)
            addValues(crc, (sim.*member).component(component), std::int64_t{sim.nCells} + 1);
    }

    template <class Slots>
    void operator()(Slots S::*) const {} // all of them change
};

} // namespace

std::vector<KeptField> keptFields(SimState& sim) {
    std::vector<KeptField> fields;
    const auto add = [&](const CellField& field) {
        const ComponentRange range = componentRange(field.components, sim.nDim, sim.nsMax);
        KeptField kept{field.name, field.unit, field.meaning, 1, range.count(), kindOf(field.components), {}};
        std::visit(ArrayList{sim, range, kept}, field.member);
        fields.push_back(std::move(kept));
    };
    for (const CellField& field : cellFields())
        if (isKept(field)) add(field);
    for (const CellField& field : remainderFields())
        if (hasRemainders(sim)) add(field);
    return fields;
}

std::uint64_t modelFingerprint(const SimState& sim) {
    Crc64 crc;
    addScalars(crc, sim.nDim, sim.nsMax, sim.nCells, sim.dt, sim.rampSteps, sim.gasFactor, sim.rhoFloor);
    addValues(crc, &sim.cellCount[1], sim.nDim);
    addValues(crc, &sim.gravity[1], sim.nDim);
    addValues(crc, &sim.paramGP[0], 1001);
    addScalars(crc, sim.density[0], sim.temperature[0], sim.pressure[0]); // of the template
    for (const CellField& field : cellFields())
        if (!isKept(field))
            std::visit(FieldBits{sim, componentRange(field.components, sim.nDim, sim.nsMax), crc}, field.member);
    return crc.value();
}

std::uint64_t radiationFingerprint(const SimState& sim) {
    if (!sim.radActive) return 0;
    Crc64 crc;
    addScalars(crc, sim.radPairCount, sim.sigmaRoot);
    for (const Array<std::int32_t>& cells : sim.radPair) addValues(crc, &cells[0], std::int64_t{sim.radPairCount} + 1);
    addValues(crc, &sim.radFactor[0], std::int64_t{sim.radPairCount} + 1);
    return crc.value();
}

} // namespace norvane
