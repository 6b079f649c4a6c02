#include "ZentoRender/MusicLevel.h"

#include "ZentoRender/SoundFormat.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {

namespace {

constexpr std::int64_t kSmoothedSamples = 4410;

double gain(double decibels)
{
    return std::pow(10, decibels / 20);
}

double secondsOf(std::int64_t sample)
{
    return static_cast<double>(sample) / kSoundRate;
}

} // namespace

DuckingCurve::DuckingCurve(std::vector<DuckPoint> points, double titleOffset)
    : m_points(std::move(points))
    , m_titleOffset(titleOffset)
{
    std::ranges::stable_sort(m_points, {}, &DuckPoint::tOut);
}

double DuckingCurve::advance(Steps& steps, std::int64_t sample) const
{
    const double t = secondsOf(sample) - m_titleOffset;
    for (; steps.next < m_points.size() && m_points[steps.next].tOut <= t; ++steps.next)
        steps.level = m_points[steps.next].gainDb;
    return steps.level;
}

double DuckingCurve::next()
{
    const std::int64_t sample = m_sample++;
    m_sum += advance(m_head, sample);
    if (sample >= kSmoothedSamples)
        m_sum -= advance(m_tail, sample - kSmoothedSamples);
    return m_sum / static_cast<double>(std::min(sample + 1, kSmoothedSamples));
}

MusicLevel::MusicLevel(const MusicPlan& plan, double titleOffset, double duration)
    : m_ducking(plan.duckPoints, titleOffset)
    , m_fadeIn(plan.fadeIn)
    , m_fadeOut(plan.fadeOut)
    , m_end(std::min(plan.playDuration.value_or(duration), duration))
    , m_base(gain(plan.gainDb))
    , m_factor(m_base)
{
}

std::size_t MusicLevel::next(std::span<float> factors)
{
    for (std::size_t i = 0; i < factors.size(); ++i) {
        const double t = secondsOf(m_sample++);
        const double remaining = m_end - t;
        if (remaining <= 0)
            return i;
        // A power a sample would cost more than all the rest; the curve stands still mostly.
        if (const double ducked = m_ducking.next(); ducked != m_ducked) {
            m_ducked = ducked;
            m_factor = m_base * gain(ducked);
        }
        double factor = m_factor;
        if (t < m_fadeIn)
            factor *= t / m_fadeIn;
        if (remaining < m_fadeOut)
            factor *= remaining / m_fadeOut;
        factors[i] = static_cast<float>(factor);
    }
    return factors.size();
}

} // namespace zento
