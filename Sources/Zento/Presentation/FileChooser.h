#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace zento {

/// Lets the user choose a file, in the desktop's own dialog through its portal.
///
/// Threading: the main thread; nothing waits.
class FileChooser : public QObject {
    Q_OBJECT
    QML_ELEMENT

public:
    using QObject::QObject;

    /// A file that is there.
    Q_INVOKABLE void open(const QString& title);
    /// A place for a file; `suggestion` is its path.
    Q_INVOKABLE void save(const QString& title, const QString& suggestion);

Q_SIGNALS:
    void chosen(const QString& path);
    void failed(const QString& sentence);

private Q_SLOTS:
    void answered(uint response, const QVariantMap& results);

private: // NOLINT(readability-redundant-access-specifiers): these are no slots
    void ask(const QString& method, const QString& title, const QVariantMap& options);
    void listenTo(const QString& request);

    QString m_request; // the object that answers; empty while nothing is open
};

} // namespace zento
