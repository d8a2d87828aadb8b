#include "platform/memory.h"

#include <new>

#ifdef __linux__
#    include <sys/mman.h>
#endif

namespace norvane {

namespace {

constexpr std::size_t lineBytes = 64;
constexpr std::size_t largePageBytes = std::size_t{1} << 21;

std::align_val_t alignmentFor(std::size_t bytes) {
    return std::align_val_t{bytes < largePageBytes ? lineBytes : largePageBytes};
}

} // namespace

void* allocateRoom(std::size_t bytes) {
    void* const room = ::operator new(bytes, alignmentFor(bytes));
#ifdef __linux__
    if (bytes >= largePageBytes) madvise(room, bytes, MADV_HUGEPAGE); // a wish: without it the room serves as well
#endif
    return room;
}

void releaseRoom(void* room, std::size_t bytes) noexcept { ::operator delete(room, alignmentFor(bytes)); }

} // namespace norvane
