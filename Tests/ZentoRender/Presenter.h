#pragma once

#include "ZentoImaging/Convert.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoMedia/VideoFrame.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace zento {

/// A photograph of a person, 400 × 400. The face's middle is at (186, 99), the backdrop beside it.
inline Picture presenter()
{
    return toPicture(loadImage(ZENTO_ASSETS "/demo/presenter.jpg"), Layout::Yuv420);
}

/// A picture as a webcam gives it.
inline VideoFrame webcamFrame(Picture picture, std::uint64_t identity = 1)
{
    const auto shared = std::make_shared<const Picture>(std::move(picture));
    return {shared->yuv(), shared, 0, identity};
}

} // namespace zento
