#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace zento {

/// Lets the user choose a picture file, in the desktop's own dialog through its portal.
///
/// Threading: the main thread; nothing waits.
class PictureChooser : public QObject {
    Q_OBJECT
    QML_ELEMENT

public:
    using QObject::QObject;

    Q_INVOKABLE void open(const QString& title);

Q_SIGNALS:
    void chosen(const QString& path);
    void failed(const QString& sentence);

private Q_SLOTS:
    void answered(uint response, const QVariantMap& results);

private:
    void listenTo(const QString& request);

    QString m_request; // the object that answers; empty while nothing is open
};

} // namespace zento
