#pragma once

#include "ZentoCore/Geometry.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace zento {

/// Where the pointer was at a moment.
struct PointerSample {
    double time = 0; // seconds of CLOCK_MONOTONIC
    Vec2 point;      // global points
    bool operator==(const PointerSample&) const = default;
};

/// The pointer's way over the last seconds, as far as the pictures that a desktop sends tell it.
///
/// A picture, and the place that comes with it, arrives some time after the moment it shows. So the
/// place at a moment is asked for a little later, by `kDelay`, and is then that of the picture.
///
/// Threading: safe.
class PointerTrack {
public:
    /// How late the place of a moment may arrive: 14 to 33 ms were measured.
    static constexpr double kDelay = 0.06; // seconds

    /// The pointer is at `point` from `time` on, until the next call. A time before that of the
    /// last call is taken for that.
    void add(double time, Vec2 point);

    /// Nothing before the first `add`. Between two samples of a movement it is on the way from one
    /// to the other; after a rest it leaves at once.
    std::optional<Vec2> at(double time) const;

    std::optional<Vec2> newest() const;

private:
    mutable std::mutex m_mutex;
    std::deque<PointerSample> m_samples; // by time
};

} // namespace zento
