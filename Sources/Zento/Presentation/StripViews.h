#pragma once

#include "Zento/Model/TimelineMedia.h"

#include <QColor>
#include <QList>
#include <QPointer>
#include <QQuickPaintedItem>

namespace zento {

/// What the strips of the timeline draw of a `TimelineMedia`. Threading: the main thread.
class StripView : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QObject* media READ media WRITE setMedia NOTIFY mediaChanged)

public:
    using QQuickPaintedItem::QQuickPaintedItem;

    QObject* media() const { return m_media; }
    void setMedia(QObject* media);

Q_SIGNALS:
    void mediaChanged();

protected:
    const TimelineMedia* source() const { return m_media; }

private:
    QPointer<TimelineMedia> m_media;
};

/// The film's pictures side by side: as many as have room at 82 pixels and more each.
class ThumbnailStrip : public StripView {
    Q_OBJECT
    QML_ELEMENT

public:
    using StripView::StripView;
    void paint(QPainter* painter) override;
};

/// Levels as mirrored bars, one for each.
class LevelBars : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<qreal> levels MEMBER m_levels NOTIFY levelsChanged) // [0, 1]
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorChanged)

public:
    explicit LevelBars(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void levelsChanged();
    void colorChanged();

private:
    QList<qreal> m_levels;
    QColor m_color;
};

/// The sound as mirrored bars, one for each bin.
class WaveformStrip : public StripView {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorChanged)

public:
    explicit WaveformStrip(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void colorChanged();

private:
    QColor m_color;
};

} // namespace zento
