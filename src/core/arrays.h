#pragma once
// Arrays that are addressed by the index ranges of the model (cells from 0, dimensions from 1, slots 0 to 5).
// The memory order is ours: every component is one contiguous run of cells, so that a row of cells is a vector.

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvane {

/// Values with the inclusive index range [first .. first + size - 1].
template <class T>
class Array {
public:
    Array() = default;

    /// Replaces the content by zeros over the index range [first .. last]; an empty range is allowed.
    void allocate(std::int64_t first, std::int64_t last) {
        first_ = first;
        std::vector<T>(last < first ? 0 : static_cast<std::size_t>(last - first + 1)).swap(values_);
    }

    T& operator[](std::int64_t index) { return values_[position(index)]; }

    const T& operator[](std::int64_t index) const { return values_[position(index)]; }

    bool contains(std::int64_t index) const {
        return index >= first_ && index - first_ < static_cast<std::int64_t>(values_.size());
    }

private:
    std::size_t position(std::int64_t index) const {
        assert(contains(index));
        return static_cast<std::size_t>(index - first_);
    }

    std::int64_t first_ = 0;
    std::vector<T> values_;
};

/// Values with two indices, cells [0 .. cells] and components [first .. last]; the cells of a component are contiguous.
template <class T>
class CellTable {
public:
    CellTable() = default;

    void allocate(std::int64_t cells, std::int64_t first, std::int64_t last) {
        cells_ = cells;
        first_ = first;
        last_ = last;
        const std::int64_t components = last < first ? 0 : last - first + 1;
        std::vector<T>(static_cast<std::size_t>(components * (cells + 1))).swap(values_);
    }

    T& operator()(std::int64_t cell, std::int64_t component) { return values_[position(cell, component)]; }

    const T& operator()(std::int64_t cell, std::int64_t component) const { return values_[position(cell, component)]; }

    /// The cells of a component, from cell 0 on.
    T* component(std::int64_t component) { return &(*this)(0, component); }

    const T* component(std::int64_t component) const { return &(*this)(0, component); }

    std::int64_t firstComponent() const { return first_; }

    std::int64_t lastComponent() const { return last_; }

    bool hasCell(std::int64_t cell) const { return cell >= 0 && cell <= cells_; }

private:
    std::size_t position(std::int64_t cell, std::int64_t component) const {
        assert(hasCell(cell) && component >= first_ && component <= last_);
        return static_cast<std::size_t>((component - first_) * (cells_ + 1) + cell);
    }

    std::int64_t cells_ = -1;
    std::int64_t first_ = 0;
    std::int64_t last_ = -1;
    std::vector<T> values_;
};

/// A CellTable for each of the six Runge-Kutta slots, behind one another: slots [0 .. 5].
template <class T>
class StageTable {
public:
    static constexpr int slots = 6;

    void allocate(std::int64_t cells, std::int64_t first, std::int64_t last) {
        for (CellTable<T>& slot : slots_) slot.allocate(cells, first, last);
    }

    CellTable<T>& slot(int index) {
        assert(index >= 0 && index < slots);
        return slots_[index];
    }

    const CellTable<T>& slot(int index) const {
        assert(index >= 0 && index < slots);
        return slots_[index];
    }

private:
    CellTable<T> slots_[slots];
};

} // namespace norvane
