#include "Zento/Presentation/StripViews.h"

#include <QPainter>

#include <algorithm>

namespace zento {
namespace {

constexpr double kLeastPictureWidth = 82;
constexpr double kBarShare = 0.62; // of a bin's width

template <typename Levels>
void drawBars(QPainter& painter, const Levels& levels, QSizeF size, const QColor& color)
{
    const double each = size.width() / static_cast<double>(levels.size());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    double x = 0;
    for (const auto level : levels) {
        const double bar = std::max(std::clamp<double>(level, 0, 1) * size.height(), 1.0);
        painter.drawRect(
            QRectF(x, (size.height() - bar) / 2, std::max(each * kBarShare, 1.0), bar));
        x += each;
    }
}

} // namespace

void StripView::setMedia(QObject* media)
{
    auto* const strips = qobject_cast<TimelineMedia*>(media);
    if (m_media == strips)
        return;
    if (m_media)
        disconnect(m_media, nullptr, this, nullptr);
    m_media = strips;
    if (strips) {
        connect(strips, &TimelineMedia::thumbnailsChanged, this, [this] { update(); });
        connect(strips, &TimelineMedia::waveformChanged, this, [this] { update(); });
    }
    update();
    Q_EMIT mediaChanged();
}

void ThumbnailStrip::paint(QPainter* painter)
{
    if (source() == nullptr || source()->thumbnails().empty())
        return;
    const auto& pictures = source()->thumbnails();
    const int cells =
        std::clamp(static_cast<int>(width() / kLeastPictureWidth), 1, TimelineMedia::kThumbnails);
    const double cellWidth = width() / cells;
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    for (int i = 0; i < cells; ++i) {
        const auto middle =
            static_cast<std::size_t>((i + 0.5) / cells * static_cast<double>(pictures.size()));
        const QImage& picture = pictures[std::min(middle, pictures.size() - 1)];
        const QRectF cell(i * cellWidth, 0, cellWidth, height());
        const QSizeF fitted = QSizeF(cell.size()).scaled(picture.size(), Qt::KeepAspectRatio);
        QRectF part(QPointF(), fitted); // what fills the cell, from the middle
        part.moveCenter(QRectF(picture.rect()).center());
        painter->drawImage(cell, picture, part);
    }
}

LevelBars::LevelBars(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    connect(this, &LevelBars::levelsChanged, this, [this] { update(); });
    connect(this, &LevelBars::colorChanged, this, [this] { update(); });
}

void LevelBars::paint(QPainter* painter)
{
    if (!m_levels.isEmpty())
        drawBars(*painter, m_levels, size(), m_color);
}

WaveformStrip::WaveformStrip(QQuickItem* parent)
    : StripView(parent)
{
    connect(this, &WaveformStrip::colorChanged, this, [this] { update(); });
}

void WaveformStrip::paint(QPainter* painter)
{
    if (source() == nullptr || source()->waveform().empty())
        return;
    drawBars(*painter, source()->waveform(), size(), m_color);
}

} // namespace zento
