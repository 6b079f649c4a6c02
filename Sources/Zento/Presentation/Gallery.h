#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace zento {

/// The choices the inspector offers as pictures: backgrounds, card designs, the desktop's own
/// wallpapers.
///
/// Threading: the main thread. The wallpapers are looked for beside it, from `findWallpapers` on.
class Gallery : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// Groups in the gallery's order: {name, entries: [{id, name}]}.
    Q_PROPERTY(QVariantList backgroundGroups READ backgroundGroups CONSTANT)
    /// {id, name}, the six in order.
    Q_PROPERTY(QVariantList cardDesigns READ cardDesigns CONSTANT)
    /// {id, name, path}; `id` is what the settings store.
    Q_PROPERTY(QVariantList wallpapers READ wallpapers NOTIFY wallpapersChanged)
    /// The picture behind the desktop's windows; empty if there is none.
    Q_PROPERTY(QString desktopPicture READ desktopPicture NOTIFY wallpapersChanged)
    Q_PROPERTY(QString version READ version CONSTANT)

public:
    using QObject::QObject;

    static QVariantList backgroundGroups();
    static QVariantList cardDesigns();
    QVariantList wallpapers() const { return m_wallpapers; }
    QString desktopPicture() const { return m_desktopPicture; }
    static QString version();

    /// The index in `backgroundGroups` of a preset's group; -1 for what is no preset.
    Q_INVOKABLE static int groupOf(const QString& backgroundID);
    /// What the user reads for a `backgroundID` of the settings.
    Q_INVOKABLE QString backgroundName(const QString& backgroundID) const;
    /// The address of a swatch, corners rounded by `radius` device pixels.
    Q_INVOKABLE static QString pictureSource(const QString& path, double radius);

    /// Looks for the wallpapers, once.
    Q_INVOKABLE void findWallpapers();

Q_SIGNALS:
    void wallpapersChanged();

private:
    QVariantList m_wallpapers;
    QString m_desktopPicture;
    bool m_searched = false;
};

} // namespace zento
