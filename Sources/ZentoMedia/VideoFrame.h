#pragma once

#include "ZentoCore/Plane.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <variant>

namespace zento {

/// The size of a picture in pixels.
struct VideoSize {
    int width = 0;
    int height = 0;

    bool operator==(const VideoSize&) const = default;
};

/// One picture of a movie: an immutable reference, cheap to copy, that keeps the samples alive.
///
/// Samples are BT.709, limited range, chroma sited left. They hold 8 bits in 4:2:0 or 4:2:2, or
/// 10 bits in 4:2:2 or 4:2:0, as the sizes of the planes tell. Rows are not padded with valid
/// samples: read nothing beyond a plane's width.
///
/// Threading: the samples never change, so copies may be read on any threads.
class VideoFrame {
public:
    /// A reference to somebody's samples: `owner` keeps them alive and unchanged.
    /// `time`: seconds. `identity`: equal in two frames of one source only if their samples are.
    VideoFrame(
        YuvPlanes<const std::uint8_t> planes,
        std::shared_ptr<const void> owner,
        double time,
        std::uint64_t identity)
        : m_planes(planes)
        , m_owner(std::move(owner))
        , m_time(time)
        , m_identity(identity)
    {
    }

    VideoFrame(
        YuvPlanes<const std::uint16_t> planes,
        std::shared_ptr<const void> owner,
        double time,
        std::uint64_t identity)
        : m_planes(planes)
        , m_owner(std::move(owner))
        , m_time(time)
        , m_identity(identity)
    {
    }

    int width() const
    {
        return std::visit([](const auto& planes) { return planes.y.width; }, m_planes);
    }
    int height() const
    {
        return std::visit([](const auto& planes) { return planes.y.height; }, m_planes);
    }
    VideoSize size() const { return {width(), height()}; }

    double time() const { return m_time; } // presentation time, seconds

    /// Two frames of one decoder with equal identity hold the same picture; the reverse need not
    /// hold. Identities of different decoders have nothing to do with each other.
    std::uint64_t identity() const { return m_identity; }

    int bitDepth() const { return m_planes.index() == 0 ? 8 : 10; }

    /// Only of a frame of 8 bits; throws std::bad_variant_access for another.
    const YuvPlanes<const std::uint8_t>& planes8() const { return std::get<0>(m_planes); }

    /// Only of a frame of 10 bits; throws std::bad_variant_access for another.
    const YuvPlanes<const std::uint16_t>& planes10() const { return std::get<1>(m_planes); }

    /// What keeps the samples alive: for handing the planes on to a longer life than this frame's.
    const std::shared_ptr<const void>& owner() const { return m_owner; }

    /// The same picture shown at another time.
    VideoFrame retimed(double newTime) const
    {
        VideoFrame frame = *this;
        frame.m_time = newTime;
        return frame;
    }

private:
    std::variant<YuvPlanes<const std::uint8_t>, YuvPlanes<const std::uint16_t>> m_planes;
    std::shared_ptr<const void> m_owner;
    double m_time = 0;
    std::uint64_t m_identity = 0;
};

} // namespace zento
