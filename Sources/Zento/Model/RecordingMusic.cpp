#include "Zento/Model/RecordingMusic.h"

#include "Zento/Music/MusicLibrary.h"
#include "ZentoCapture/SoundOutput.h"
#include "ZentoMedia/AudioReader.h"

#include <QStringList>
#include <QVariantMap>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace zento {

namespace {

constexpr std::chrono::milliseconds kShowEvery{100}; // what other threads tell

QString text(const std::optional<std::string>& value, const QString& otherwise)
{
    return value ? QString::fromStdString(*value) : otherwise;
}

const MusicLibrary::Track* madeTrack(const std::string& id)
{
    const auto found = std::ranges::find(MusicLibrary::all(), id, &MusicLibrary::Track::id);
    return found == MusicLibrary::all().end() ? nullptr : &*found;
}

void playTrack(
    AudioReader reader, const std::function<void()>& onHeard, const std::stop_token& stop)
{
    const auto output = openSoundOutput();
    bool isHeard = false;
    while (const auto block = stop.stop_requested() ? std::nullopt : reader.next()) {
        output->play(*block, stop);
        if (!std::exchange(isHeard, true))
            onHeard();
    }
    output->finish(stop);
}

} // namespace

RecordingMusic::RecordingMusic(Ports ports)
    : m_ports(std::move(ports))
{
}

RecordingMusic::~RecordingMusic()
{
    m_session.request_stop();
    m_search.request_stop();
    m_preview.request_stop();
}

void RecordingMusic::open(const QString& bundle)
{
    if (bundle.toStdString() == m_bundle)
        return;
    m_session.request_stop();
    m_session = {};
    m_progress.clear();
    m_progressTimer.reset();
    Q_EMIT libraryChanged();
    endSearch();
    m_bundle = bundle.toStdString();
    take({}, {}, {});
    if (m_bundle.empty())
        return;
    const auto shown = [this, opened = m_bundle](Outcome<BundleMusic::Description> music) {
        if (opened == m_bundle && music)
            take(*music, music->exists ? tr("Music track added") : QString(), {});
    };
    compute(m_ports.worker, this, [path = m_bundle] { return BundleMusic::describe(path); }, shown);
}

QString RecordingMusic::creditLine() const
{
    const QStringList lines = credit().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lines.isEmpty() ? QString() : tr("Music: %1").arg(lines.mid(0, 2).join(" · "));
}

QVariantList RecordingMusic::library() const
{
    QVariantList tracks;
    for (const MusicLibrary::Track& track : MusicLibrary::all()) {
        const auto progress = m_progress.find(track.id);
        tracks.push_back(QVariantMap{
            {"id", QString::fromStdString(track.id)},
            {"name", QString::fromStdString(track.name)},
            {"bpm", track.bpm},
            {"progress", progress == m_progress.end() ? -1.0 : progress->second->load()}});
    }
    return tracks;
}

QVariantList RecordingMusic::results() const
{
    QVariantList tracks;
    for (const OnlineTrack& track : m_results) {
        tracks.push_back(QVariantMap{
            {"id", QString::fromStdString(track.id)},
            {"title", text(track.title, tr("Untitled"))},
            {"creator", text(track.creator, tr("Unknown"))},
            {"duration",
             track.duration ? QString::fromStdString(minutesAndSeconds(*track.duration))
                            : QString()},
            {"license", QString::fromStdString(track.licenseText())},
            {"url", QString::fromStdString(track.url)}});
    }
    return tracks;
}

void RecordingMusic::useFile(const QString& path)
{
    const std::filesystem::path file = path.toStdString();
    put([file] { return file; },
        {.name = QString::fromStdString(file.filename().string())},
        [](bool) {});
}

void RecordingMusic::useMade(const QString& id)
{
    const std::string key = id.toStdString();
    const MusicLibrary::Track* track = madeTrack(key);
    if (track == nullptr || m_progress.contains(key))
        return;
    const auto progress = std::make_shared<std::atomic<double>>(0);
    m_progress[key] = progress;
    m_progressTimer = m_ports.clock.every(kShowEvery, [this] { Q_EMIT libraryChanged(); });
    Q_EMIT libraryChanged();
    const auto onProgress = [progress](double done) { progress->store(done); };
    put(
        [make = m_ports.sources.made, key, onProgress, stop = m_session.get_token()] {
            return make(key, onProgress, stop);
        },
        {.name = QString::fromStdString(track->name), .id = id},
        [this, key](bool) {
            m_progress.erase(key);
            if (m_progress.empty())
                m_progressTimer.reset();
            Q_EMIT libraryChanged();
        });
}

void RecordingMusic::useFound(const QString& id)
{
    const OnlineTrack* const track = found(id);
    if (track == nullptr || !m_using.isEmpty())
        return;
    stopPreview();
    m_using = id;
    m_note.clear();
    Q_EMIT searchChanged();
    const QString title = text(track->title, tr("Untitled"));
    // The note tells of a failed download, so the download comes before what tells by itself.
    const auto fetch = [download = m_ports.sources.download,
                        wanted = *track,
                        stop = m_search.get_token()] { return download(wanted, stop); };
    const auto fetched = [this,
                          stop = m_search.get_token(),
                          chosen = Chosen{title, id, m_ports.sources.credit(*track)},
                          title](Outcome<std::filesystem::path> file) {
        if (stop.stop_requested())
            return;
        if (!file) {
            m_using.clear();
            setNote(tr("Download failed — try another track"));
            return;
        }
        put([path = *file] { return path; },
            chosen,
            [this, stop, title](bool isIn) {
                if (stop.stop_requested())
                    return;
                m_using.clear();
                setNote(isIn ? tr("“%1” — credit saved with the recording").arg(title) : QString());
            });
    };
    compute(m_ports.worker, this, fetch, fetched);
}

const OnlineTrack* RecordingMusic::found(const QString& id) const
{
    const auto track = std::ranges::find(m_results, id.toStdString(), &OnlineTrack::id);
    return track == m_results.end() ? nullptr : &*track;
}

void RecordingMusic::togglePreview(const QString& id)
{
    const bool stops = m_previewing == id;
    stopPreview();
    const OnlineTrack* const track = found(id);
    if (stops || track == nullptr || !m_ports.sources.play)
        return;
    m_previewing = id;
    setNote({});
    const auto stop = m_preview.get_token();
    const auto isHeard = std::make_shared<std::atomic<bool>>(false);
    m_previewTimer = m_ports.clock.every(kShowEvery, [this, isHeard] {
        if (*isHeard) {
            m_isPreviewHeard = true;
            m_previewTimer.reset();
            Q_EMIT searchChanged();
        }
    });
    const auto played = [this, stop](const Outcome<void>& outcome) {
        if (stop.stop_requested())
            return;
        stopPreview();
        if (!outcome)
            setNote(tr("Could not play this track"));
    };
    const auto play = [play = m_ports.sources.play, wanted = *track, isHeard, stop] {
        if (!stop.stop_requested())
            play(wanted, [isHeard] { isHeard->store(true); }, stop);
    };
    compute(m_ports.player, this, play, played);
}

void RecordingMusic::stopPreview()
{
    m_preview.request_stop();
    m_preview = {};
    m_previewTimer.reset();
    m_isPreviewHeard = false;
    if (!std::exchange(m_previewing, {}).isEmpty())
        Q_EMIT searchChanged();
}

void RecordingMusic::remove()
{
    const auto removed = [this, opened = m_bundle](const Outcome<void>& outcome) {
        if (opened != m_bundle)
            return;
        if (!outcome) {
            m_ports.messages.setErrorMessage(QString::fromStdString(outcome.error()));
            return;
        }
        take({}, {}, {});
        Q_EMIT fileChanged();
    };
    compute(m_ports.worker, this, [path = m_bundle] { BundleMusic::remove(path); }, removed);
}

void RecordingMusic::runSearch(const QString& query)
{
    endSearch();
    if (query.trimmed().isEmpty())
        return;
    m_isSearching = true;
    Q_EMIT searchChanged();
    const auto ask = [search = m_ports.sources.search,
                      words = query.trimmed().toStdString(),
                      stop = m_search.get_token()] { return search(words, stop); };
    const auto found = [this,
                        stop = m_search.get_token()](Outcome<std::vector<OnlineTrack>> tracks) {
        if (stop.stop_requested())
            return;
        m_isSearching = false;
        if (tracks)
            m_results = std::move(*tracks);
        if (!tracks)
            setNote(tr("Search failed — try again"));
        else
            setNote(m_results.empty() ? tr("No results — try different words") : QString());
    };
    compute(m_ports.worker, this, ask, found);
}

void RecordingMusic::endSearch()
{
    stopPreview();
    m_search.request_stop();
    m_search = {};
    m_results.clear();
    m_using.clear();
    m_isSearching = false;
    setNote({});
}

void RecordingMusic::put(
    std::function<std::filesystem::path()> fetch, Chosen chosen, std::function<void(bool)> done)
{
    const auto work = [bundle = m_bundle, fetch = std::move(fetch), credit = chosen.credit] {
        BundleMusic::put(bundle, fetch(), credit);
        return BundleMusic::describe(bundle);
    };
    const auto isIn = [this, opened = m_bundle, chosen = std::move(chosen), done = std::move(done)](
                          const Outcome<BundleMusic::Description>& music) {
        if (opened != m_bundle)
            return;
        if (music) {
            take(*music, chosen.name, chosen.id);
            Q_EMIT fileChanged();
        } else {
            m_ports.messages.setErrorMessage(
                tr("Could not copy music: %1").arg(QString::fromStdString(music.error())));
        }
        done(music.has_value());
    };
    if (!m_bundle.empty())
        compute(m_ports.worker, this, work, isIn);
}

void RecordingMusic::take(
    const BundleMusic::Description& music, const QString& name, const QString& id)
{
    m_music = music;
    m_name = name;
    m_used = id;
    Q_EMIT musicChanged();
}

void RecordingMusic::setNote(const QString& note)
{
    m_note = note;
    Q_EMIT searchChanged();
}

RecordingMusic::Sources musicSources(const MusicService& service)
{
    const auto search = std::make_shared<const MusicSearch>(service);
    return {
        .made =
            [](const std::string& id, const auto& onProgress, const std::stop_token& stop) {
                return MusicLibrary::ensure(*madeTrack(id), onProgress, stop);
            },
        .search =
            [search](const std::string& query, const std::stop_token& stop) {
                return search->search(query, stop);
            },
        .download =
            [search](const OnlineTrack& track, const std::stop_token& stop) {
                return search->download(track, stop);
            },
        .credit = [search](const OnlineTrack& track) { return search->credit(track); },
        .play =
            [search](
                const OnlineTrack& track,
                const std::function<void()>& onHeard,
                const std::stop_token& stop) {
                playTrack(search->stream(track, SoundOutput::kSampleRate, stop), onHeard, stop);
            }};
}

} // namespace zento
