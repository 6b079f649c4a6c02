#include "ZentoCore/PictureMemory.h"

#include <sys/mman.h>

#include <new>

namespace zento {

PictureMemory allocatePicture(std::size_t size)
{
    constexpr std::size_t kCacheLine = 64;
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    const std::size_t alignment = size >= kHugePage ? kHugePage : kCacheLine;
    const std::size_t whole = (size + kCacheLine - 1) / kCacheLine * kCacheLine;
    void* memory = nullptr;
    if (posix_memalign(&memory, alignment, whole) != 0)
        throw std::bad_alloc();
    // Only advice: without huge pages the memory is as good, and slower.
    if (size >= kHugePage)
        madvise(memory, whole, MADV_HUGEPAGE);
    return PictureMemory(static_cast<std::byte*>(memory));
}

} // namespace zento
