#pragma once

#include <QByteArray>
#include <QMimeData>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace zento {

/// A finished picture that is made when somebody takes it.
struct ShotExport {
    QString name;                        // of the file
    std::function<QByteArray()> makePNG; // throws if it cannot be made
};

/// Writes a file whole or not at all. Blocks. Throws `Error` 41.
void writeWhole(const QString& path, const QByteArray& bytes);

/// The picture as what a drag or the clipboard hands over: PNG bytes and, with a folder, a file in
/// it. Both are made once, when they are asked for. What cannot be made is empty, and told.
///
/// Threading: the main thread.
class ShotMimeData : public QMimeData {
    Q_OBJECT

public:
    /// `folder` keeps the file for who took it; empty offers no file.
    ShotMimeData(ShotExport shot, QString folder);

    QStringList formats() const override;
    bool hasFormat(const QString& format) const override;

Q_SIGNALS:
    void failed(const QString& sentence) const;

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    const QByteArray& png() const;
    const QByteArray& fileList() const;

    ShotExport m_shot;
    QString m_folder;
    mutable std::optional<QByteArray> m_png; // empty: could not be made
    mutable std::optional<QByteArray> m_uris;
};

} // namespace zento
