#pragma once

#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Shadow.h"
#include "ZentoMedia/VideoFrame.h"
#include "ZentoRender/PersonMatte.h"
#include "ZentoRender/WebcamBubble.h"

#include <optional>

namespace zento {

/// Draws the webcam's bubble: its shadow, the picture through its shape, and the ring around it.
///
/// The picture, with its effects, is kept while the bubble stays equal: a film has more frames than
/// a webcam. The pixels never depend on that.
///
/// Threading: one thread at a time.
class WebcamPainter {
public:
    /// `frame` is the one the bubble was worked out for.
    void paint(const WebcamBubble& bubble, const VideoFrame& frame, const PictureView& canvas);

    /// Makes the next picture anew: for a frame of another webcam.
    void forgetLast() { m_drawn.reset(); }

private:
    void preparePicture(const WebcamBubble& bubble, const VideoFrame& frame, const Rect& bounds);
    void blurBackground(const WebcamBubble& bubble, const VideoFrame& frame, const Rect& target);

    std::optional<WebcamBubble> m_drawn; // what m_picture shows
    Picture m_picture;
    ShadowCache m_shadows;
    std::optional<PersonMatte> m_matte; // made when a bubble first asks for it
};

} // namespace zento
