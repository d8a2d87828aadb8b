#pragma once
// All keys of the table language, each in one place: its letters, its form, where it counts, what it means and the
// field that it writes. Readers, defaults and documents are made from this table or tested against it.

#include "core/cell_fields.h"
#include "core/sim_state.h"

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <variant>

namespace norvane {

enum class KeyForm : std::uint8_t {
    plain,   ///< "TT 300": the first occurrence in an item
    indexed, ///< "GG 2;-9.81": the first occurrence in an item
    list,    ///< "CC 1;0.2 CC 2;0.1": up to nDim + 1 occurrences in an item
};

/// Where a key counts; added up.
enum KeyScope : unsigned {
    inColumn1 = 1,  ///< of every row, when the table is loaded
    inDefaults = 2, ///< in the rows down to the first L row
    inCells = 4,    ///< in the text of a cell
};

/// The indices that a key takes.
enum class KeyIndex : std::uint8_t {
    none,
    dimension,       ///< 1 to nDim
    dimensionOr0,    ///< 0: the whole cell, or all dimensions
    signedDimension, ///< -nDim to nDim: 0 and the sign choose the cells that the key writes
    species,         ///< 0 to nsMax
    parameter,       ///< 1 to 1000
};

/// The values that make sense; the readers take all.
enum class KeyRange : std::uint8_t {
    any,
    positive,
    notNegative,
    fraction, ///< 0 to 1
};

/// The field that a key writes; none where a key is accepted without effect, or acts in a way of its own.
using KeyTarget = std::variant<std::monostate,
                               float SimState::*,
                               std::int16_t SimState::*,
                               std::int32_t SimState::*,
                               Array<float> SimState::*,
                               Array<std::int16_t> SimState::*,
                               CellTable<float> SimState::*,
                               CellTable<std::int16_t> SimState::*>;

struct Key {
    static constexpr double noStart = std::numeric_limits<double>::quiet_NaN();

    std::string_view letters;
    KeyForm form;
    unsigned scope; ///< of KeyScope
    KeyIndex index;
    KeyTarget target;
    double start;   ///< value without the key, restored by every build; noStart: none
    bool isDisplay; ///< not read in a continuation, which keeps the settings of the panel
    KeyRange range;
    std::string_view unit;
    std::string_view meaning;
    bool timesVolume = false; ///< once a model stands, the field of a cell holds the key's value times the volume

    bool hasStart() const { return start == start; }
};

/// All keys, in the order in which each item is tried.
std::span<const Key> allKeys();

/// The key of these letters, which there must be.
const Key& keyOf(std::string_view letters);

/// The field of cells that a key writes; null: none.
const CellField* fieldOf(const Key& key);

} // namespace norvane
