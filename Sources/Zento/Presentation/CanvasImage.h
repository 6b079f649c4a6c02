#pragma once

#include "ZentoImaging/Canvas.h"

namespace zento {

/// A canvas with its corners rounded off; `radius` in pixels, [0, ∞).
Canvas rounded(const Canvas& canvas, double radius);

} // namespace zento
