#include "Zento/Presentation/Gallery.h"

#include "Zento/Desktop/DesktopImage.h"
#include "Zento/Desktop/WallpaperCatalog.h"
#include "ZentoCore/BackgroundCatalog.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThreadPool>
#include <QUrl>
#include <QVariantMap>

#include <array>
#include <optional>
#include <utility>

namespace zento {
namespace {

const QString kWallpaper = QStringLiteral("wallpaper:");

QString text(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

QVariantMap entry(const QString& id, const QString& name)
{
    return {{QStringLiteral("id"), id}, {QStringLiteral("name"), name}};
}

struct Group {
    const char* name;
    std::span<const BackgroundPreset> presets;
};

std::array<Group, 6> groups()
{
    return {{
        {QT_TRANSLATE_NOOP("zento::Gallery", "Duos"), BackgroundCatalog::duos()},
        {QT_TRANSLATE_NOOP("zento::Gallery", "Trios"), BackgroundCatalog::trios()},
        {QT_TRANSLATE_NOOP("zento::Gallery", "Meshes"), BackgroundCatalog::meshes()},
        {QT_TRANSLATE_NOOP("zento::Gallery", "Radials"), BackgroundCatalog::radials()},
        {QT_TRANSLATE_NOOP("zento::Gallery", "Patterns"), BackgroundCatalog::patterns()},
        {QT_TRANSLATE_NOOP("zento::Gallery", "Solids"), BackgroundCatalog::solids()},
    }};
}

} // namespace

QVariantList Gallery::backgroundGroups()
{
    QVariantList result;
    for (const Group& group : groups()) {
        QVariantList entries;
        for (const BackgroundPreset& preset : group.presets)
            entries.append(entry(text(preset.id), text(preset.name)));
        result.append(QVariantMap{
            {QStringLiteral("name"), tr(group.name)}, {QStringLiteral("entries"), entries}});
    }
    return result;
}

QVariantList Gallery::cardDesigns()
{
    return {
        entry(QStringLiteral("classic"), tr("Classic")),
        entry(QStringLiteral("editorial"), tr("Editorial")),
        entry(QStringLiteral("pill"), tr("Pill")),
        entry(QStringLiteral("underline"), tr("Underline")),
        entry(QStringLiteral("mono"), tr("Terminal")),
        entry(QStringLiteral("glow"), tr("Glow")),
    };
}

QString Gallery::version()
{
    return QStringLiteral(ZENTO_VERSION);
}

int Gallery::groupOf(const QString& backgroundID)
{
    const BackgroundPreset* preset = BackgroundCatalog::preset(backgroundID.toStdString());
    int index = 0;
    for (const Group& group : groups()) {
        // A preset is found by its place: an id may stand in two groups.
        if (preset && preset >= group.presets.data()
            && preset < group.presets.data() + group.presets.size())
            return index;
        ++index;
    }
    return -1;
}

QString Gallery::backgroundName(const QString& backgroundID) const
{
    if (backgroundID == QStringLiteral("desktop"))
        return tr("Your desktop");
    if (backgroundID == QStringLiteral("custom"))
        return tr("Your picture");
    for (const QVariant& wallpaper : m_wallpapers)
        if (wallpaper.toMap()[QStringLiteral("id")] == backgroundID)
            return wallpaper.toMap()[QStringLiteral("name")].toString();
    const BackgroundPreset* preset = BackgroundCatalog::preset(backgroundID.toStdString());
    return preset ? text(preset->name) : QString();
}

QString Gallery::pictureSource(const QString& path, double radius)
{
    return QStringLiteral("image://swatch/%1/picture/").arg(radius)
           + QString::fromLatin1(QUrl::toPercentEncoding(path));
}

void Gallery::findWallpapers()
{
    if (std::exchange(m_searched, true))
        return;
    const QPointer<Gallery> self = this;
    QThreadPool::globalInstance()->start([self] {
        const auto folders = WallpaperCatalog::folders();
        QVariantList list;
        for (const Wallpaper& wallpaper : WallpaperCatalog::wallpapers(folders)) {
            QVariantMap one =
                entry(kWallpaper + text(wallpaper.path.string()), text(wallpaper.name));
            one[QStringLiteral("path")] = text(wallpaper.path.string());
            list.append(one);
        }
        const QString desktop = text(desktopImage().value_or(""));
        QMetaObject::invokeMethod(
            qApp,
            [self, list, desktop] {
                if (!self)
                    return;
                self->m_wallpapers = list;
                self->m_desktopPicture = desktop;
                Q_EMIT self->wallpapersChanged();
            },
            Qt::QueuedConnection);
    });
}

} // namespace zento
