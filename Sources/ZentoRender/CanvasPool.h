#pragma once

#include "ZentoImaging/Picture.h"

#include <memory>

namespace zento {

/// Hands out pictures of one size and takes them back when their last owner lets go, so that a film
/// allocates a handful of pictures and not one a frame.
///
/// Threading: `acquire` from one thread; pictures may be let go on any, also after the pool is
/// gone.
class CanvasPool {
public:
    /// 4:2:0 pictures of that size in pixels.
    CanvasPool(int width, int height);

    /// A picture with any content.
    std::shared_ptr<Picture> acquire();

private:
    struct Idle;
    int m_width;
    int m_height;
    std::shared_ptr<Idle> m_idle;
};

} // namespace zento
