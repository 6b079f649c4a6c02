#pragma once

#include "ZentoCore/Geometry.h"

#include <vector>

namespace zento {

class Random;

/// Where the pointer is at a time of its way.
struct PathPoint {
    double time = 0; // seconds since the move began
    Vec2 position;   // pixels, not rounded

    bool operator==(const PathPoint&) const = default;
};

/// How often a path is sampled, per second: the rate of a common mouse.
inline constexpr double kPathRate = 125;

/// How long a hand needs for a distance to a target of that size (its shorter side), in seconds:
/// Fitts's law in Shannon's form, a + b·log2(distance/size + 1), with a = 0.16 and b = 0.135 as
/// measured for the mouse by MacKenzie and others.
double pointingSeconds(double distance, double targetSize);

/// The way of a hand from one point to another, a point every 1/`kPathRate` seconds, the last one
/// on `to` exactly.
///
/// The hand follows a minimum-jerk profile (Flash and Hogan 1985: speed is a bell), bends aside by
/// a few per cent of the distance, trembles by less than a pixel, and on a long way comes to rest
/// a little beside the target, from where a short second movement corrects it. `targetSize` is the
/// target's shorter side in pixels. The same state of `random` gives the same way.
std::vector<PathPoint> pointerPath(Vec2 from, Vec2 to, double targetSize, Random& random);

} // namespace zento
