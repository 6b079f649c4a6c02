#include "ZentoCapture/PointerTrack.h"

#include <algorithm>

namespace zento {

namespace {

constexpr double kHistory = 5; // seconds
/// Samples of one movement follow each other at the rate of the pictures.
constexpr double kLongestStep = 0.05; // seconds

} // namespace

void PointerTrack::add(double time, Vec2 point)
{
    const std::lock_guard lock(m_mutex);
    if (!m_samples.empty()) {
        time = std::max(time, m_samples.back().time);
    }
    m_samples.push_back({time, point});
    while (m_samples.size() > 2 && m_samples[1].time < time - kHistory) {
        m_samples.pop_front();
    }
}

std::optional<Vec2> PointerTrack::at(double time) const
{
    const std::lock_guard lock(m_mutex);
    if (m_samples.empty()) {
        return {};
    }
    const auto after = std::ranges::upper_bound(m_samples, time, {}, &PointerSample::time);
    if (after == m_samples.begin()) {
        return m_samples.front().point;
    }
    const PointerSample& from = *(after - 1);
    if (after == m_samples.end() || after->time - from.time > kLongestStep) {
        return from.point;
    }
    const double share = (time - from.time) / (after->time - from.time);
    return Vec2{
        from.point.x + share * (after->point.x - from.point.x),
        from.point.y + share * (after->point.y - from.point.y)};
}

std::optional<Vec2> PointerTrack::newest() const
{
    const std::lock_guard lock(m_mutex);
    return m_samples.empty() ? std::nullopt : std::optional(m_samples.back().point);
}

} // namespace zento
