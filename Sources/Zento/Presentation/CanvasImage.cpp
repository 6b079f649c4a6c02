#include "Zento/Presentation/CanvasImage.h"

#include <cstring>

namespace zento {

QImage toImage(const Canvas& canvas)
{
    QImage image(canvas.width(), canvas.height(), QImage::Format_ARGB32_Premultiplied);
    const auto pixels = canvas.pixels();
    for (int y = 0; y < canvas.height(); ++y)
        std::memcpy(
            image.scanLine(y),
            pixels.row(y),
            static_cast<std::size_t>(canvas.width()) * sizeof(std::uint32_t));
    return image;
}

Canvas rounded(const Canvas& canvas, double radius)
{
    Canvas result(canvas.width(), canvas.height());
    result.clip(Path().roundedRect(canvas.bounds(), radius));
    result.drawImage(canvas, canvas.bounds(), Interpolation::Nearest);
    return result;
}

} // namespace zento
