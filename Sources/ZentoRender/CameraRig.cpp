#include "ZentoRender/CameraRig.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zento {
namespace {

constexpr double kPanOmega = 6.5;
constexpr double kZoomOmega = 4.3; // slower than the pan
constexpr double kMinimumZoom = 0.2;

Spring springAt(double value, double omega)
{
    return {.value = value, .velocity = 0, .omega = omega, .zeta = 1};
}

} // namespace

void Spring::step(double target, double dt)
{
    const double acceleration = velocity * (omega * (zeta * -2)) - omega * omega * (value - target);
    velocity += dt * acceleration;
    value += dt * velocity; // the velocity just updated: this is what keeps the step stable
}

CameraRig::CameraRig(std::vector<CameraKeyframe> keyframes, double sourceWidth, double sourceHeight)
    : m_keyframes(std::move(keyframes))
{
    std::ranges::stable_sort(m_keyframes, {}, &CameraKeyframe::tOut);
    const CameraKeyframe start =
        m_keyframes.empty()
            ? CameraKeyframe{.tOut = 0, .center = {sourceWidth * 0.5, sourceHeight * 0.5}}
            : m_keyframes.front();
    m_springs.cx = springAt(start.center.x, kPanOmega);
    m_springs.cy = springAt(start.center.y, kPanOmega);
    m_springs.zoom = springAt(start.zoom, kZoomOmega);
}

CameraRig::State CameraRig::step(double tOut, double dt)
{
    if (const CameraKeyframe* goal = target(tOut)) {
        m_springs.cx.step(goal->center.x, dt);
        m_springs.cy.step(goal->center.y, dt);
        m_springs.zoom.step(goal->zoom, dt);
    }
    return state();
}

CameraRig::State CameraRig::state() const
{
    return {
        .center = {m_springs.cx.value, m_springs.cy.value},
        .zoom = std::max(m_springs.zoom.value, kMinimumZoom)};
}

/// The last one that has begun, or else the first.
const CameraKeyframe* CameraRig::target(double time) const
{
    if (m_keyframes.empty())
        return nullptr;
    const auto later = std::ranges::upper_bound(m_keyframes, time, {}, &CameraKeyframe::tOut);
    return later == m_keyframes.begin() ? &m_keyframes.front() : &*std::prev(later);
}

} // namespace zento
