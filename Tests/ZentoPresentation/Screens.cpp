// A picture of every screen, to be looked at: presentation_screens FOLDER [NAME…]
// The display's scale is the environment's QT_SCALE_FACTOR; it becomes part of the files' names.
#include "Zento/Presentation/Appearance.h"
#include "Zento/Presentation/Engine.h"
#include "ZentoPresentation/Stage.h"

#include <QDir>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QUrl>

#include <iostream>
#include <memory>

using namespace zento;

namespace {

void takePictures(const QDir& folder, const QStringList& names, bool isDark)
{
    Stage stage;
    appearance(stage.engine())->setDark(isDark);
    QQmlComponent component(&stage.engine(), QUrl(QStringLiteral("qrc:/testing/ScreenList.qml")));
    const std::unique_ptr<QObject> list(component.createWithInitialProperties(
        {{QStringLiteral("app"), QVariant::fromValue(stage.app())}}));
    if (!list) {
        std::cerr << component.errorString().toStdString() << '\n';
        return;
    }
    const QVariantList screens = list->property("screens").toList();
    for (const QVariant& entry : screens) {
        const QVariantMap screen = entry.toMap();
        const QString name = screen[QStringLiteral("name")].toString();
        if (!names.isEmpty() && !names.contains(name))
            continue;
        auto* shown = screen[QStringLiteral("component")].value<QQmlComponent*>();
        const QSize size(
            screen[QStringLiteral("width")].toInt(), screen[QStringLiteral("height")].toInt());
        stage.window().setColor(isDark ? QColor(0x15161B) : QColor(0xF7F7FA));
        stage.show(*shown, size, true);
        const QString file =
            QStringLiteral("%1-%2-%3.png")
                .arg(name, isDark ? QStringLiteral("dark") : QStringLiteral("light"))
                .arg(qRound(stage.window().effectiveDevicePixelRatio() * 100));
        stage.grab().save(folder.filePath(file));
    }
    for (const QString& complaint : stage.complaints())
        std::cerr << complaint.toStdString() << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    useOffscreenPlatform();
    QGuiApplication application(argc, argv);
    QStringList arguments = QGuiApplication::arguments().mid(1);
    if (arguments.isEmpty()) {
        std::cerr << "usage: presentation_screens FOLDER [NAME...]\n";
        return 2;
    }
    const QDir folder(arguments.takeFirst());
    folder.mkpath(QStringLiteral("."));
    takePictures(folder, arguments, true);
    takePictures(folder, arguments, false);
    return 0;
}
