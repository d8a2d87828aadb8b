#pragma once
// Arrays that are addressed by the index ranges of the model (cells from 0, dimensions from 1, slots 0 to 5).
// The memory order is ours: every component is one contiguous run of cells, so that a row of cells is a vector.

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvane {

/// Room for cell values that begins at a cache line with its element 1 (the first cell), shifted by a number of lines
/// of its own: arrays that are read together would otherwise fall into the same few sets of a cache when their lengths
/// are near a power of two, and drive each other out.
template <class T>
class CellRoom {
public:
    /// Replaces the content by zeros. `shift` is any number; neighbours in use should differ in it.
    void allocate(std::size_t size, std::size_t shift) {
        const std::size_t slack = lineBytes + pageBytes;
        std::vector<T>(size == 0 ? 0 : size + slack / sizeof(T)).swap(storage_);
        begin_ = 0;
        if (size == 0) return;
        const auto address = reinterpret_cast<std::uintptr_t>(storage_.data()) + sizeof(T);
        const std::size_t toLine = (lineBytes - address % lineBytes) % lineBytes;
        begin_ = (toLine + shift % (pageBytes / lineBytes) * lineBytes) / sizeof(T);
    }

    T* data() { return storage_.data() + begin_; }

    const T* data() const { return storage_.data() + begin_; }

private:
    static constexpr std::size_t lineBytes = 64;
    static constexpr std::size_t pageBytes = 4096;

    std::vector<T> storage_;
    std::size_t begin_ = 0;
};

/// Values with the inclusive index range [first .. first + size - 1].
template <class T>
class Array {
public:
    Array() = default;

    /// Replaces the content by zeros over the index range [first .. last]; an empty range is allowed.
    void allocate(std::int64_t first, std::int64_t last, std::size_t shift = 0) {
        first_ = first;
        size_ = last < first ? 0 : last - first + 1;
        room_.allocate(static_cast<std::size_t>(size_), shift);
    }

    T& operator[](std::int64_t index) { return room_.data()[position(index)]; }

    const T& operator[](std::int64_t index) const { return room_.data()[position(index)]; }

    bool contains(std::int64_t index) const { return index >= first_ && index - first_ < size_; }

private:
    std::int64_t position(std::int64_t index) const {
        assert(contains(index));
        return index - first_;
    }

    std::int64_t first_ = 0;
    std::int64_t size_ = 0;
    CellRoom<T> room_;
};

/// Values with two indices, cells [0 .. cells] and components [first .. last]; the cells of a component are contiguous.
template <class T>
class CellTable {
public:
    CellTable() = default;

    void allocate(std::int64_t cells, std::int64_t first, std::int64_t last, std::size_t shift = 0) {
        cells_ = cells;
        first_ = first;
        last_ = last;
        const std::int64_t components = last < first ? 0 : last - first + 1;
        stride_ = spread(cells + 1);
        room_.allocate(static_cast<std::size_t>(components * stride_), shift);
    }

    T& operator()(std::int64_t cell, std::int64_t component) { return room_.data()[position(cell, component)]; }

    const T& operator()(std::int64_t cell, std::int64_t component) const {
        return room_.data()[position(cell, component)];
    }

    /// The cells of a component, from cell 0 on.
    T* component(std::int64_t component) { return &(*this)(0, component); }

    const T* component(std::int64_t component) const { return &(*this)(0, component); }

    std::int64_t firstComponent() const { return first_; }

    std::int64_t lastComponent() const { return last_; }

    bool hasCell(std::int64_t cell) const { return cell >= 0 && cell <= cells_; }

private:
    /// Whole cache lines, and for large grids five lines beyond whole pages.
    static std::int64_t spread(std::int64_t cells) {
        constexpr std::int64_t line = 64 / sizeof(T);
        constexpr std::int64_t page = 4096 / sizeof(T);
        if (cells < 4 * page) return (cells + line - 1) / line * line;
        return (cells + page - 1) / page * page + 5 * line;
    }

    std::int64_t position(std::int64_t cell, std::int64_t component) const {
        assert(hasCell(cell) && component >= first_ && component <= last_);
        return (component - first_) * stride_ + cell;
    }

    std::int64_t cells_ = -1;
    std::int64_t first_ = 0;
    std::int64_t last_ = -1;
    std::int64_t stride_ = 0;
    CellRoom<T> room_;
};

/// A CellTable for each of the six Runge-Kutta slots, behind one another: slots [0 .. 5].
template <class T>
class StageTable {
public:
    static constexpr int slots = 6;

    void allocate(std::int64_t cells, std::int64_t first, std::int64_t last, std::size_t shift = 0) {
        for (CellTable<T>& slot : slots_) slot.allocate(cells, first, last, shift += 3);
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
