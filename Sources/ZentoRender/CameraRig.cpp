#include "ZentoRender/CameraRig.h"

#include <algorithm>
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
    m_cx = springAt(start.center.x, kPanOmega);
    m_cy = springAt(start.center.y, kPanOmega);
    m_zoom = springAt(start.zoom, kZoomOmega);
}

CameraRig::State CameraRig::step(double tOut, double dt)
{
    if (const CameraKeyframe* goal = target(tOut)) {
        m_cx.step(goal->center.x, dt);
        m_cy.step(goal->center.y, dt);
        m_zoom.step(goal->zoom, dt);
    }
    return {.center = {m_cx.value, m_cy.value}, .zoom = std::max(m_zoom.value, kMinimumZoom)};
}

const CameraKeyframe* CameraRig::target(double time) const
{
    if (m_keyframes.empty())
        return nullptr;
    const CameraKeyframe* inForce = &m_keyframes.front();
    for (const CameraKeyframe& keyframe : m_keyframes) {
        if (keyframe.tOut > time)
            break;
        inForce = &keyframe;
    }
    return inForce;
}

} // namespace zento
