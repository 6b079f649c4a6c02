#pragma once

#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Picture.h"
#include "ZentoMedia/VideoFrame.h"

#include <QImage>

namespace zento {

/// A copy of a canvas's pixels. Threading: any.
QImage toImage(const Canvas& canvas);

/// An opaque copy of a film's picture as the window shows it. Threading: any.
QImage toImage(const ConstPictureView& picture);

/// A recording's picture scaled to a height in pixels.
QImage toImage(const VideoFrame& frame, int height);

} // namespace zento
