#include "Zento/Presentation/Windows.h"

#include "Zento/Model/AppModel.h"
#include "Zento/Presentation/Appearance.h"
#include "Zento/Presentation/Engine.h"
#include "ZentoCore/Error.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QQuickWindow>
#include <QScreen>

namespace zento {
namespace {

/// The pictures of the window picker: "image://window/ID/…".
class WindowPictures : public QQuickImageProvider {
public:
    explicit WindowPictures(const WindowList& windows)
        : QQuickImageProvider(QQuickImageProvider::Image)
        , m_windows(windows)
    {
    }

    QImage requestImage(const QString& id, QSize* size, const QSize&) override
    {
        QImage image = m_windows.thumbnail(id.section(QLatin1Char('/'), 0, 0).toUInt());
        if (image.isNull()) { // not there yet
            image = QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
        }
        *size = image.size();
        return image;
    }

private:
    const WindowList& m_windows;
};

/// What a display shows now, or the model's picture of it: "image://display/X/Y/…", the place of
/// its corner.
class DisplayPictures : public QQuickImageProvider {
public:
    explicit DisplayPictures(const AppModel& app)
        : QQuickImageProvider(QQuickImageProvider::Pixmap)
        , m_app(app)
    {
    }

    QPixmap requestPixmap(const QString& id, QSize* size, const QSize&) override
    {
        const QPoint corner(
            id.section(QLatin1Char('/'), 0, 0).toInt(), id.section(QLatin1Char('/'), 1, 1).toInt());
        QScreen* const screen = QGuiApplication::screenAt(corner);
        const QImage image = m_app.displayImage();
        const QPixmap picture = !image.isNull() ? QPixmap::fromImage(image)
                                : screen        ? screen->grabWindow(0)
                                                : QPixmap(1, 1);
        *size = picture.size();
        return picture;
    }

private:
    const AppModel& m_app;
};

} // namespace

Windows::Windows(AppModel* app)
    : m_engine(std::make_unique<QQmlEngine>())
{
    prepareEngine(*m_engine, app);
    m_engine->addImageProvider(QStringLiteral("window"), new WindowPictures(*app->windows()));
    m_engine->addImageProvider(QStringLiteral("display"), new DisplayPictures(*app));
    appearance(*m_engine)->followDesktop();
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
    QQmlComponent component(
        m_engine.get(), QUrl(QStringLiteral("qrc:/qt/qml/Zento/qml/Main/Windows.qml")));
    m_root.reset(component.create());
    if (!m_root)
        throw Error(
            ErrorCode::kUndecodable,
            "The window could not be made: " + component.errorString().toStdString());
}

Windows::~Windows() = default;

QQuickWindow* Windows::mainWindow() const
{
    return m_root->property("main").value<QQuickWindow*>();
}

} // namespace zento
