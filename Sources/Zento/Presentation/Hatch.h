#pragma once

#include <QColor>
#include <QQuickPaintedItem>

namespace zento {

/// A veil with slanted lines on it: what is taken from a film. The same as a QML canvas would leave
/// what was in the window before standing for as long as it has painted nothing itself.
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

} // namespace zento
