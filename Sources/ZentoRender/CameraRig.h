#pragma once

#include "ZentoCore/EditPlan.h"

#include <vector>

namespace zento {

/// A damped spring that chases a target.
struct Spring {
    double value = 0;
    double velocity = 0; // per second
    double omega = 0;    // natural angular frequency, radians per second
    double zeta = 1;     // damping ratio; 1 is critical

    /// One semi-implicit Euler step of `dt` seconds.
    void step(double target, double dt);
};

/// Turns the plan's camera keyframes, a step function, into smooth motion: three springs chase the
/// keyframe that is in force.
///
/// A rig is driven once per frame and cannot seek. The path depends on the step, so a camera at a
/// given time is reached by replaying the same steps from the start, or from springs that were kept
/// on the way.
///
/// Threading: a value; every user owns a copy.
class CameraRig {
public:
    struct State {
        Vec2 center;     // source pixels, origin at the top-left, y down
        double zoom = 1; // [0.2, ∞)
        bool operator==(const State&) const = default;
    };

    /// All that a step changes: what is put back goes on to the bit as it did before.
    struct Springs {
        Spring cx;
        Spring cy;
        Spring zoom; // not floored: only the reported zoom is
    };

    /// Keyframes in any order. The springs start at rest on the earliest one, so that a film never
    /// opens with a move; without keyframes they rest in the middle of the source at zoom 1.
    CameraRig(std::vector<CameraKeyframe> keyframes, double sourceWidth, double sourceHeight);

    /// Advances by `dt` seconds towards the keyframe in force at `tOut`.
    State step(double tOut, double dt);

    const Springs& springs() const { return m_springs; }
    void putBack(const Springs& springs) { m_springs = springs; }

    State state() const;

private:
    const CameraKeyframe* target(double time) const;

    std::vector<CameraKeyframe> m_keyframes; // ascending by tOut, in the order given where equal
    Springs m_springs;
};

} // namespace zento
