#pragma once

#include "Zento/Model/Clock.h"
#include "Zento/Model/EditSession.h"
#include "Zento/Model/FrameComposer.h"
#include "Zento/Model/Worker.h"
#include "ZentoRender/ProxyStore.h"

#include <QImage>
#include <QObject>
#include <QString>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace zento {

/// Makes a bundle's proxy and gives its path; as `ProxyStore::ensure`.
using ProxyMaker = std::function<std::filesystem::path(
    const std::filesystem::path& bundle,
    const ProxyStore::Progress& onProgress,
    const std::stop_token& stop)>;

/// The film of the open recording without rendering it: the playhead, the frame under it, play.
///
/// Frames come from the recording itself until its proxy is made, then from the proxy. One is
/// composed at a time, and of the requests that come meanwhile the newest counts.
///
/// Threading: the main thread. The proxy is made on the worker, frames on the composer's thread.
class LivePreview : public QObject {
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    /// Share of the proxy that is made, [0, 1], while `state` is `PreparingProxy`.
    Q_PROPERTY(double proxyProgress READ proxyProgress NOTIFY stateChanged)
    /// Why `state` is `Failed`; a whole sentence.
    Q_PROPERTY(QString failure READ failure NOTIFY stateChanged)
    Q_PROPERTY(double tOut READ tOut NOTIFY tOutChanged)         // seconds of the film
    Q_PROPERTY(double duration READ duration NOTIFY filmChanged) // seconds, trim applied
    Q_PROPERTY(double playheadTimeline READ playheadTimeline NOTIFY tOutChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY isPlayingChanged)
    /// Shown over the frame while stepping; empty for none.
    Q_PROPERTY(QString scrubHint READ scrubHint NOTIFY scrubHintChanged)
    Q_PROPERTY(bool hasImage READ hasImage NOTIFY imageChanged)

public:
    enum class State { Empty, PreparingProxy, Ready, Failed };
    Q_ENUM(State)

    struct Ports {
        Clock& clock;
        Worker& proxies;
        EditSession& session;
        ProxyMaker makeProxy;
        FrameComposerFactory makeComposer;
    };

    explicit LivePreview(Ports ports);
    ~LivePreview() override;

    State state() const { return m_state; }
    double proxyProgress() const { return m_progressShown; }
    QString failure() const { return m_failure; }
    double tOut() const { return m_tOut; }
    double duration() const { return m_film ? m_film->duration : 0; }
    double playheadTimeline() const;
    bool isPlaying() const { return m_playTimer != nullptr; }
    QString scrubHint() const { return m_scrubHint; }
    bool hasImage() const { return !m_image.isNull(); }
    const QImage& image() const { return m_image; } // stays until another one is there

    Q_INVOKABLE void play();
    Q_INVOKABLE void pause();
    Q_INVOKABLE void togglePlaying();
    /// A time on the timeline, where the trim is not applied.
    Q_INVOKABLE void seek(double timeline);
    Q_INVOKABLE void skip(double seconds);
    /// By frames of the film; pauses, and tells the place for a moment.
    Q_INVOKABLE void step(int frames);
    Q_INVOKABLE void seekToStart();
    Q_INVOKABLE void seekToEnd();

    /// While something else keeps the time, such as sound that plays, the playhead follows it
    /// instead of counting ticks: seconds of the film, or nothing to count on.
    using TimeSource = std::function<std::optional<double>()>;
    void follow(TimeSource source) { m_timeSource = std::move(source); }

Q_SIGNALS:
    void stateChanged();
    void tOutChanged();
    void filmChanged();
    void isPlayingChanged();
    void scrubHintChanged();
    void imageChanged();
    /// The playhead was put somewhere, not played there.
    void sought();

private:
    struct ProxyJob;

    void load();
    void prepareProxy();
    void proxyMade(const ProxyJob& job, const Outcome<std::filesystem::path>& outcome);
    void fail(const QString& sentence);
    void setState(State state);
    void takeFilm();
    void moveTo(double tOut, PreviewDetail detail = PreviewDetail::Exact);
    void tick();
    void requestFrame(PreviewDetail detail = PreviewDetail::Exact);
    void deliver(LiveFrame frame);

    Ports m_ports;
    std::unique_ptr<FrameComposer> m_composer;
    State m_state = State::Empty;
    double m_progressShown = 0;
    QString m_failure;
    std::shared_ptr<ProxyJob> m_proxyJob;
    PreviewSource m_source;
    std::shared_ptr<const PlannedFilm> m_film;
    double m_tOut = 0;
    QImage m_image;
    QString m_scrubHint;
    std::uint64_t m_lastRequest = 0;
    std::uint64_t m_lastDraft = 0;      // the request for a draft, if it was one
    std::uint64_t m_firstOfSession = 1; // requests before are of another recording
    TimeSource m_timeSource;
    std::unique_ptr<Timer> m_playTimer;
    std::unique_ptr<Timer> m_hintTimer;
    std::unique_ptr<Timer> m_progressTimer;
};

} // namespace zento
