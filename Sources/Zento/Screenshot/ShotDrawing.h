#pragma once

#include "Zento/Screenshot/ShotEditing.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoRender/Screenshot/ShotComposer.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace zento {

/// What becomes of a shot.
struct ShotLook {
    ShotDocument document;
    ShotStyle style;

    bool operator==(const ShotLook&) const = default;
};

/// A shot for the screen: a copy of few pixels, drawn as the whole image will be.
struct DisplayShot {
    static constexpr int kMostWidth = 1600;    // pixels
    static constexpr double kMostPixels = 8e6; // a page that was scrolled may be very tall

    std::shared_ptr<const Canvas> base;
    double scale = 1; // (0, 1]: its pixels for one of the image

    static DisplayShot of(const std::shared_ptr<const Canvas>& image);
};

/// Draws a shot again and again while its document changes, and keeps what stays.
///
/// Threading: one thread at a time.
class ShotDrawing {
public:
    explicit ShotDrawing(DisplayShot shot);

    Canvas draw(const ShotDocument& document, const ShotStyle& style);

private:
    struct Frame {
        ShotStyle style;
        int width = 0;
        int height = 0;
        ShotFrame frame;
    };

    DisplayShot m_shot;
    std::optional<Frame> m_frame;
};

/// The finished picture at full resolution.
Canvas flattened(const Canvas& image, const ShotDocument& document, const ShotStyle& style);

} // namespace zento
