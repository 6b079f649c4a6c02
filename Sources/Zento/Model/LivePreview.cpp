#include "Zento/Model/LivePreview.h"

#include "ZentoRender/FrameReplay.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace zento {

namespace {

using namespace std::chrono_literals;

constexpr double kTick = 1.0 / 30; // seconds
constexpr auto kTickInterval = 33ms;
constexpr auto kHintTime = 900ms;
constexpr auto kProgressInterval = 100ms;
constexpr double kEndReach = 0.05;  // seconds: playing from here starts over
constexpr double kBeforeEnd = 0.01; // where a playhead beyond a new end goes

/// A tick later. Ticks add up to the camera's steps but for rounding: on one of them, or the camera
/// would stand still in one frame and take two steps in the next.
double afterTick(double tOut)
{
    constexpr double kRounding = 1e-6; // seconds
    const double next = tOut + kTick;
    const double step = FrameReplay::kStep * std::round(next / FrameReplay::kStep);
    return std::abs(step - next) < kRounding ? step : next;
}

QString hint(double t, double frame)
{
    const double minutes = std::floor(std::floor(t) / 60);
    return QStringLiteral("%1:%2 · frame %3")
        .arg(static_cast<int>(minutes))
        .arg(std::fmod(t, 60), 4, 'f', 1, QLatin1Char('0'))
        .arg(static_cast<int>(frame));
}

} // namespace

/// A proxy that is being made, or was.
struct LivePreview::ProxyJob {
    std::stop_source stop;
    std::atomic<double> progress = 0;
};

LivePreview::LivePreview(Ports ports)
    : m_ports(std::move(ports))
    , m_composer(m_ports.makeComposer([this](LiveFrame frame) { deliver(std::move(frame)); }))
{
    EditSession* const session = &m_ports.session;
    connect(session, &EditSession::opened, this, &LivePreview::load);
    connect(session, &EditSession::loadFailed, this, &LivePreview::fail);
    connect(session, &EditSession::planned, this, &LivePreview::takeFilm);
    load();
    takeFilm();
}

LivePreview::~LivePreview()
{
    if (m_proxyJob) {
        m_proxyJob->stop.request_stop();
    }
}

void LivePreview::load()
{
    pause();
    if (m_proxyJob) {
        m_proxyJob->stop.request_stop();
        m_proxyJob.reset();
    }
    m_progressTimer.reset();
    m_composer->drop();
    m_firstOfSession = m_lastRequest + 1;
    m_film.reset();
    m_tOut = 0;
    m_image = {};
    m_failure.clear();
    m_progressShown = 0;
    const std::filesystem::path& bundle = m_ports.session.bundlePath();
    m_source = {bundle / "screen.mov", bundle};
    setState(bundle.empty() ? State::Empty : State::PreparingProxy);
    Q_EMIT filmChanged();
    Q_EMIT tOutChanged();
    Q_EMIT imageChanged();
    if (!bundle.empty()) {
        prepareProxy();
    }
}

void LivePreview::prepareProxy()
{
    m_proxyJob = std::make_shared<ProxyJob>();
    compute(
        m_ports.proxies,
        this,
        [job = m_proxyJob, make = m_ports.makeProxy, bundle = m_source.bundle] {
            if (job->stop.stop_requested()) {
                return std::filesystem::path();
            }
            return make(
                bundle, [&](double share) { job->progress = share; }, job->stop.get_token());
        },
        [this, job = m_proxyJob](const Outcome<std::filesystem::path>& outcome) {
            proxyMade(*job, outcome);
        });
    m_progressTimer = m_ports.clock.every(kProgressInterval, [this] {
        if (m_proxyJob && m_progressShown != m_proxyJob->progress) {
            m_progressShown = m_proxyJob->progress;
            Q_EMIT stateChanged();
        }
    });
}

void LivePreview::proxyMade(const ProxyJob& job, const Outcome<std::filesystem::path>& outcome)
{
    if (m_proxyJob.get() != &job) {
        return; // of a recording that was left
    }
    m_proxyJob.reset();
    m_progressTimer.reset();
    if (!outcome) {
        fail(QString::fromStdString(outcome.error()));
        return;
    }
    m_source.screen = *outcome;
    setState(State::Ready);
    requestFrame();
}

void LivePreview::fail(const QString& sentence)
{
    pause();
    m_failure = sentence;
    setState(State::Failed);
}

void LivePreview::setState(State state)
{
    m_state = state;
    Q_EMIT stateChanged();
}

void LivePreview::takeFilm()
{
    m_film = m_ports.session.film();
    if (m_film) {
        m_tOut = std::min(m_tOut, std::max(m_film->duration - kBeforeEnd, 0.0));
    }
    Q_EMIT filmChanged();
    Q_EMIT tOutChanged();
    requestFrame();
}

double LivePreview::playheadTimeline() const
{
    return m_film ? m_film->toTimeline(m_tOut) : m_tOut;
}

/// A draft is followed by the frame itself when nothing newer was asked for.
void LivePreview::requestFrame(PreviewDetail detail)
{
    if (!m_film || m_state == State::Empty || m_state == State::Failed) {
        return;
    }
    ++m_lastRequest;
    if (detail == PreviewDetail::Draft) {
        m_lastDraft = m_lastRequest;
    }
    m_composer->request(
        {.number = m_lastRequest,
         .film = m_film->film,
         .source = m_source,
         .tOut = m_tOut,
         .detail = detail});
}

void LivePreview::deliver(LiveFrame frame)
{
    if (frame.number < m_firstOfSession || frame.image.isNull()) {
        return; // of a recording that was left; or unreadable: the picture before stays
    }
    m_image = std::move(frame.image);
    Q_EMIT imageChanged();
    if (frame.number == m_lastDraft && frame.number == m_lastRequest) {
        requestFrame();
    }
}

void LivePreview::moveTo(double tOut, PreviewDetail detail)
{
    m_tOut = std::min(duration(), std::max(tOut, 0.0));
    Q_EMIT tOutChanged();
    requestFrame(detail);
}

void LivePreview::play()
{
    if (!m_film || m_state == State::Empty || m_state == State::Failed || !(duration() > 0)) {
        return;
    }
    if (m_tOut >= duration() - kEndReach) {
        moveTo(0);
        Q_EMIT sought();
    }
    const bool wasPlaying = isPlaying();
    m_playTimer = m_ports.clock.every(kTickInterval, [this] { tick(); });
    if (!wasPlaying) {
        Q_EMIT isPlayingChanged();
    }
}

void LivePreview::tick()
{
    const std::optional<double> time = m_timeSource ? m_timeSource() : std::nullopt;
    const double next = time.value_or(afterTick(m_tOut));
    if (next >= duration()) {
        moveTo(duration());
        pause();
    } else if (next != m_tOut) {
        moveTo(next);
    }
}

void LivePreview::pause()
{
    if (std::exchange(m_playTimer, nullptr)) {
        Q_EMIT isPlayingChanged();
    }
}

void LivePreview::togglePlaying()
{
    if (isPlaying()) {
        pause();
    } else {
        play();
    }
}

void LivePreview::seek(double timeline)
{
    if (m_film) {
        const bool hasWebcam = m_film->film->plan->webcam.has_value();
        moveTo(
            m_film->fromTimeline(timeline),
            hasWebcam ? PreviewDetail::Draft : PreviewDetail::Exact);
        Q_EMIT sought();
    }
}

void LivePreview::skip(double seconds)
{
    if (m_film) {
        moveTo(m_tOut + seconds);
        Q_EMIT sought();
    }
}

void LivePreview::seekToStart()
{
    skip(-m_tOut);
}

void LivePreview::seekToEnd()
{
    skip(duration() - m_tOut);
}

void LivePreview::step(int frames)
{
    if (!m_film || m_state == State::Empty || m_state == State::Failed || !(duration() > 0)) {
        return;
    }
    pause();
    const double dt = 1 / std::max(m_film->film->plan->output.fps, 1.0);
    const double frame =
        std::min(std::max(std::round(m_tOut / dt) + frames, 0.0), std::floor(duration() / dt));
    moveTo(dt * frame);
    Q_EMIT sought();
    m_scrubHint = hint(m_tOut, frame);
    Q_EMIT scrubHintChanged();
    m_hintTimer = m_ports.clock.every(kHintTime, [this] {
        m_hintTimer.reset();
        m_scrubHint.clear();
        Q_EMIT scrubHintChanged();
    });
}

} // namespace zento
