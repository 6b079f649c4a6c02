#include "Zento/Model/LanguageSettings.h"

#include "ZentoIntelligence/CopyGenerator.h"

#include <QRegularExpression>
#include <QUrl>

#include <utility>

namespace zento {

namespace {

constexpr auto kHostKey = "languageServer";
constexpr auto kModelKey = "languageModel";

bool isThisMachine(const QString& host)
{
    const QString name = QUrl(QString::fromStdString(serverAddress(host.toStdString()))).host();
    static const QRegularExpression kLoopback(R"(^127(\.\d{1,3}){3}$)");
    return name == "localhost" || name == "::1" || kLoopback.match(name).hasMatch();
}

} // namespace

LanguageModelChoice languageModelChoice(const QSettings& defaults)
{
    return {
        .host = defaults.value(kHostKey).toString().trimmed().toStdString(),
        .model = defaults.value(kModelKey).toString().toStdString()};
}

LanguageSettings::LanguageSettings(Ports ports)
    : m_ports(std::move(ports))
{
}

LanguageSettings::~LanguageSettings()
{
    m_look.request_stop();
}

QString LanguageSettings::host() const
{
    return m_ports.defaults.value(kHostKey).toString();
}

QStringList LanguageSettings::models() const
{
    QStringList names;
    for (const std::string& name : m_found.models()) {
        names.append(QString::fromStdString(name));
    }
    return names;
}

bool LanguageSettings::isReady() const
{
    return m_found.availability() == SystemLanguageModel::Availability::Available;
}

QString LanguageSettings::status() const
{
    if (m_isLooking) {
        return tr("Looking for a language server…");
    }
    if (!m_hasLooked) {
        return {};
    }
    const std::string_view sentence = explanation(CopyGenerator::status(m_found));
    return QString::fromUtf8(sentence.data(), static_cast<qsizetype>(sentence.size()));
}

QString LanguageSettings::privacy() const
{
    const QString name = host().trimmed();
    if (name.isEmpty() || isThisMachine(name)) {
        return tr("Nothing leaves this computer.");
    }
    return tr("What was clicked and said in a recording is sent to %1.").arg(name);
}

void LanguageSettings::setHost(const QString& host)
{
    if (host != this->host()) {
        m_ports.defaults.setValue(kHostKey, host);
        refresh();
    }
}

void LanguageSettings::setModel(const QString& model)
{
    if (model != this->model()) {
        m_ports.defaults.setValue(kModelKey, model);
        refresh();
    }
}

void LanguageSettings::refresh()
{
    m_look.request_stop();
    m_look = {};
    m_isLooking = true;
    Q_EMIT changed();
    compute(
        m_ports.worker,
        this,
        [find = m_ports.findModel,
         choice = languageModelChoice(m_ports.defaults),
         stop = m_look.get_token()] { return find(choice, stop); },
        [this, stop = m_look.get_token()](Outcome<SystemLanguageModel> found) {
            if (stop.stop_requested()) {
                return;
            }
            m_found = std::move(found).value_or(SystemLanguageModel());
            m_isLooking = false;
            m_hasLooked = true;
            Q_EMIT changed();
        });
}

} // namespace zento
