#pragma once

#include "ZentoImaging/Canvas.h"

#include <QImage>

namespace zento {

/// A copy of a canvas's pixels.
QImage toImage(const Canvas& canvas);

/// A canvas with its corners rounded off; `radius` in pixels, [0, ∞).
Canvas rounded(const Canvas& canvas, double radius);

} // namespace zento
