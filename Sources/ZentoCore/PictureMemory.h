#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace zento {

struct FreePictureMemory {
    void operator()(std::byte* memory) const { std::free(memory); }
};

using PictureMemory = std::unique_ptr<std::byte[], FreePictureMemory>;

/// Bytes for a picture's samples, not cleared, at a cache line's start. A large picture lies in
/// huge pages where the kernel has some to spare: one is read and written from end to end, and
/// looking up where each 4 KiB of it lie took a twentieth of the time of composing a film.
///
/// Throws std::bad_alloc.
PictureMemory allocatePicture(std::size_t size);

} // namespace zento
