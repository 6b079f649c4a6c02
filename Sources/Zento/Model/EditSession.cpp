#include "Zento/Model/EditSession.h"

#include "Zento/Timeline/MusicSection.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/PartFile.h"
#include "ZentoCore/Text.h"

#include <utility>

namespace zento {

namespace {

constexpr std::chrono::milliseconds kPlanDelay{80};
constexpr std::chrono::milliseconds kSaveDelay{600};
constexpr double kLevelWithoutList = 1.5;

SavedOverrides readEdits(const SessionBundle& bundle)
{
    try {
        return loadSavedOverrides(bundle);
    } catch (const Error&) { // edits that contradict each other are none
        return {};
    }
}

/// Whole or not at all. The folder of a recording that was deleted is not made anew.
void writeWhole(const std::filesystem::path& file, const std::string& text)
{
    try {
        PartFile part(file);
        writeFile(part.path(), text);
        part.renameToTarget();
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): the next edit tries again
    }
}

} // namespace

struct EditSession::Loaded {
    std::shared_ptr<const SessionBundle> bundle;
    std::shared_ptr<const BundleAnalyses> analyses;
    SavedOverrides edits;
};

EditSession::EditSession(Ports ports)
    : m_ports(std::move(ports))
{
    connect(
        &m_ports.settings, &SettingsModel::settingsChanged, this, &EditSession::settingsChanged);
}

EditSession::~EditSession()
{
    m_session.request_stop();
}

void EditSession::open(const QString& bundlePath)
{
    save();
    m_session.request_stop();
    m_session = {};
    m_path = bundlePath.toStdString();
    m_sources = {};
    m_film.reset();
    m_history = {};
    m_planTimer.reset();
    m_isPlanning = false;
    m_isTranscribing = false;
    m_isRenderStale = false;
    m_isStaleDismissed = false;
    ++m_version;
    Q_EMIT opened();
    Q_EMIT loaded();
    Q_EMIT planned();
    Q_EMIT historyChanged();
    Q_EMIT renderStaleChanged();
    Q_EMIT transcribing();
    if (!m_path.empty()) {
        load();
    }
}

void EditSession::load()
{
    const auto stop = m_session.get_token();
    compute(
        m_ports.edits,
        this,
        [path = m_path, stop] {
            Loaded result;
            if (stop.stop_requested()) { // the user is elsewhere by now
                return result;
            }
            auto bundle = std::make_shared<const SessionBundle>(SessionBundle::load(path));
            result.analyses = std::make_shared<const BundleAnalyses>(loadAnalyses(*bundle));
            result.edits = readEdits(*bundle);
            result.bundle = std::move(bundle);
            return result;
        },
        [this, stop](Outcome<Loaded> outcome) {
            if (stop.stop_requested()) {
                return;
            }
            if (outcome) {
                take(*std::move(outcome));
            } else {
                Q_EMIT loadFailed(QString::fromStdString(outcome.error()));
            }
        });
}

void EditSession::take(Loaded loadedSources)
{
    m_sources.bundle = std::move(loadedSources.bundle);
    m_sources.analyses = std::move(loadedSources.analyses);
    m_sources.edits = std::move(loadedSources.edits);
    Q_EMIT loaded();
    Q_EMIT transcribing();
    Q_EMIT editsChanged();
    plan();
    analyzeMusic();
    findRegions();
    transcribeNarration();
}

const std::vector<TranscriptSegment>& EditSession::transcript() const
{
    static const std::vector<TranscriptSegment> kNone;
    return m_sources.analyses ? m_sources.analyses->transcript : kNone;
}

double EditSession::recorded() const
{
    return m_sources.bundle ? m_sources.bundle->meta.duration : 0;
}

double EditSession::addedZoomLevel() const
{
    const std::vector<double> levels = m_ports.settings.current().planConfig().zoomLevels;
    return levels.size() < 2 ? kLevelWithoutList : levels[1];
}

void EditSession::apply(EditStep step)
{
    if (!isLoaded() || step.edits == m_sources.edits) {
        return;
    }
    const UndoableState before = undoable();
    m_sources.edits = std::move(step.edits);
    m_history.record(step.name, before, undoable(), m_ports.clock.now());
    Q_EMIT historyChanged();
    changed();
}

void EditSession::settingsChanged(const AppSettings& before)
{
    if (m_isRestoring) {
        return;
    }
    m_history.record(
        EditName::kSettings,
        {m_sources.edits, before},
        {m_sources.edits, m_ports.settings.current()},
        m_ports.clock.now());
    Q_EMIT historyChanged();
    if (isLoaded()) {
        changed();
    }
}

UndoableState EditSession::undoable() const
{
    return {.edits = m_sources.edits, .settings = m_ports.settings.current()};
}

void EditSession::undo()
{
    if (const auto state = m_history.undo(undoable())) {
        restore(*state);
    }
}

void EditSession::redo()
{
    if (const auto state = m_history.redo(undoable())) {
        restore(*state);
    }
}

void EditSession::restore(const UndoableState& state)
{
    m_isRestoring = true;
    m_sources.edits = state.edits;
    if (state.settings != m_ports.settings.current()) {
        m_ports.settings.replace(state.settings);
    }
    m_isRestoring = false;
    Q_EMIT historyChanged();
    if (isLoaded()) {
        changed();
    }
}

/// What every edit ends in.
void EditSession::changed()
{
    m_isUnsaved = true;
    if (!std::exchange(m_isRenderStale, true)) {
        Q_EMIT renderStaleChanged();
    }
    Q_EMIT editsChanged();
    planSoon();
    m_saveTimer = m_ports.clock.every(kSaveDelay, [this] { save(); });
}

void EditSession::planSoon()
{
    ++m_version;
    m_planTimer = m_ports.clock.every(kPlanDelay, [this] { plan(); });
}

/// One plan at a time is on its way; what changed meanwhile is planned when it is back.
void EditSession::plan()
{
    m_planTimer.reset();
    if (m_isPlanning || !isLoaded()) {
        return;
    }
    m_isPlanning = true;
    FilmSources sources = m_sources;
    sources.settings = m_ports.settings.current();
    compute(
        m_ports.edits,
        this,
        [sources = std::move(sources),
         desktopImage = m_ports.desktopImage,
         stop = m_session.get_token()]() mutable {
            if (stop.stop_requested()) {
                return std::shared_ptr<const PlannedFilm>();
            }
            sources.desktopImage = desktopImage();
            return std::make_shared<const PlannedFilm>(planFilm(sources));
        },
        [this, version = m_version, stop = m_session.get_token()](
            Outcome<std::shared_ptr<const PlannedFilm>> outcome) {
            if (stop.stop_requested()) {
                return;
            }
            m_isPlanning = false;
            if (version != m_version) {
                if (!m_planTimer) {
                    plan();
                }
            } else if (outcome) {
                m_film = *std::move(outcome);
                Q_EMIT planned();
            } else {
                Q_EMIT planFailed(QString::fromStdString(outcome.error()));
            }
        });
}

void EditSession::save()
{
    m_saveTimer.reset();
    if (std::exchange(m_isUnsaved, false)) {
        m_ports.edits.run(
            [file = m_sources.bundle->overridesURL(),
             text = encodeSavedOverrides(m_sources.edits)] { writeWhole(file, text); },
            [] {});
    }
}

void EditSession::flush(std::function<void()> done)
{
    save();
    m_ports.edits.run([] {}, std::move(done));
}

void EditSession::setTranscript(std::vector<TranscriptSegment> transcript)
{
    auto analyses = std::make_shared<BundleAnalyses>(*m_sources.analyses);
    analyses->transcript = std::move(transcript);
    m_sources.analyses = std::move(analyses);
}

void EditSession::setWord(int index, const QString& text)
{
    if (index < 0 || static_cast<std::size_t>(index) >= transcript().size()) {
        return;
    }
    std::vector<TranscriptSegment> segments = transcript();
    segments[static_cast<std::size_t>(index)].text = std::string(trimmed(text.toStdString()));
    setTranscript(std::move(segments));
    m_ports.edits.run(
        [file = m_sources.bundle->transcriptURL(), text = encodeTranscript(transcript())] {
            writeWhole(file, text);
        },
        [] {});
    changed();
}

void EditSession::reloadMusic()
{
    if (isLoaded()) {
        m_sources.music.reset();
        Q_EMIT musicChanged();
        apply(resetSection(m_sources.edits));
        changed();
        analyzeMusic();
    }
}

/// Music is planned once its beats are known.
void EditSession::analyzeMusic()
{
    const auto stop = m_session.get_token();
    compute(
        m_ports.analyses,
        this,
        [bundle = m_sources.bundle, stop] { return analyzedMusic(*bundle, {}, stop); },
        [this, stop](Outcome<std::optional<EditPlanner::MusicInfo>> outcome) {
            if (stop.stop_requested() || !outcome || *outcome == m_sources.music) {
                return; // music that cannot be read is left out of the film
            }
            m_sources.music = *std::move(outcome);
            Q_EMIT musicChanged();
            planSoon();
        });
}

/// What an analysis finds becomes a part of what the film is planned from; `next` follows it,
/// whatever it found.
template <typename Result, typename Analyse>
void EditSession::learn(
    Worker& worker, Analyse analyse, Result BundleAnalyses::* part, std::function<void()> next)
{
    const auto stop = m_session.get_token();
    compute(
        worker,
        this,
        [analyse = std::move(analyse), bundle = m_sources.bundle, stop] {
            return stop.stop_requested() ? Result() : analyse(*bundle, stop);
        },
        [this, stop, part, next = std::move(next)](Outcome<Result> outcome) {
            if (stop.stop_requested()) {
                return;
            }
            if (outcome && *outcome != Result() && *outcome != (*m_sources.analyses).*part) {
                auto analyses = std::make_shared<BundleAnalyses>(*m_sources.analyses);
                (*analyses).*part = *std::move(outcome);
                m_sources.analyses = std::move(analyses);
                Q_EMIT editsChanged();
                planSoon();
            }
            if (next) {
                next();
            }
        });
}

/// Clicks that nothing explains are planned around once it is known what they hit.
void EditSession::findRegions()
{
    if (m_sources.analyses->framingHints.empty() && m_ports.analysers.findRegions) {
        learn(m_ports.analyses, m_ports.analysers.findRegions, &BundleAnalyses::framingHints);
    }
}

/// A narration that was never listened to is planned once it is known what it says. The story
/// follows what is said.
void EditSession::transcribeNarration()
{
    const bool isUnheard = transcript().empty() && m_sources.analyses->hasNarration;
    if (isUnheard && m_ports.analysers.transcribe) {
        m_isTranscribing = true;
        Q_EMIT transcribing();
        learn(m_ports.speech, m_ports.analysers.transcribe, &BundleAnalyses::transcript, [this] {
            m_isTranscribing = false;
            Q_EMIT transcribing();
            tellStory();
        });
    } else {
        tellStory();
    }
}

bool EditSession::canTranscribe() const
{
    return isLoaded() && m_sources.analyses->hasNarration && m_ports.analysers.transcribe
           && !m_isTranscribing;
}

void EditSession::retranscribe()
{
    if (!canTranscribe()) {
        return;
    }
    compute(
        m_ports.edits,
        this,
        [file = m_sources.bundle->transcriptURL()] {
            std::error_code ignored; // the worst is that the words stay what they are
            std::filesystem::remove(file, ignored);
        },
        [this, stop = m_session.get_token()](const Outcome<void>&) {
            if (stop.stop_requested() || m_isTranscribing) { // asked twice
                return;
            }
            setTranscript({});
            changed();
            transcribeNarration();
        });
}

void EditSession::tellStory()
{
    if (!m_sources.analyses->semantics && m_ports.analysers.tellStory) {
        learn(
            m_ports.speech,
            [tell = m_ports.analysers.tellStory,
             said = transcript()](const SessionBundle& bundle, const std::stop_token& stop) {
                return tell(bundle, said, stop);
            },
            &BundleAnalyses::semantics);
    }
}

void EditSession::setStaleDismissed(bool isDismissed)
{
    if (m_isStaleDismissed != isDismissed) {
        m_isStaleDismissed = isDismissed;
        Q_EMIT renderStaleChanged();
    }
}

void EditSession::titleChanged()
{
    const AppSettings& settings = m_ports.settings.current();
    if (isLoaded() && settings.titleCard && trimmed(settings.titleCardText).empty()) {
        ++m_version;
        if (!std::exchange(m_isRenderStale, true)) {
            Q_EMIT renderStaleChanged();
        }
    }
}

void EditSession::rendered(std::uint64_t version)
{
    if (version == m_version && std::exchange(m_isRenderStale, false)) {
        Q_EMIT renderStaleChanged();
    }
}

} // namespace zento
