#include "ZentoCapture/SoundRing.h"

#include <algorithm>

namespace zento {

SoundRing::SoundRing(std::size_t stretchCount, std::size_t sampleCount)
    : m_stretches(stretchCount)
    , m_samples(sampleCount)
{
}

bool SoundRing::push(
    double time,
    int sampleRate,
    std::span<const float* const> channels,
    std::size_t length) noexcept
{
    const std::uint64_t pushed = m_pushed.load(std::memory_order_relaxed);
    if (pushed - m_popped.load(std::memory_order_acquire) == m_stretches.size()) {
        return false;
    }
    const std::size_t count = channels.size() * length;
    std::uint64_t begin = m_end;
    const std::size_t place = begin % m_samples.size();
    if (place + count > m_samples.size()) {
        begin += m_samples.size() - place; // a stretch lies in one piece
    }
    if (begin + count - m_freed.load(std::memory_order_acquire) > m_samples.size()) {
        return false;
    }
    float* target = m_samples.data() + begin % m_samples.size();
    for (const float* const channel : channels) {
        target = std::copy_n(channel, length, target);
    }
    m_stretches[pushed % m_stretches.size()] = {time, sampleRate, channels.size(), length, begin};
    m_end = begin + count;
    m_pushed.store(pushed + 1, std::memory_order_release);
    return true;
}

std::optional<TimedSound> SoundRing::front()
{
    const std::uint64_t popped = m_popped.load(std::memory_order_relaxed);
    if (popped == m_pushed.load(std::memory_order_acquire)) {
        return {};
    }
    const Stretch& stretch = m_stretches[popped % m_stretches.size()];
    const float* samples = m_samples.data() + stretch.begin % m_samples.size();
    m_views.clear();
    for (std::size_t i = 0; i < stretch.channelCount; ++i) {
        m_views.emplace_back(samples + i * stretch.length, stretch.length);
    }
    return TimedSound{stretch.time, stretch.sampleRate, m_views};
}

void SoundRing::pop()
{
    const std::uint64_t popped = m_popped.load(std::memory_order_relaxed);
    const Stretch& stretch = m_stretches[popped % m_stretches.size()];
    m_freed.store(stretch.begin + stretch.channelCount * stretch.length, std::memory_order_release);
    m_popped.store(popped + 1, std::memory_order_release);
}

} // namespace zento
