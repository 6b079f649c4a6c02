#include "Zento/Presentation/PanelShape.h"

#include "Zento/Desktop/Compositor.h"

#include <QGuiApplication>
#include <QPainterPath>
#include <QRegion>

namespace zento {

PanelShape::PanelShape(QObject* parent)
    : QObject(parent)
{
    connect(this, &PanelShape::changed, this, &PanelShape::cut);
}

bool PanelShape::isBlended()
{
    static const bool kIsBlended =
        QGuiApplication::platformName() != QStringLiteral("xcb") || blendsWindows();
    return kIsBlended;
}

void PanelShape::setWindow(QWindow* window)
{
    m_window = window;
    if (window) {
        connect(window, &QWindow::widthChanged, this, &PanelShape::cut);
        connect(window, &QWindow::heightChanged, this, &PanelShape::cut);
    }
    Q_EMIT changed();
}

void PanelShape::cut()
{
    if (!m_window || isBlended())
        return;
    QPainterPath path;
    path.addRoundedRect(QRectF({}, QSizeF(m_window->size())), m_radius, m_radius);
    m_window->setMask(QRegion(path.toFillPolygon().toPolygon()));
}

} // namespace zento
