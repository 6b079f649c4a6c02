#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoImaging/Shapes.h"
#include "ZentoMedia/VideoFrame.h"

#include <cstdint>
#include <optional>

namespace zento {

/// The webcam in one frame.
struct WebcamLayer {
    VideoFrame frame;
    WebcamPlan plan;
};

/// The webcam's bubble worked out: what is drawn where. Equal bubbles of one webcam look the same.
struct WebcamBubble {
    RoundedRect shape; // on the canvas, square
    Rect crop;         // the square of the webcam's picture that fills it, pixels
    bool isMirrored = false;
    bool hasShadow = false;
    bool hasRing = false;
    bool isEnhanced = false;
    bool hasBlurredBackground = false;
    std::uint64_t frame = 0; // the identity of the webcam's picture

    bool operator==(const WebcamBubble&) const = default;
};

/// The bubble in its corner of a canvas of that size. A size beyond the canvas height counts as it,
/// a roundness beyond [0, 0.5] as its nearer end, a zoom below 1 as 1. Nothing for a bubble of less
/// than a pixel.
std::optional<WebcamBubble> webcamBubble(const WebcamLayer& webcam, const OutputSpec& output);

} // namespace zento
