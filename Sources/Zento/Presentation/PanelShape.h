#pragma once

#include <QObject>
#include <QPointer>
#include <QWindow>
#include <QtQml/qqmlregistration.h>

namespace zento {

/// Gives a floating window round corners where nothing blends windows: there what is transparent
/// would be black, so the window is cut to the panel's form, and has no room for a shadow.
///
/// Threading: the main thread.
class PanelShape : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QWindow* window READ window WRITE setWindow NOTIFY changed)
    Q_PROPERTY(qreal radius MEMBER m_radius NOTIFY changed)
    /// The desktop blends windows; nothing is cut. As it was when the program started.
    Q_PROPERTY(bool isBlended READ isBlended CONSTANT)

public:
    explicit PanelShape(QObject* parent = nullptr);

    QWindow* window() const { return m_window; }
    void setWindow(QWindow* window);
    static bool isBlended();

Q_SIGNALS:
    void changed();

private:
    void cut();

    QPointer<QWindow> m_window;
    qreal m_radius = 0;
};

} // namespace zento
