#pragma once
// Arrays that are addressed by the index ranges of the model (cells from 0, dimensions from 1, slots 0 to 5).
// In memory every component is one contiguous run of cells, so that a row of cells is a vector.

#include "platform/memory.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvane {

/// Cache colouring. Arrays that are read together must not map to the same few sets of a cache, or they evict each
/// other: array n begins 1265 n lines (golden ratio of 2048) after an aligned address, modulo the sets of an L2 way, or
/// modulo the lines of a page for shorter arrays.
struct CacheColour {
    static constexpr std::size_t lineBytes = 64;

    /// Lines among which arrays of so many bytes are spread.
    static std::size_t lines(std::size_t bytes) { return bytes < 16 << 10 ? 1 : bytes < 1 << 20 ? 64 : 2048; }

    /// Bytes from the aligned address to the array of a colour [0..].
    static std::size_t offset(std::size_t colour, std::size_t bytes) {
        return colour * 1265 % lines(bytes) * lineBytes;
    }

    /// Bytes from an array to the next one in memory: the least that hold it and give both their colours.
    static std::size_t distance(std::size_t bytes) {
        const std::size_t round = lines(bytes) * lineBytes;
        const std::size_t step = offset(1, bytes);
        return bytes <= step ? step : (bytes - step + round - 1) / round * round + step;
    }
};

/// Memory for cell values whose element 1 (the first cell) has a cache colour of its own.
template <class T>
class CellBuffer {
public:
    /// Replaces the content by zeros. `arrayBytes` is the length of one of the arrays in the buffer.
    void allocate(std::size_t size, std::size_t arrayBytes, std::size_t colour) {
        begin_ = size == 0 ? 0 : (CacheColour::offset(colour, arrayBytes) + CacheColour::lineBytes) / sizeof(T) - 1;
        // A vector load of the kernels may reach up to a line beyond the last cell.
        const std::size_t slack = CacheColour::lineBytes / sizeof(T);
        std::vector<T, RoomAllocator<T>>(size == 0 ? 0 : begin_ + size + slack).swap(storage_);
    }

    T* data() { return storage_.data() + begin_; }

    const T* data() const { return storage_.data() + begin_; }

private:
    std::vector<T, RoomAllocator<T>> storage_;
    std::size_t begin_ = 0;
};

/// Values with the inclusive index range [first .. first + size - 1].
template <class T>
class Array {
public:
    Array() = default;

    /// Replaces the content by zeros over the index range [first .. last]; an empty range is allowed.
    void allocate(std::int64_t first, std::int64_t last, std::size_t colour = 0) {
        first_ = first;
        size_ = last < first ? 0 : last - first + 1;
        buffer_.allocate(static_cast<std::size_t>(size_), static_cast<std::size_t>(size_) * sizeof(T), colour);
    }

    T& operator[](std::int64_t index) { return buffer_.data()[position(index)]; }

    const T& operator[](std::int64_t index) const { return buffer_.data()[position(index)]; }

    bool contains(std::int64_t index) const { return index >= first_ && index - first_ < size_; }

private:
    std::int64_t position(std::int64_t index) const {
        assert(contains(index));
        return index - first_;
    }

    std::int64_t first_ = 0;
    std::int64_t size_ = 0;
    CellBuffer<T> buffer_;
};

/// Values with two indices, cells [0 .. cells] and components [first .. last]; the cells of a component are contiguous.
template <class T>
class CellTable {
public:
    static constexpr int slots = 1;

    CellTable() = default;

    /// Component `first` takes `colour`, the others the colours after it.
    void allocate(std::int64_t cells, std::int64_t first, std::int64_t last, std::size_t colour = 0) {
        cells_ = cells;
        first_ = first;
        last_ = last;
        const std::int64_t components = last < first ? 0 : last - first + 1;
        const std::size_t bytes = static_cast<std::size_t>(cells + 1) * sizeof(T);
        stride_ = static_cast<std::int64_t>(CacheColour::distance(bytes) / sizeof(T));
        const std::int64_t size = components == 0 ? 0 : (components - 1) * stride_ + cells + 1;
        buffer_.allocate(static_cast<std::size_t>(size), bytes, colour);
    }

    T& operator()(std::int64_t cell, std::int64_t component) { return buffer_.data()[position(cell, component)]; }

    const T& operator()(std::int64_t cell, std::int64_t component) const {
        return buffer_.data()[position(cell, component)];
    }

    /// The cells of a component, from cell 0 on.
    T* component(std::int64_t component) { return &(*this)(0, component); }

    const T* component(std::int64_t component) const { return &(*this)(0, component); }

    /// Elements from a component to the next one.
    std::int64_t componentStride() const { return stride_; }

    std::int64_t firstComponent() const { return first_; }

    std::int64_t lastComponent() const { return last_; }

    bool hasCell(std::int64_t cell) const { return cell >= 0 && cell <= cells_; }

private:
    std::int64_t position(std::int64_t cell, std::int64_t component) const {
        assert(hasCell(cell) && component >= first_ && component <= last_);
        return (component - first_) * stride_ + cell;
    }

    std::int64_t cells_ = -1;
    std::int64_t first_ = 0;
    std::int64_t last_ = -1;
    std::int64_t stride_ = 0;
    CellBuffer<T> buffer_;
};

/// A CellTable for each of the six Runge-Kutta slots [0 .. 5].
template <class T>
class StageTable {
public:
    static constexpr int slots = 6;

    /// Takes the colours from `colour` on, one for each slot and component.
    void allocate(std::int64_t cells, std::int64_t first, std::int64_t last, std::size_t colour = 0) {
        for (int k = 0; k < slots; ++k)
            slots_[k].allocate(cells, first, last, colour + static_cast<std::size_t>(k * (last - first + 1)));
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
