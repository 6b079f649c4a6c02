#include "Zento/Presentation/StripMarks.h"

#include <QPainter>
#include <QPen>
#include <QVariantMap>

#include <cmath>

namespace zento {
namespace {

constexpr double kLineDistance = 10;
constexpr double kLineWidth = 3;
constexpr qreal kDash = 3;
constexpr qreal kDashGap = 2;
constexpr double kCutDash = 4;
constexpr double kCutDashEvery = 7;
constexpr double kCornerReach = 4;
constexpr double kBeatRadius = 4;

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

CutMarks::CutMarks(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    connect(this, &CutMarks::marksChanged, this, [this] { update(); });
}

void CutMarks::paint(QPainter* painter)
{
    const double top = overhang();
    double last = -1;
    painter->setRenderHint(QPainter::Antialiasing);
    for (const QVariant& cut : m_cuts) {
        const QVariantMap mark = cut.toMap();
        const double x = overhang() + std::round(mark[QStringLiteral("x")].toDouble());
        if (x == last) // the same line again
            continue;
        last = x;
        for (double y = top + 2; y < height(); y += kCutDashEvery)
            painter->fillRect(QRectF(x, y, 1, kCutDash), m_color);
        const QPointF head(x + 0.5, top);
        if (mark[QStringLiteral("isOnBeat")].toBool()) {
            painter->setPen(m_edgeColor);
            painter->setBrush(m_beatColor);
            painter->drawEllipse(head, kBeatRadius, kBeatRadius);
        } else {
            painter->setPen(Qt::NoPen);
            painter->setBrush(m_cornerColor);
            painter->drawPolygon(QPolygonF(
                {head - QPointF(kCornerReach, 0),
                 head - QPointF(0, kCornerReach),
                 head + QPointF(kCornerReach, 0),
                 head + QPointF(0, kCornerReach)}));
        }
    }
}

} // namespace zento
