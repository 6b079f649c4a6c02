#include "ZentoPresentation/Stage.h"

#include "Zento/Presentation/App.h"
#include "Zento/Presentation/Appearance.h"
#include "Zento/Presentation/Engine.h"
#include "Zento/Presentation/PictureProvider.h"
#include "ZentoCore/BackgroundCatalog.h"
#include "ZentoRender/BackgroundRenderer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlPropertyMap>
#include <QUrl>

#include <cstdlib>
#include <stdexcept>

namespace zento {
namespace {

QStringList& complaintList()
{
    static QStringList list;
    return list;
}

void keepComplaint(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    // The platform without a display says what it cannot do; that is not about the screens.
    const bool isPlatforms = message.startsWith(QStringLiteral("This plugin does not support"));
    if (type != QtDebugMsg && type != QtInfoMsg && !isPlatforms)
        complaintList().append(message);
}

/// A recording's picture that needs no film: a window of some colours on a background, told by the
/// bundle's name.
Canvas drawSketch(const QString& id, int width, int height)
{
    const QString path = QUrl::fromPercentEncoding(id.section(QLatin1Char('/'), 0, -2).toUtf8());
    const auto number =
        std::size_t(path.section(QLatin1Char('/'), -1).section(QLatin1Char('.'), 0, 0).toInt());
    const auto trios = BackgroundCatalog::trios();
    const double w = width;
    const double h = height;
    Canvas canvas =
        BackgroundRenderer::render(trios[(number + 2) % trios.size()].background, width, height);
    const Rect card{w * 0.07, h * 0.09, w * 0.86, h * 0.82};
    canvas.fill(Path().roundedRect(card, h * 0.03), Color::gray(number % 3 == 2 ? 0.1 : 0.97));
    canvas.fill(
        Path().roundedRect({w * 0.07, h * 0.09, w * 0.2, h * 0.82}, h * 0.03),
        Color::gray(number % 3 == 2 ? 0.16 : 0.91));
    for (int line = 0; line < 7; ++line)
        canvas.fill(
            Path().roundedRect(
                {w * 0.32,
                 h * (0.17 + 0.1 * line),
                 w * (0.3 + 0.06 * ((line * 7 + int(number)) % 4)),
                 h * 0.035},
                h * 0.015),
            line == 0 ? Color{0.42, 0.37, 0.91, 1} : Color::gray(number % 3 == 2 ? 0.5 : 0.72));
    return canvas;
}

bool isWaiting(QQuickItem* root)
{
    for (QQuickItem* item : itemsBelow(root))
        if (item->inherits("QQuickImageBase") && item->property("status").toInt() == 2)
            return true;
    return false;
}

std::unique_ptr<QObject> created(QQmlEngine& engine, const char* document)
{
    QQmlComponent component(
        &engine, QUrl(QStringLiteral("qrc:/testing/") + QString::fromLatin1(document)));
    std::unique_ptr<QObject> object(component.create());
    if (!object)
        throw std::runtime_error(component.errorString().toStdString());
    return object;
}

} // namespace

void useOffscreenPlatform()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("LC_ALL", "C.UTF-8");
}

Stage::Stage()
    : m_engine(std::make_unique<QQmlEngine>())
{
    complaintList().clear();
    qInstallMessageHandler(keepComplaint);
    m_app = created(*m_engine, "FakeApp.qml");
    auto settings = std::make_unique<QQmlPropertyMap>();
    const QVariantMap defaults = App::defaults().toMap();
    for (auto entry = defaults.cbegin(); entry != defaults.cend(); ++entry)
        settings->insert(entry.key(), entry.value());
    settings->insert(QStringLiteral("customBackgroundPath"), QString());
    m_app->setProperty("settings", QVariant::fromValue<QObject*>(settings.get()));
    m_settings = std::move(settings);
    prepareEngine(*m_engine, m_app.get());
    // Looking at QML that is being worked on needs no build.
    if (qEnvironmentVariableIsSet("ZENTO_QML"))
        m_engine->addImportPath(qEnvironmentVariable("ZENTO_QML"));
    m_engine->removeImageProvider(QStringLiteral("recording"));
    m_engine->addImageProvider(QStringLiteral("recording"), new PictureProvider(drawSketch, 1));
    m_engine->addImageProvider(
        QStringLiteral("window"),
        new PictureProvider(
            [](const QString& id, int, int) {
                return drawSketch(
                    id.section(QLatin1Char('/'), 0, 0) + QStringLiteral(".x/y"), 320, 180);
            },
            1));
    appearance(*m_engine)->setReducedMotion(/*reducedMotion=*/true);
    QMetaObject::invokeMethod(m_app.get(), "fill");
}

Stage::~Stage()
{
    clear();
    m_engine->collectGarbage();
    qInstallMessageHandler(nullptr);
}

QObject* Stage::part(const char* name)
{
    return m_app->property(name).value<QObject*>();
}

QObject* Stage::openEditor()
{
    m_editor = created(*m_engine, "FakeEditor.qml");
    m_app->setProperty("editor", QVariant::fromValue(m_editor.get()));
    return m_editor.get();
}

QQuickItem* Stage::show(QQmlComponent& component, QSize size, bool fill)
{
    clear();
    m_window.resize(size);
    // A component of a document sees what the document names.
    QQmlContext* const context = component.creationContext();
    std::unique_ptr<QObject> object(
        component.beginCreate(context ? context : m_engine->rootContext()));
    auto* item = qobject_cast<QQuickItem*>(object.get());
    if (!item)
        throw std::runtime_error("not an item: " + component.errorString().toStdString());
    static_cast<void>(object.release());
    m_item.reset(item);
    // In the window before it is complete: what it does then may open a sheet.
    item->setParentItem(m_window.contentItem());
    if (fill)
        item->setSize(size);
    component.completeCreate();
    m_window.show();
    m_window.requestActivate();
    settle();
    return item;
}

QQuickItem* Stage::show(const QByteArray& qml, QSize size)
{
    QQmlComponent component(m_engine.get());
    component.setData(
        "import QtQuick\nimport Zento\n" + qml, QUrl(QStringLiteral("qrc:/testing/Snippet.qml")));
    return show(component, size, /*fill=*/false);
}

void Stage::clear()
{
    m_item.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void Stage::settle()
{
    // Pictures are drawn on other threads: the only thing here that is waited for.
    for (int quietTurns = 0; quietTurns < 3;) {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (isWaiting(m_window.contentItem())) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            quietTurns = 0;
        } else {
            ++quietTurns;
        }
    }
}

QImage Stage::grab()
{
    settle();
    return m_window.grabWindow();
}

const QStringList& Stage::complaints() const
{
    return complaintList();
}

QList<QQuickItem*> itemsBelow(QQuickItem* item)
{
    QList<QQuickItem*> all;
    QList<QQuickItem*> open = item->childItems();
    while (!open.isEmpty()) {
        QQuickItem* next = open.takeFirst();
        all.append(next);
        open.append(next->childItems());
    }
    return all;
}

} // namespace zento
