#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoImaging/Color.h"

#include <variant>
#include <vector>

namespace zento {

struct GradientStop {
    double offset = 0; // [0, 1]
    Color color;
};

/// What a gradient shows before its first and behind its last stop.
enum class GradientExtend {
    None, // nothing
    Pad,  // the colour of the nearest stop
};

struct LinearGradientPaint {
    Vec2 from;
    Vec2 to;
    std::vector<GradientStop> stops;
    GradientExtend extend = GradientExtend::Pad;
};

/// Between two circles. A stop of offset 0 lies on the first one.
struct RadialGradientPaint {
    Vec2 center0;
    double radius0 = 0;
    Vec2 center1;
    double radius1 = 0;
    std::vector<GradientStop> stops;
    GradientExtend extend = GradientExtend::Pad;
};

/// Colours are mixed in gamma-coded, premultiplied values.
using Paint = std::variant<Color, LinearGradientPaint, RadialGradientPaint>;

/// How a drawing meets what is there.
enum class BlendMode {
    Over,     // source-over
    Multiply, // darkens: the product of both colours
    Replace,  // the canvas takes the drawing's colour and alpha where its shape covers it
};

} // namespace zento
