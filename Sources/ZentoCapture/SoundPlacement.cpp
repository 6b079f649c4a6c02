#include "ZentoCapture/SoundPlacement.h"

#include <algorithm>
#include <cmath>

namespace zento {

namespace {

/// Stamps may jitter; a drift is what stays for this long.
constexpr double kSmoothingSeconds = 1;

} // namespace

SoundPlacement SoundClock::place(double time, std::size_t length)
{
    if (!m_start) {
        m_start = time;
    }
    const double error = time - *m_start - static_cast<double>(m_frames) / m_sampleRate;
    const double gap = std::min(
        kJump, std::max(kDriftLimit, kLostShare * static_cast<double>(length) / m_sampleRate));
    SoundPlacement placement;
    // An overlap longer than a stretch goes on into the next ones, to its end.
    if (error > gap || error < -kJump || (m_isOverlapping && error < 0)) {
        const auto frames = static_cast<std::size_t>(std::llround(std::abs(error) * m_sampleRate));
        placement.silence = error > 0 ? frames : 0;
        placement.skip = error < 0 ? std::min(frames, length) : 0;
        m_isOverlapping = placement.skip == length;
        m_drift = 0;
        m_isCorrecting = false;
    } else {
        m_isOverlapping = false;
        placement.stretch = drifted(error, length);
    }
    m_frames +=
        static_cast<std::int64_t>(placement.silence + length - placement.skip) + placement.stretch;
    return placement;
}

/// How many frames of `length` to add or, negative, to leave out.
int SoundClock::drifted(double error, std::size_t length)
{
    const double seconds = static_cast<double>(length) / m_sampleRate;
    m_drift += (error - m_drift) * std::min(1.0, seconds / kSmoothingSeconds);
    if (m_isCorrecting ? std::abs(error) < kInStep : std::abs(m_drift) > kDriftLimit) {
        m_isCorrecting = !m_isCorrecting;
        m_drift = 0;
        m_owed = 0;
    }
    if (!m_isCorrecting) {
        return 0;
    }
    m_owed += static_cast<double>(length) * kStretch;
    const int frames = static_cast<int>(m_owed);
    m_owed -= frames;
    return error > 0 ? frames : -frames;
}

} // namespace zento
