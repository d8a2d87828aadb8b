#pragma once
// All fields of cells, each in one place: name, components, unit and meaning. Allocation, the count of bytes and the
// copy of the template follow this table, and so does whoever lists or exports fields.

#include "core/sim_state.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>

namespace norvane {

enum class FieldComponents : std::uint8_t {
    one,
    dimensions,        ///< 1 to nDim
    cellAndDimensions, ///< 0 (the whole cell) to nDim
    species,           ///< 0 to nsMax
};

/// What every build does to the cells of a field before it reads their texts.
enum class FieldStart : std::uint8_t {
    kept,         ///< nothing: the texts write the same values again, or the field is derived from others
    fromTemplate, ///< the value of cell 0
    zero,
};

using FieldMember = std::variant<Array<float> SimState::*,
                                 Array<std::int16_t> SimState::*,
                                 CellTable<float> SimState::*,
                                 CellTable<std::int16_t> SimState::*,
                                 SpeciesSlots SimState::*,
                                 EnergySlots SimState::*,
                                 MomentumSlots SimState::*>;

struct CellField {
    const char* name; ///< of the member
    FieldMember member;
    FieldComponents components;
    FieldStart start;
    const char* unit; ///< empty: a number without one
    const char* meaning;
};

/// In the order in which they are allocated, which decides the cache colour of each.
std::span<const CellField> cellFields();

/// The fields that exist in compensated runs alone (core/remainders.h), which allocates them apart from the others.
std::span<const CellField> remainderFields();

struct ComponentRange {
    int first;
    int last;

    int count() const { return last - first + 1; }
};

/// The components of a field on a grid; 0 to 0 where it has one value a cell.
ComponentRange componentRange(FieldComponents components, int nDim, int nsMax);

/// How many arrays of a value for each cell a field is made of, each with a cache colour of its own.
struct FieldSize {
    std::size_t arrays = 0;
    std::size_t valueBytes = 0;
};

FieldSize sizeOf(const CellField& field, int nDim, int nsMax);

} // namespace norvane
