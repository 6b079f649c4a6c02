#pragma once

#include "Zento/Desktop/SingleInstance.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantList>
#include <QVariantMap>

namespace zento {

/// The bus object of a `SingleInstance`: org.freedesktop.Application, as the Desktop Entry
/// Specification defines it.
class ApplicationObject : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationObject(SingleInstance& instance)
        : QObject(&instance)
        , m_instance(instance)
    {
    }

public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers): a kind of its own
    // NOLINTBEGIN(readability-identifier-naming): the names on the bus
    void Activate(const QVariantMap& /*platformData*/) { Q_EMIT m_instance.activated(); }

    void Open(const QStringList& uris, const QVariantMap& /*platformData*/)
    {
        for (const QString& uri : uris) {
            Q_EMIT m_instance.openRequested(QUrl(uri).toLocalFile());
        }
    }

    void ActivateAction(
        const QString& action, const QVariantList& /*parameter*/, const QVariantMap& /*data*/)
    {
        Q_EMIT m_instance.actionRequested(action);
    }
    // NOLINTEND(readability-identifier-naming)

private:
    SingleInstance& m_instance;
};

} // namespace zento
