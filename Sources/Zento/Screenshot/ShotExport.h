#pragma once

#include <QByteArray>
#include <QMimeData>
#include <QString>
#include <QStringList>

#include <functional>

namespace zento {

/// A finished picture that is made when somebody takes it.
struct ShotExport {
    QString name; // of the file
    std::function<QByteArray()> makePNG;
};

/// The picture as what a drag or the clipboard hands over: PNG bytes and, with a folder, a file in
/// it. Both are made once, when they are asked for.
///
/// Threading: the main thread.
class ShotMimeData : public QMimeData {
    Q_OBJECT

public:
    /// `folder` keeps the file for who took it; empty offers no file.
    ShotMimeData(ShotExport shot, QString folder);

    QStringList formats() const override;
    bool hasFormat(const QString& format) const override;

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    const QByteArray& png() const;
    QByteArray fileList() const;

    ShotExport m_shot;
    QString m_folder;
    mutable QByteArray m_png;
    mutable QByteArray m_uris;
};

} // namespace zento
