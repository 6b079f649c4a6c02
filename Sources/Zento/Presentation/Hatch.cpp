#include "Zento/Presentation/Hatch.h"

#include <QPainter>
#include <QPen>

namespace zento {
namespace {

constexpr double kLineDistance = 10;
constexpr double kLineWidth = 3;
constexpr qreal kDash = 3;
constexpr qreal kDashGap = 2;

} // namespace

Hatch::Hatch(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    connect(this, &Hatch::colorsChanged, this, [this] { update(); });
}

void Hatch::paint(QPainter* painter)
{
    painter->fillRect(QRectF(QPointF(), size()), m_veil);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(m_color, kLineWidth));
    for (double x = -height(); x < width() + height(); x += kLineDistance)
        painter->drawLine(QPointF(x, height()), QPointF(x + height(), 0));
}

DashedFrame::DashedFrame(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    connect(this, &DashedFrame::shapeChanged, this, [this] { update(); });
}

void DashedFrame::paint(QPainter* painter)
{
    QPen pen(m_color);
    pen.setDashPattern({kDash, kDashGap});
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(pen);
    painter->drawRoundedRect(
        QRectF(QPointF(), size()).adjusted(0.5, 0.5, -0.5, -0.5), m_radius, m_radius);
}

} // namespace zento
