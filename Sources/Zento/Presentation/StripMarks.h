#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QVariantList>

namespace zento {

/// A veil with slanted lines on it: what is taken from a film. No QML canvas, which shows what was
/// in the window before until it has painted for the first time.
class Hatch : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor veil MEMBER m_veil NOTIFY colorsChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorsChanged) // of the lines

public:
    explicit Hatch(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void colorsChanged();

private:
    QColor m_veil;
    QColor m_color;
};

/// The outline of something that is switched off.
class DashedFrame : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY shapeChanged)
    Q_PROPERTY(qreal radius MEMBER m_radius NOTIFY shapeChanged)

public:
    explicit DashedFrame(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void shapeChanged();

private:
    QColor m_color;
    qreal m_radius = 0;
};

/// The cuts of a film: dashed lines with a corner on top, or a dot where they are on a beat. One
/// item for all, because a film of hours has thousands.
class CutMarks : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QVariantList cuts MEMBER m_cuts NOTIFY marksChanged) // {x, isOnBeat}, left to right
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY marksChanged)
    Q_PROPERTY(QColor cornerColor MEMBER m_cornerColor NOTIFY marksChanged)
    Q_PROPERTY(QColor beatColor MEMBER m_beatColor NOTIFY marksChanged)
    Q_PROPERTY(QColor edgeColor MEMBER m_edgeColor NOTIFY marksChanged) // around a dot
    /// By how much the item is larger than the strip, left, right and on top.
    Q_PROPERTY(int overhang READ overhang CONSTANT)

public:
    explicit CutMarks(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;
    int overhang() const { return 5; }

Q_SIGNALS:
    void marksChanged();

private:
    QVariantList m_cuts;
    QColor m_color;
    QColor m_cornerColor;
    QColor m_beatColor;
    QColor m_edgeColor;
};

} // namespace zento
