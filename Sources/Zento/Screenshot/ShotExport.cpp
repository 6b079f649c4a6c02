#include "Zento/Screenshot/ShotExport.h"

#include "Zento/Model/Worker.h"
#include "ZentoCapture/ScreenshotTool.h"
#include "ZentoCore/Error.h"

#include <QDir>
#include <QSaveFile>
#include <QUrl>

#include <utility>

namespace zento {

namespace {

const QString kPng = QStringLiteral("image/png");
const QString kUris = QStringLiteral("text/uri-list");

} // namespace

void writeWhole(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        throw Error(
            ErrorCode::kNoShot,
            "\"" + path.toStdString()
                + "\" could not be written: " + file.errorString().toStdString());
    }
}

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
    if (!m_png) {
        auto made = attempt(m_shot.makePNG);
        m_png = made.value_or(QByteArray());
        if (!made) {
            Q_EMIT failed(QString::fromStdString(made.error()));
        }
    }
    return *m_png;
}

const QByteArray& ShotMimeData::fileList() const
{
    if (!m_uris) {
        m_uris.emplace();
        if (!png().isEmpty()) {
            const QString path = QDir(m_folder).filePath(m_shot.name);
            auto write = [&] { writeWhole(path, *m_png); };
            if (const Outcome<void> written = attempt(write)) {
                m_uris = QUrl::fromLocalFile(path).toEncoded() + "\r\n";
            } else {
                Q_EMIT failed(QString::fromStdString(written.error()));
            }
        }
    }
    return *m_uris;
}

} // namespace zento
