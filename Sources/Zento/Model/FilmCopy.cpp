#include "Zento/Model/FilmCopy.h"

#include "Zento/Model/PlanSources.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/PartFile.h"
#include "ZentoIntelligence/CopyGenerator.h"

#include <utility>

namespace zento {

FilmCopy::FilmCopy(Ports ports)
    : m_ports(std::move(ports))
{
    connect(&m_ports.session, &EditSession::opened, this, [this] {
        m_session.request_stop();
        m_session = {};
        m_copy.reset();
        m_kept.reset();
        m_isWriting = false;
        Q_EMIT changed();
    });
    connect(&m_ports.session, &EditSession::loaded, this, &FilmCopy::read);
    connect(&m_ports.session, &EditSession::planned, this, &FilmCopy::changed);
}

FilmCopy::~FilmCopy()
{
    m_session.request_stop();
}

QString FilmCopy::text(std::string VideoCopy::* part) const
{
    return m_copy ? QString::fromStdString((*m_copy).*part) : QString();
}

void FilmCopy::setText(std::string VideoCopy::* part, const QString& words)
{
    if (m_copy && words != text(part)) {
        (*m_copy).*part = words.toStdString();
        Q_EMIT changed();
    }
}

QString FilmCopy::origin() const
{
    if (!m_copy) {
        return {};
    }
    return m_copy->generatedByModel ? tr("Written by your language model.")
                                    : tr("Written from templates, on this computer.");
}

/// What was kept of the recording that is open.
void FilmCopy::read()
{
    if (!m_ports.session.isLoaded()) {
        return;
    }
    compute(
        m_ports.files,
        this,
        [bundle = m_ports.session.bundle()] { return loadVideoCopy(*bundle); },
        [this, stop = m_session.get_token()](Outcome<std::optional<VideoCopy>> outcome) {
            if (!stop.stop_requested() && outcome && !m_copy) {
                m_copy = m_kept = *std::move(outcome);
                Q_EMIT changed();
            }
        });
}

void FilmCopy::write()
{
    if (!canWrite()) {
        return;
    }
    m_isWriting = true;
    Q_EMIT changed();
    const auto stop = m_session.get_token();
    compute(
        m_ports.language,
        this,
        [bundle = m_ports.session.bundle(),
         film = m_ports.session.film(),
         find = m_ports.findModel,
         choice = languageModelChoice(m_ports.defaults),
         stop] {
            const auto digest =
                SessionDigest::extract(bundle->meta, bundle->events, film->film->plan.get());
            return CopyGenerator::copy(digest, find(choice, stop), stop);
        },
        [this, stop](Outcome<VideoCopy> outcome) {
            if (stop.stop_requested()) {
                return;
            }
            m_isWriting = false;
            if (outcome) {
                m_copy = *std::move(outcome);
            }
            Q_EMIT changed();
        });
}

void FilmCopy::keep()
{
    if (!m_copy || !m_ports.session.isLoaded()) {
        return;
    }
    compute(
        m_ports.files,
        this,
        [file = m_ports.session.bundle()->copyURL(), text = encodeVideoCopy(*m_copy)] {
            PartFile part(file);
            writeFile(part.path(), text);
            part.renameToTarget();
        },
        [this, copy = m_copy, stop = m_session.get_token()](const Outcome<void>& outcome) {
            if (!outcome) {
                m_ports.messages.setErrorMessage(tr("Could not keep the words: %1")
                                                     .arg(QString::fromStdString(outcome.error())));
            } else if (!stop.stop_requested()) {
                m_kept = copy;
                m_ports.session.titleChanged();
                Q_EMIT changed();
            }
        });
}

} // namespace zento
