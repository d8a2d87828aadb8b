#pragma once

#include <cstddef>

namespace norvane {

/// Room for the values of many cells, beginning at a cache line; large rooms on large pages where the system grants
/// them. Throws std::bad_alloc.
void* allocateRoom(std::size_t bytes);

/// `room` comes from allocateRoom with as many bytes.
void releaseRoom(void* room, std::size_t bytes) noexcept;

/// For the standard library's containers.
template <class T>
struct RoomAllocator {
    using value_type = T;

    RoomAllocator() = default;

    template <class U>
    RoomAllocator(const RoomAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) { return static_cast<T*>(allocateRoom(count * sizeof(T))); }

    void deallocate(T* room, std::size_t count) noexcept { releaseRoom(room, count * sizeof(T)); }

    bool operator==(const RoomAllocator&) const { return true; }
};

} // namespace norvane
