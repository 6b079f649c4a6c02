#pragma once

#include "Zento/Model/RecordingLibrary.h"

#include <QObject>
#include <QSettings>
#include <QString>

#include <filesystem>

namespace zento {

/// How a finished film leaves the machine: a synced folder, an e-mail, another application.
///
/// Threading: the main thread; files are copied in the background.
class Sharing : public QObject {
    Q_OBJECT
    /// A line about the last step; empty when there is nothing to say.
    Q_PROPERTY(QString cloudStatus READ cloudStatus NOTIFY changed)
    /// The path of the last copy in the synced folder; empty without one.
    Q_PROPERTY(QString cloudCopy READ cloudCopy NOTIFY changed)
    /// The synced folder the user has chosen; empty: the first of the usual ones that exists.
    Q_PROPERTY(QString cloudFolder READ cloudFolder WRITE setCloudFolder NOTIFY changed)
    Q_PROPERTY(bool isCopying READ isCopying NOTIFY changed)

public:
    struct Ports {
        RecordingLibrary& library;
        Worker& worker;
        FileServices& files;
        QSettings& defaults; // "cloudFolder"
        std::filesystem::path home;
    };

    explicit Sharing(Ports ports);

    QString cloudStatus() const { return m_status; }
    QString cloudCopy() const { return m_copy; }
    QString cloudFolder() const;
    bool isCopying() const { return m_isCopying; }
    void setCloudFolder(const QString& folder);

    /// True when the selected recording has a film to share; else the status says what to do.
    Q_INVOKABLE bool shareLastExport();

    Q_INVOKABLE void composeMail();   // with the film attached
    Q_INVOKABLE void openWith();      // an application of the user's choice
    Q_INVOKABLE void uploadToCloud(); // copies the film into the synced folder
    Q_INVOKABLE void
    shareCloudLink(); // shows the copy, whose sync client makes links; copies first

Q_SIGNALS:
    void changed();

private:
    Ports m_ports;
    QString m_status;
    QString m_copy;
    bool m_isCopying = false;
    bool m_shareWhenUploaded = false;

    const SessionItem* sharedItem();
    void setStatus(const QString& status);
};

} // namespace zento
