#pragma once

#include "ZentoCore/PictureMemory.h"
#include "ZentoCore/Plane.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace zento {

/// A fixed number of 4:2:2 pictures of 10 bits that are lent out and come back by themselves.
///
/// A picture's memory is taken when it is first lent, kept until the pool and all its loans are
/// gone, and never cleared.
///
/// Threading: any thread may borrow, give back and ask.
class PicturePool : public std::enable_shared_from_this<PicturePool> {
public:
    /// A picture on loan: it returns to the pool with the last copy of `samples`.
    struct Loan {
        std::shared_ptr<void> samples;
        YuvPlanes<std::uint16_t> planes; // rows 64-byte aligned
    };

    /// `width`, `height`: pixels, even. Made by std::make_shared.
    PicturePool(int width, int height, int capacity);

    /// An empty loan when all pictures are out.
    Loan borrow();

    bool isEmpty() const;

private:
    PictureMemory take();
    void giveBack(PictureMemory memory);
    YuvPlanes<std::uint16_t> planesIn(std::byte* memory) const;

    int m_width;
    int m_height;
    std::ptrdiff_t m_lumaStride; // samples
    std::ptrdiff_t m_chromaStride;
    mutable std::mutex m_mutex; // guards what follows
    std::vector<PictureMemory> m_free;
    int m_unmade; // pictures that have no memory yet
};

} // namespace zento
