#include "Zento/Presentation/IconProvider.h"

#include <QColor>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace zento {
namespace {

constexpr QSize kGrid{20, 20}; // the icons' own size

}

IconProvider::IconProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

// The renderer knows no `currentColor`: the word is replaced in the file's text.
QImage IconProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    const QColor color(QLatin1Char('#') + id.section(QLatin1Char('/'), 1, 1));
    QFile file(
        QStringLiteral(":/icons/") + id.section(QLatin1Char('/'), 0, 0) + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray svg =
        file.readAll().replace("currentColor", color.name(QColor::HexRgb).toLatin1());
    const QSize pixels = requestedSize.isValid() ? requestedSize : kGrid;
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(color.alphaF());
    QSvgRenderer(svg).render(&painter);
    painter.end();
    *size = pixels;
    return image;
}

} // namespace zento
