#include "Zento/Model/SpeechSettings.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace zento {

namespace {

constexpr std::chrono::milliseconds kProgressInterval{200};

/// The name of the model that a file or a link stands for; empty if it leads nowhere. Blocks.
QString nameOfModel(const std::filesystem::path& file)
{
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        return {};
    }
    const auto target = std::filesystem::read_symlink(file, error);
    return QString::fromStdString((error ? file : target).filename().string());
}

void link(const std::filesystem::path& from, const std::filesystem::path& to)
{
    makeFolder(to.parent_path());
    std::filesystem::path fresh = to;
    fresh += ".new";
    std::error_code error;
    std::filesystem::remove(fresh, error);
    std::filesystem::create_symlink(std::filesystem::absolute(from), fresh, error);
    if (error) {
        throw systemError("Cannot write", to.string(), error.value());
    }
    replaceFile(fresh, to);
}

} // namespace

SpeechSettings::SpeechSettings(Ports ports)
    : m_ports(std::move(ports))
    , m_progress(std::make_shared<std::atomic<double>>(0))
{
}

SpeechSettings::~SpeechSettings()
{
    m_fetch.request_stop();
}

/// The engine that narrations are heard with: what `makeEngineFor` would choose. Blocks.
SpeechSettings::State SpeechSettings::look(const SpeechModelPlace& place)
{
    const State state{Engine::Model, nameOfModel(place.file)};
    if (!state.model.isEmpty() && place.canUseModels) {
        try {
            place.requireModel(place.file);
            return state;
        } catch (const Error&) { // NOLINT(bugprone-empty-catch): it is not used
        }
    }
    return {place.hasBasicEngine() ? Engine::Basic : Engine::LoudnessAlone, state.model};
}

QString SpeechSettings::engine() const
{
    switch (m_state.engine) {
    case Engine::Model:
        return tr("whisper.cpp with %1").arg(m_state.model);
    case Engine::Basic:
        return tr("PocketSphinx, built in, English only");
    case Engine::LoudnessAlone:
        return tr("None: captions stay without words");
    case Engine::Unknown:
        break;
    }
    return {};
}

QString SpeechSettings::expectation() const
{
    const QString local = ' ' + tr("Speech is recognised on this computer; nothing leaves it.");
    // Of a model that is there and not used.
    const QString unused =
        m_state.model.isEmpty() ? QString()
        : canUseModels()
            ? tr("%1 is not a whole speech model and is not used.").arg(m_state.model) + ' '
            : tr("%1 is not used: this program, on this processor, cannot use "
                 "speech models.")
                      .arg(m_state.model)
                  + ' ';
    switch (m_state.engine) {
    case Engine::Model:
        return tr("As good as the model: expect a few wrong words in a hundred of clear speech, "
                  "and read captions before you show them.")
               + local;
    case Engine::Basic:
        return unused
               + tr("Basic: expect one word in five to be wrong. Good enough to keep speech from "
                    "being cut; read captions before you show them.")
               + local;
    case Engine::LoudnessAlone:
        return unused
               + tr("What is loud is kept from being cut. For words in English install the package "
                    "pocketsphinx-en-us.");
    case Engine::Unknown:
        break;
    }
    return {};
}

QVariantList SpeechSettings::offers() const
{
    QVariantList list;
    if (canUseModels() && !m_ports.place.site.empty()) {
        for (const SpeechModelOffer& offer : speechModelOffers()) {
            list.append(QVariantMap{
                {"id", QString::fromStdString(std::string(offer.id))},
                {"name", QString::fromStdString(std::string(offer.name))},
                {"megabytes", offer.megabytes}});
        }
    }
    return list;
}

void SpeechSettings::refresh()
{
    change([] {});
}

/// Does the work in the background, tells what it throws, and looks what there is then.
void SpeechSettings::change(std::function<void()> work, std::function<void()> ended)
{
    struct Change {
        State state;
        std::string failure;
    };
    compute(
        m_ports.worker,
        this,
        [place = m_ports.place, work = std::move(work)] {
            Change result;
            try {
                work();
            } catch (const Error& error) {
                if (error.code() != ErrorCode::kCancelled || error.domain() != "Zento") {
                    result.failure = error.what();
                }
            }
            result.state = look(place);
            return result;
        },
        [this, ended = std::move(ended)](Outcome<Change> outcome) {
            if (ended) {
                ended();
            }
            if (outcome) {
                m_state = outcome->state;
            }
            const std::string failure = outcome ? outcome->failure : outcome.error();
            if (!failure.empty()) {
                m_ports.messages.setErrorMessage(QString::fromStdString(failure));
            }
            Q_EMIT changed();
        });
}

void SpeechSettings::fetch(const QString& id)
{
    const std::string wanted = id.toStdString();
    const auto offer =
        std::ranges::find(speechModelOffers(), std::string_view(wanted), &SpeechModelOffer::id);
    if (m_isFetching || offer == speechModelOffers().end()) {
        return;
    }
    m_fetch = {};
    m_isFetching = true;
    *m_progress = 0;
    m_progressTimer = m_ports.clock.every(kProgressInterval, [this] { Q_EMIT progressed(); });
    Q_EMIT changed();
    change(
        [offer = *offer, place = m_ports.place, progress = m_progress, stop = m_fetch.get_token()] {
            fetchSpeechModel(
                offer,
                place.site,
                place.file,
                [&progress](double share) { *progress = share; },
                stop);
        },
        [this] {
            m_isFetching = false;
            m_progressTimer.reset();
        });
}

void SpeechSettings::cancelFetch()
{
    m_fetch.request_stop();
}

void SpeechSettings::useFile(const QString& path)
{
    change([path = std::filesystem::path(path.toStdString()), place = m_ports.place] {
        place.requireModel(path);
        link(path, place.file);
    });
}

void SpeechSettings::removeModel()
{
    change([file = m_ports.place.file] {
        std::error_code error;
        std::filesystem::remove(file, error);
        if (error) {
            throw systemError("Cannot remove", file.string(), error.value());
        }
    });
}

} // namespace zento
