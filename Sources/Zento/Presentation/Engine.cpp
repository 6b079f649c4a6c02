#include "Zento/Presentation/Engine.h"

#include "Zento/Presentation/App.h"
#include "Zento/Presentation/Appearance.h"
#include "Zento/Presentation/IconProvider.h"
#include "Zento/Presentation/PictureProvider.h"
#include "Zento/Presentation/ShadowProvider.h"

#include <QDir>
#include <QFont>
#include <QQmlEngine>
#include <QQuickWindow>

// Written by the build for the QML module.
void qml_register_types_Zento();

namespace zento {
namespace {

constexpr const char* kModule = "Zento";

template <typename Singleton>
Singleton* singleton(QQmlEngine& engine, const char* name)
{
    return engine.singletonInstance<Singleton*>(qmlTypeId(kModule, 1, 0, name));
}

bool hasGraphicsProcessor()
{
    return !QDir(QStringLiteral("/dev/dri"))
                .entryList({QStringLiteral("renderD*")}, QDir::System)
                .isEmpty();
}

/// Without a graphics processor OpenGL is imitated: a new window's first picture then holds the
/// main thread for 130 ms, where Qt's own drawing needs a few.
void chooseRenderer()
{
    if (QQuickWindow::sceneGraphBackend().isEmpty() && !hasGraphicsProcessor())
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
}

} // namespace

void prepareEngine(QQmlEngine& engine, QObject* app)
{
    chooseRenderer();
    qml_register_types_Zento();
    // Without it Qt takes an emoji from whichever font has an outline of it.
    for (const QString& family : {QStringLiteral("Inter"), QStringLiteral("JetBrains Mono")})
        QFont::insertSubstitution(family, QStringLiteral("Noto Color Emoji"));
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("icon"), new IconProvider);
    engine.addImageProvider(QStringLiteral("shadow"), new ShadowProvider);
    engine.addImageProvider(QStringLiteral("swatch"), new PictureProvider(drawSwatch, 2));
    engine.addImageProvider(QStringLiteral("recording"), new PictureProvider(drawRecording, 1));
    singleton<App>(engine, "App")->setModel(app);
}

Appearance* appearance(QQmlEngine& engine)
{
    return singleton<Appearance>(engine, "Appearance");
}

} // namespace zento
