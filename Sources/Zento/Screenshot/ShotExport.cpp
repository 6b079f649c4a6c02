#include "Zento/Screenshot/ShotExport.h"

#include <QDir>
#include <QSaveFile>
#include <QUrl>

#include <utility>

namespace zento {

namespace {

const QString kPng = QStringLiteral("image/png");
const QString kUris = QStringLiteral("text/uri-list");

} // namespace

ShotMimeData::ShotMimeData(ShotExport shot, QString folder)
    : m_shot(std::move(shot))
    , m_folder(std::move(folder))
{
}

QStringList ShotMimeData::formats() const
{
    return m_folder.isEmpty() ? QStringList{kPng} : QStringList{kUris, kPng};
}

bool ShotMimeData::hasFormat(const QString& format) const
{
    return formats().contains(format);
}

QVariant ShotMimeData::retrieveData(const QString& format, QMetaType) const
{
    if (format == kPng) {
        return png();
    }
    return format == kUris && !m_folder.isEmpty() ? QVariant(fileList()) : QVariant();
}

const QByteArray& ShotMimeData::png() const
{
    if (m_png.isEmpty()) {
        m_png = m_shot.makePNG();
    }
    return m_png;
}

QByteArray ShotMimeData::fileList() const
{
    if (m_uris.isEmpty() && !png().isEmpty()) {
        const QString path = QDir(m_folder).filePath(m_shot.name);
        QSaveFile file(path);
        if (file.open(QIODevice::WriteOnly) && file.write(m_png) == m_png.size() && file.commit()) {
            m_uris = QUrl::fromLocalFile(path).toEncoded() + "\r\n";
        }
    }
    return m_uris;
}

} // namespace zento
