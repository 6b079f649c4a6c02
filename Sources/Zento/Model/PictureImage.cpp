#include "Zento/Model/PictureImage.h"

#include "ZentoImaging/Convert.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zento {

QImage toImage(const Canvas& canvas)
{
    QImage image(canvas.width(), canvas.height(), QImage::Format_ARGB32_Premultiplied);
    const auto pixels = canvas.pixels();
    for (int y = 0; y < canvas.height(); ++y) {
        std::memcpy(
            image.scanLine(y),
            pixels.row(y),
            static_cast<std::size_t>(canvas.width()) * sizeof(std::uint32_t));
    }
    return image;
}

QImage toImage(const ConstPictureView& picture)
{
    QImage image = toImage(toCanvas(picture));
    image.reinterpretAsFormat(QImage::Format_RGB32);
    return image;
}

QImage toImage(const VideoFrame& frame, int height)
{
    const int width = std::max(
        static_cast<int>(std::lround(static_cast<double>(frame.width()) * height / frame.height())),
        1);
    const Picture scaled = frame.bitDepth() == 8 ? toRgb(frame.planes8(), width, height)
                                                 : toRgb(frame.planes10(), width, height);
    return toImage(scaled.view());
}

} // namespace zento
