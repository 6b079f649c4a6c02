#include "ZentoMedia/PicturePool.h"

#include <utility>

namespace zento {

namespace {

constexpr std::ptrdiff_t kAlignment = 64; // bytes

std::ptrdiff_t alignedStride(int samples)
{
    constexpr std::ptrdiff_t kSamples =
        kAlignment / static_cast<std::ptrdiff_t>(sizeof(std::uint16_t));
    return (samples + kSamples - 1) / kSamples * kSamples;
}

} // namespace

PicturePool::PicturePool(int width, int height, int capacity)
    : m_width(width)
    , m_height(height)
    , m_lumaStride(alignedStride(width))
    , m_chromaStride(alignedStride(width / 2))
    , m_unmade(capacity)
{
    m_free.reserve(static_cast<std::size_t>(capacity)); // so that giving back cannot fail
}

PicturePool::Loan PicturePool::borrow()
{
    PictureMemory memory = take();
    if (!memory)
        return {};
    Loan loan;
    loan.planes = planesIn(memory.get());
    const auto giveBackTo = [pool = shared_from_this()](std::byte* bytes) {
        pool->giveBack(PictureMemory(bytes));
    };
    loan.samples = std::shared_ptr<std::byte>(memory.release(), giveBackTo);
    return loan;
}

bool PicturePool::isEmpty() const
{
    const std::scoped_lock lock(m_mutex);
    return m_free.empty() && m_unmade == 0;
}

PictureMemory PicturePool::take()
{
    const std::scoped_lock lock(m_mutex);
    if (!m_free.empty()) {
        PictureMemory memory = std::move(m_free.back());
        m_free.pop_back();
        return memory;
    }
    if (m_unmade == 0)
        return {};
    const auto samples = static_cast<std::size_t>((m_lumaStride + 2 * m_chromaStride) * m_height);
    PictureMemory made = allocatePicture(samples * sizeof(std::uint16_t));
    --m_unmade;
    return made;
}

void PicturePool::giveBack(PictureMemory memory)
{
    const std::scoped_lock lock(m_mutex);
    m_free.push_back(std::move(memory));
}

YuvPlanes<std::uint16_t> PicturePool::planesIn(std::byte* memory) const
{
    auto* y = reinterpret_cast<std::uint16_t*>(memory);
    auto* cb = y + m_lumaStride * m_height;
    auto* cr = cb + m_chromaStride * m_height;
    return {
        {y, m_width, m_height, m_lumaStride},
        {cb, m_width / 2, m_height, m_chromaStride},
        {cr, m_width / 2, m_height, m_chromaStride}};
}

} // namespace zento
