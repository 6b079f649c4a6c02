#include "Zento/Presentation/ScreenshotWindows.h"

#include "Zento/Presentation/Appearance.h"
#include "Zento/Presentation/Engine.h"
#include "Zento/Screenshot/ScreenshotEditor.h"
#include "ZentoCore/Error.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>

namespace zento {

ScreenshotWindows::ScreenshotWindows(QQmlEngine* engine)
    : m_engine(engine)
{
}

ScreenshotWindows::~ScreenshotWindows()
{
    qDeleteAll(findChildren<QQuickWindow*>(Qt::FindDirectChildrenOnly)); // before their engine
}

void ScreenshotWindows::open(ScreenshotEditor* editor)
{
    if (!m_engine) {
        m_own = std::make_unique<QQmlEngine>();
        m_engine = m_own.get();
        prepareEngine(*m_engine, nullptr);
        appearance(*m_engine)->followDesktop();
        QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
    }
    if (!m_component)
        m_component = std::make_unique<QQmlComponent>(
            m_engine,
            QUrl(QStringLiteral("qrc:/qt/qml/Zento/qml/Screenshot/ScreenshotWindow.qml")));
    QObject* const window = m_component->createWithInitialProperties(
        {{QStringLiteral("editor"), QVariant::fromValue<QObject*>(editor)}});
    if (!window)
        throw Error(
            ErrorCode::kUndecodable,
            "The screenshot's window could not be made: "
                + m_component->errorString().toStdString());
    ++m_openCount;
    window->setParent(this);
    connect(editor, &ScreenshotEditor::closed, window, &QObject::deleteLater); // before the editor
    connect(editor, &ScreenshotEditor::closed, this, [this] {
        if (--m_openCount == 0)
            Q_EMIT lastClosed();
    });
    if (auto* const shown = qobject_cast<QQuickWindow*>(window)) {
        shown->show();
        shown->raise();
        shown->requestActivate();
    }
}

} // namespace zento
