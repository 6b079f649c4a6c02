#pragma once

#include "Zento/Model/Clock.h"
#include "Zento/Model/FileServices.h"
#include "Zento/Model/Messages.h"
#include "Zento/Model/Question.h"
#include "Zento/Model/SettingsModel.h"

#include <QByteArray>
#include <QObject>
#include <QSettings>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>
#include <string_view>

namespace zento {

/// Whether a version is newer than another: runs of digits compare as numbers, so 1.10 is newer
/// than 1.9.
bool isNewerVersion(std::string_view version, std::string_view than);

/// Where versions are told, and where they may be fetched. Deployment values.
struct UpdateEndpoint {
    QUrl document; // HTTPS, its path "/version.json"; empty: there is none
    QString site;  // the only host a download may lie on
};

/// Asks once a week, if the user wants it, whether there is a newer version.
///
/// Threading: the main thread.
class UpdateCheck : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(bool isChecking READ isChecking NOTIFY isCheckingChanged)

public:
    /// Fetches a document, past all caches, within 60 seconds; nothing on a failure. Does not
    /// block; answers on the main thread.
    using Fetch =
        std::function<void(const QUrl&, std::function<void(std::optional<QByteArray>)> done)>;

    struct Ports {
        Clock& clock;
        Messages& messages;
        Question& question;
        FileServices& files;
        const SettingsModel& settings;
        QSettings& defaults; // "lastUpdateCheck"
        Fetch fetch;
        UpdateEndpoint endpoint;
        QString runningVersion;
    };

    explicit UpdateCheck(Ports ports);

    QString version() const { return m_ports.runningVersion; }
    bool isChecking() const { return m_isChecking; }

    /// If the user wants it and the last check is more than a week ago.
    void checkIfDue();

    /// As a command of the user: a failure and the lack of an update are told.
    Q_INVOKABLE void check();

Q_SIGNALS:
    void isCheckingChanged();

private:
    enum class Voice : unsigned char { Silent, Telling };

    Ports m_ports;
    bool m_isChecking = false;

    void run(Voice voice);
    void finish(const std::optional<QByteArray>& document, Voice voice);
    void fail(Voice voice);
};

} // namespace zento
