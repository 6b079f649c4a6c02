#pragma once

#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Picture.h"

#include <hwy/highway.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace zento {

/// Runs what is given once for every kind of processor this machine can stand for, and puts the
/// best one back.
template <typename Body>
void forEachTarget(Body body)
{
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        body(std::string(hwy::TargetName(target)));
        hwy::SetSupportedTargetsForTest(0);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
}

/// A plane with memory of exactly its size, so that a sanitizer sees what is read beyond it.
template <typename Sample>
class OwnedPlane {
public:
    OwnedPlane(int width, int height, int value = 0)
        : m_samples(std::size_t(width) * std::size_t(height), static_cast<Sample>(value))
        , m_view{m_samples.data(), width, height, width}
    {
    }
    OwnedPlane(const OwnedPlane& other)
        : m_samples(other.m_samples)
        , m_view{m_samples.data(), other.m_view.width, other.m_view.height, other.m_view.stride}
    {
    }
    OwnedPlane& operator=(const OwnedPlane&) = delete;
    ~OwnedPlane() = default;

    Plane<Sample> view() { return m_view; }
    Plane<const Sample> view() const { return m_view; }
    Sample& at(int x, int y) { return m_view.row(y)[x]; }
    Sample at(int x, int y) const { return m_view.row(y)[x]; }
    const std::vector<Sample>& samples() const { return m_samples; }

private:
    std::vector<Sample> m_samples;
    Plane<Sample> m_view;
};

template <typename Sample>
OwnedPlane<Sample> noise(int width, int height, int limit, unsigned seed = 1)
{
    OwnedPlane<Sample> plane(width, height);
    std::mt19937 random(seed);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            plane.at(x, y) = static_cast<Sample>(random() % unsigned(limit));
        }
    }
    return plane;
}

/// The centre of gravity of what differs from `ground`, in samples.
inline Vec2 centroid(const Plane<const std::uint8_t>& plane, int ground = 0)
{
    double sum = 0;
    Vec2 moment;
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            const double weight = plane.row(y)[x] - ground;
            sum += weight;
            moment.x += weight * (x + 0.5);
            moment.y += weight * (y + 0.5);
        }
    }
    return {moment.x / sum, moment.y / sum};
}

inline std::vector<std::uint8_t> samplesOf(const ConstPictureView& picture)
{
    std::vector<std::uint8_t> all;
    for (const Plane<const std::uint8_t>& plane : picture.planes) {
        for (int y = 0; y < plane.height; ++y) {
            all.insert(all.end(), plane.row(y), plane.row(y) + plane.width);
        }
    }
    return all;
}

} // namespace zento
