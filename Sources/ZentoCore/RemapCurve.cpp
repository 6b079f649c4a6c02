#include "ZentoCore/RemapCurve.h"

#include "ZentoCore/Error.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace zento {

namespace {

constexpr double kSeamTolerance = 1e-9; // source seconds
constexpr double kFlat = 1e-12;         // below this two knots coincide
constexpr double kKnotSpacing = 0.02;   // source seconds

bool touches(const SpeedSegment& first, const SpeedSegment& second)
{
    return std::abs(first.sourceEnd - second.sourceStart) < kSeamTolerance;
}

/// The playback rate (output seconds per source second) inside one segment: constant, and eased
/// towards the mean with a neighbour's rate where the two touch.
struct RateProfile {
    double length = 0; // source seconds
    double rate = 1;
    double rampIn = 0; // source seconds
    double rampOut = 0;
    double previousRate = 1;
    double nextRate = 1;

    double at(double position) const
    {
        double result = rate;
        if (rampIn > 0 && position < rampIn) {
            result = eased(position / rampIn, previousRate);
        }
        if (rampOut > 0 && position > length - rampOut) {
            result = eased((length - position) / rampOut, nextRate);
        }
        return result;
    }

private:
    double eased(double progress, double neighbour) const
    {
        const double a = std::clamp(progress, 0.0, 1.0);
        const double mid = (rate + neighbour) * 0.5;
        return mid + (rate - mid) * (a * a * (3 - 2 * a));
    }
};

RateProfile
rateProfile(const std::vector<SpeedSegment>& segments, std::size_t index, double rampDuration)
{
    const SpeedSegment& segment = segments[index];
    RateProfile profile;
    profile.length = segment.sourceEnd - segment.sourceStart;
    profile.rate = 1 / segment.speed;
    const double ramp = std::min(profile.length / 3, rampDuration * segment.speed * 0.5);
    if (index > 0 && touches(segments[index - 1], segment)) {
        profile.rampIn = ramp;
        profile.previousRate = 1 / segments[index - 1].speed;
    }
    if (index + 1 < segments.size() && touches(segment, segments[index + 1])) {
        profile.rampOut = ramp;
        profile.nextRate = 1 / segments[index + 1].speed;
    }
    return profile;
}

/// The neighbouring pair that `value` falls between. A value equal to knots goes behind the last of
/// them; any list of two or more, also one that is not ascending, gives a valid pair.
std::pair<std::size_t, std::size_t> bracket(const std::vector<double>& values, double value)
{
    std::size_t lo = 0;
    std::size_t hi = values.size() - 1;
    while (hi - lo > 1) {
        const std::size_t mid = (lo + hi) / 2;
        (values[mid] <= value ? lo : hi) = mid;
    }
    return {lo, hi};
}

/// Steps of about `kKnotSpacing`, at least two. A length no recording has is refused before it
/// fills the memory.
std::size_t stepCount(double length)
{
    constexpr double kMostSteps = 1e8;
    const double steps = length / kKnotSpacing;
    if (!(steps < kMostSteps)) {
        throw Error(ErrorCode::kUndecodable, "a kept stretch of the recording is impossibly long");
    }
    return steps < 2 ? 2 : static_cast<std::size_t>(steps);
}

} // namespace

RemapCurve::RemapCurve(std::vector<SpeedSegment> segments, double rampDuration)
{
    std::ranges::stable_sort(segments, {}, &SpeedSegment::sourceStart);
    double accumulated = 0;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const RateProfile profile = rateProfile(segments, i, rampDuration);
        const double start = segments[i].sourceStart;
        const bool continues = i > 0 && touches(segments[i - 1], segments[i]);
        if (!continues) {
            m_src.push_back(start);
            m_out.push_back(accumulated);
        }
        const std::size_t steps = stepCount(profile.length);
        double previousPosition = 0;
        double previousRate = profile.at(0);
        for (std::size_t k = 1; k <= steps; ++k) {
            const double position =
                profile.length * static_cast<double>(k) / static_cast<double>(steps);
            const double rate = profile.at(position);
            accumulated += (position - previousPosition) * (previousRate + rate) * 0.5;
            previousPosition = position;
            previousRate = rate;
            m_src.push_back(start + position);
            m_out.push_back(accumulated);
        }
    }
    m_outputDuration = accumulated;
}

double RemapCurve::sourceTime(double outputTime) const
{
    if (m_out.empty()) {
        return 0;
    }
    if (outputTime <= m_out.front()) {
        return m_src.front();
    }
    if (outputTime >= m_out.back()) {
        return m_src.back();
    }
    const auto [lo, hi] = bracket(m_out, outputTime);
    if (m_out[hi] - m_out[lo] < kFlat) {
        return m_src[hi];
    }
    return m_src[lo] + (outputTime - m_out[lo]) / (m_out[hi] - m_out[lo]) * (m_src[hi] - m_src[lo]);
}

double RemapCurve::outputTime(double sourceTime) const
{
    if (m_src.empty()) {
        return 0;
    }
    if (sourceTime <= m_src.front()) {
        return m_out.front();
    }
    if (sourceTime >= m_src.back()) {
        return m_out.back();
    }
    const auto [lo, hi] = bracket(m_src, sourceTime);
    if (m_src[hi] - m_src[lo] < kFlat) {
        return m_out[lo];
    }
    return m_out[lo] + (sourceTime - m_src[lo]) / (m_src[hi] - m_src[lo]) * (m_out[hi] - m_out[lo]);
}

bool RemapCurve::contains(double sourceTime) const
{
    if (m_src.empty() || sourceTime < m_src.front() || sourceTime > m_src.back()) {
        return false;
    }
    const auto [lo, hi] = bracket(m_src, sourceTime);
    if (m_out[hi] - m_out[lo] >= kFlat) {
        return true;
    }
    return m_src[hi] - m_src[lo] <= kSeamTolerance;
}

} // namespace zento
