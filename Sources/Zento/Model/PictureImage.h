#pragma once

#include "ZentoImaging/Picture.h"
#include "ZentoMedia/VideoFrame.h"

#include <QImage>

namespace zento {

/// An opaque copy of a film's picture as the window shows it. Threading: any.
QImage toImage(const ConstPictureView& picture);

/// A recording's picture scaled to a height in pixels.
QImage toImage(const VideoFrame& frame, int height);

} // namespace zento
