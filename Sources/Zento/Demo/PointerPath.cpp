#include "Zento/Demo/PointerPath.h"

#include "Zento/Demo/Random.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zento {

namespace {

constexpr double kLongWay = 220;          // pixels; below it a hand hits at once
constexpr double kTremorPixels = 0.5;     // at most, half way
constexpr double kCorrectionShare = 0.24; // of the whole time

/// One movement from rest to rest.
struct Stroke {
    Vec2 from;
    Vec2 to;
    double bend = 0; // pixels aside of the straight line, half way
};

/// How far a minimum-jerk movement has come at the share `s` of its time.
double travelled(double s)
{
    return s * s * s * (10 + s * (6 * s - 15));
}

Vec2 along(const Stroke& stroke, double s)
{
    const double share = travelled(s);
    const double dx = stroke.to.x - stroke.from.x;
    const double dy = stroke.to.y - stroke.from.y;
    const double length = std::max(std::hypot(dx, dy), 1.0);
    const double aside = stroke.bend * 4 * share * (1 - share) / length;
    return {stroke.from.x + dx * share - dy * aside, stroke.from.y + dy * share + dx * aside};
}

/// A tremor that vanishes at both ends of the movement.
class Tremor {
public:
    explicit Tremor(Random& random)
        : m_phaseX(random.between(0, 2 * std::numbers::pi))
        , m_phaseY(random.between(0, 2 * std::numbers::pi))
        , m_frequency(random.between(8, 11)) // hertz: a resting hand's physiological tremor
    {
    }

    Vec2 at(double time, double share) const
    {
        const double size = kTremorPixels * 4 * share * (1 - share);
        const double turn = 2 * std::numbers::pi * m_frequency * time;
        return {size * std::sin(turn + m_phaseX), size * std::sin(turn + m_phaseY)};
    }

private:
    double m_phaseX;
    double m_phaseY;
    double m_frequency;
};

/// Where the first movement of a long way ends: a little too far, a little aside, never outside
/// what a correction covers unnoticed.
Vec2 firstAim(Vec2 from, Vec2 to, double distance, Random& random)
{
    const double past = std::min(distance * random.between(0.008, 0.022), 14.0) / distance;
    const double aside = past * random.between(-0.5, 0.5);
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    return {to.x + dx * past - dy * aside, to.y + dy * past + dx * aside};
}

void append(
    std::vector<PathPoint>& path,
    const Stroke& stroke,
    double start,
    double duration,
    const Tremor& tremor)
{
    const auto count = std::max(1L, std::lround(duration * kPathRate));
    for (long i = 1; i <= count; ++i) {
        const double share = static_cast<double>(i) / static_cast<double>(count);
        const double time = start + share * duration;
        const Vec2 shake = tremor.at(time, share);
        const Vec2 place = along(stroke, share);
        path.push_back({time, {place.x + shake.x, place.y + shake.y}});
    }
}

} // namespace

double pointingSeconds(double distance, double targetSize)
{
    return 0.16 + 0.135 * std::log2(distance / std::max(targetSize, 1.0) + 1);
}

std::vector<PathPoint> pointerPath(Vec2 from, Vec2 to, double targetSize, Random& random)
{
    const double distance = std::hypot(to.x - from.x, to.y - from.y);
    const double duration = pointingSeconds(distance, targetSize) * random.between(0.92, 1.12);
    const double side = random.between(0, 1) < 0.5 ? -1 : 1;
    const double bend = side * distance * random.between(0.03, 0.07);
    const Tremor tremor(random);
    std::vector<PathPoint> path{{0, from}};
    if (distance < kLongWay) {
        append(path, {from, to, bend}, 0, duration, tremor);
    } else {
        const Vec2 aim = firstAim(from, to, distance, random);
        const double first = duration * (1 - kCorrectionShare);
        append(path, {from, aim, bend}, 0, first, tremor);
        append(path, {aim, to, 0}, first, duration - first, tremor);
    }
    path.back().position = to;
    return path;
}

} // namespace zento
