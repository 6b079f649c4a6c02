#include "Zento/Presentation/Windows.h"

#include "Zento/Presentation/Appearance.h"
#include "Zento/Presentation/Engine.h"
#include "ZentoCore/Error.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>

namespace zento {

Windows::Windows(QObject* app)
    : m_engine(std::make_unique<QQmlEngine>())
{
    prepareEngine(*m_engine, app);
    appearance(*m_engine)->followDesktop();
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
    QQmlComponent component(
        m_engine.get(), QUrl(QStringLiteral("qrc:/qt/qml/Zento/qml/Main/Windows.qml")));
    m_root.reset(component.create());
    if (!m_root)
        throw Error(
            ErrorCode::kUndecodable,
            "The window could not be made: " + component.errorString().toStdString());
    connect(m_root.get(), SIGNAL(exportRequested()), this, SIGNAL(exportRequested()));
}

Windows::~Windows() = default;

QQuickWindow* Windows::mainWindow() const
{
    return m_root->property("main").value<QQuickWindow*>();
}

} // namespace zento
