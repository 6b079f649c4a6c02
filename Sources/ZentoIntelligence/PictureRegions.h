#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoMedia/VideoFrame.h"

#include <vector>

namespace zento {

/// The upright rectangles a person would see in a picture of a screen: cards, panels, fields,
/// windows. Each is a flat area with an outline, or an area full of detail with one.
///
/// Threading: a value; reading is safe from any thread. Building one takes about 15 ms for a
/// picture looked at in 1920 x 1080.
class PictureRegions {
public:
    static constexpr std::size_t kMost = 16;
    static constexpr double kLeastConfidence = 0.3; // share of each side that must be seen
    static constexpr double kLeastSide = 0.05;      // of the picture's shorter side
    static constexpr double kLeastAspect = 0.1;     // shorter side over longer side

    /// `seen`: the size in which the picture is looked at, not larger than its own.
    PictureRegions(const VideoFrame& picture, const VideoSize& seen);

    VideoSize size() const { return m_size; } // `seen`

    /// Those that hold a place, or pass it by no more than a fiftieth of their size: the ones with
    /// the best outlines, at most `kMost`, best first. In pixels of `size`.
    std::vector<Rect> around(Vec2 place) const;

private:
    VideoSize m_size;
    std::vector<Rect> m_regions; // best outline first
};

/// Whether a rectangle, grown by a fiftieth of its size on every side, holds a place.
bool holds(const Rect& rect, Vec2 place);

} // namespace zento
