#include "Zento/Presentation/ShadowProvider.h"

#include "Zento/Model/PictureImage.h"
#include "Zento/Presentation/CanvasImage.h"
#include "ZentoImaging/Canvas.h"

#include <QColor>

namespace zento {

ShadowProvider::ShadowProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QImage ShadowProvider::requestImage(const QString& id, QSize* size, const QSize&)
{
    const int blur = id.section(QLatin1Char('/'), 0, 0).toInt();
    const int radius = id.section(QLatin1Char('/'), 1, 1).toInt();
    const QColor color(QLatin1Char('#') + id.section(QLatin1Char('/'), 2, 2));
    const int side = 2 * (blur + radius) + 1;
    Canvas canvas(side, side);
    const double inner = side - 2.0 * blur;
    canvas.fill(
        Path().roundedRect({double(blur), double(blur), inner, inner}, radius),
        Color{color.redF(), color.greenF(), color.blueF(), color.alphaF()});
    canvas.blur(blur / 2.0);
    *size = QSize(side, side);
    return toImage(canvas);
}

} // namespace zento
