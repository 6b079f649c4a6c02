#pragma once

#include "Zento/Model/Worker.h"
#include "ZentoIntelligence/SystemLanguageModel.h"

#include <QObject>
#include <QSettings>
#include <QString>
#include <QStringList>

#include <functional>
#include <stop_token>

namespace zento {

/// Looks for the language model of a choice; blocks.
using ModelSearch =
    std::function<SystemLanguageModel(const LanguageModelChoice&, const std::stop_token&)>;

/// The user's choice of a language model, as it is kept. Threading: whichever has the settings.
LanguageModelChoice languageModelChoice(const QSettings& defaults);

/// Which language model writes the copy and tells the story: the user's choice, and what was found
/// of it.
///
/// Threading: the main thread; the network is the worker's.
class LanguageSettings : public QObject {
    Q_OBJECT
    /// Of a server of the user's; empty: this machine.
    Q_PROPERTY(QString host READ host WRITE setHost NOTIFY changed)
    /// The model that answers; writing chooses one of `models`.
    Q_PROPERTY(QString model READ model WRITE setModel NOTIFY changed)
    Q_PROPERTY(QStringList models READ models NOTIFY changed)
    Q_PROPERTY(bool isReady READ isReady NOTIFY changed)
    Q_PROPERTY(bool isLooking READ isLooking NOTIFY changed)
    /// A sentence on what was found; empty before the first look.
    Q_PROPERTY(QString status READ status NOTIFY changed)
    /// A sentence on where the words of a recording go.
    Q_PROPERTY(QString privacy READ privacy NOTIFY changed)

public:
    struct Ports {
        Worker& worker;
        QSettings& defaults; // "languageServer", "languageModel"
        ModelSearch findModel;
    };

    explicit LanguageSettings(Ports ports);
    ~LanguageSettings() override;

    QString host() const;
    QString model() const { return QString::fromStdString(m_found.model()); }
    QStringList models() const;
    bool isReady() const;
    bool isLooking() const { return m_isLooking; }
    QString status() const;
    QString privacy() const;
    void setHost(const QString& host);
    void setModel(const QString& model);

    /// Looks for the model anew.
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    void changed();

private:
    Ports m_ports;
    std::stop_source m_look;
    SystemLanguageModel m_found;
    bool m_isLooking = false;
    bool m_hasLooked = false;
};

} // namespace zento
