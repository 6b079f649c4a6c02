#include "Zento/Model/FilmExport.h"

#include "Zento/Model/SessionNames.h"

#include <QPointer>

#include <atomic>
#include <cmath>
#include <utility>

namespace zento {

namespace {

constexpr std::chrono::milliseconds kProgressInterval{100};
constexpr double kGuessFrom = 0.03; // of the work must be done before the rest is guessed

} // namespace

FilmMakers filmMakers(std::function<std::optional<std::string>()> desktopImage)
{
    return {
        .film =
            [desktopImage = std::move(desktopImage)](
                const std::filesystem::path& bundle,
                const AppSettings& settings,
                const std::filesystem::path& film,
                const FilmReports& reports,
                const std::stop_token& stop) {
                renderFilm(
                    SessionBundle::load(bundle), settings, film, desktopImage(), reports, stop);
            },
        .gif = renderGif};
}

/// One export. The worker reads it and writes `progress`, nothing else.
struct FilmExport::Job {
    std::filesystem::path bundle;
    QString name;
    AppSettings settings;
    std::filesystem::path film;
    std::filesystem::path gif; // empty: the film is what is wanted
    std::stop_source stop;
    std::atomic<FilmProgress> progress;
    Clock::Instant begun; // of the step under way
    RecordingFlow::Phase phase = RecordingFlow::Phase::Rendering;

    FilmReports reports()
    {
        return {.onProgress = [this](FilmProgress now) { progress = now; }, .onMusicLeftOut = {}};
    }
};

FilmExport::FilmExport(Ports ports)
    : m_ports(std::move(ports))
{
    connect(
        &m_ports.library, &RecordingLibrary::selectedChanged, this, [this] { setDestination({}); });
}

FilmExport::~FilmExport()
{
    cancel();
}

QString FilmExport::session() const
{
    return m_job ? QString::fromStdString(m_job->bundle.string()) : QString();
}

QString FilmExport::name() const
{
    return m_job ? m_job->name : QString();
}

bool FilmExport::isCancelling() const
{
    return m_job && m_job->stop.stop_requested();
}

void FilmExport::setDestination(const QString& path)
{
    if (std::exchange(m_destination, path) != path) {
        Q_EMIT destinationChanged();
    }
}

std::filesystem::path FilmExport::takeDestination(const std::filesystem::path& usual)
{
    std::filesystem::path chosen = m_destination.toStdString();
    setDestination({});
    if (chosen.empty()) {
        return usual;
    }
    // The format may have been changed since, or the name been typed without its end.
    if (chosen.extension() == ".mp4" || chosen.extension() == ".gif") {
        chosen.replace_extension();
    }
    return chosen += usual.extension();
}

void FilmExport::start()
{
    const SessionItem* const item = m_ports.library.selectedSession();
    if (item == nullptr || m_job || m_ports.flow.phase() != RecordingFlow::Phase::Idle) {
        return;
    }
    m_ports.messages.clearErrorMessage();
    m_job = std::make_shared<Job>();
    m_job->bundle = item->url;
    m_job->name = nameOf(*item);
    m_job->settings = m_ports.settings.current();
    m_job->film = SessionBundle{.url = item->url}.filmURL();
    if (m_job->settings.exportFormat == "gif") {
        // A GIF is made from the film, which is then at its usual place.
        m_job->gif = takeDestination(std::filesystem::path(m_job->film).replace_extension("gif"));
    } else {
        m_job->film = takeDestination(m_job->film);
    }
    saveAndMakeFilm();
    Q_EMIT sessionChanged();
}

void FilmExport::beginStep(RecordingFlow::Phase phase)
{
    m_job->progress = FilmProgress{};
    m_job->phase = phase;
    m_job->begun = m_ports.clock.now();
    m_ports.flow.endExport();
    m_ports.flow.beginExport(phase);
    m_progressTimer = m_ports.clock.every(kProgressInterval, [this] { showProgress(); });
    showProgress();
}

/// The film is made of what is in the recording's folder.
void FilmExport::saveAndMakeFilm()
{
    beginStep(RecordingFlow::Phase::Rendering);
    if (!m_ports.saveEdits) {
        makeFilm();
        return;
    }
    m_ports.saveEdits([self = QPointer(this), job = m_job] {
        if (self && self->m_job == job) {
            self->makeFilm();
        }
    });
}

void FilmExport::makeFilm()
{
    compute(
        m_ports.worker,
        this,
        [job = m_job, make = m_ports.makers.film] {
            make(job->bundle, job->settings, job->film, job->reports(), job->stop.get_token());
        },
        [this](const Outcome<void>& outcome) { filmMade(outcome); });
}

void FilmExport::makeGif()
{
    beginStep(RecordingFlow::Phase::ExportingGif);
    compute(
        m_ports.worker,
        this,
        [job = m_job, make = m_ports.makers.gif] {
            make(job->film, job->gif, job->reports(), job->stop.get_token());
        },
        [this](const Outcome<void>& outcome) { gifMade(outcome); });
}

void FilmExport::showProgress()
{
    const FilmProgress now = m_job->progress;
    const double fraction = now.fraction();
    const std::chrono::duration<double> spent = m_ports.clock.now() - m_job->begun;
    m_secondsLeft = fraction < kGuessFrom
                        ? -1
                        : static_cast<int>(std::ceil(spent.count() * (1 - fraction) / fraction));
    m_shown = m_job->phase == RecordingFlow::Phase::Rendering ? now : FilmProgress{};
    m_ports.flow.setProgress(fraction);
    Q_EMIT progressed();
}

void FilmExport::filmMade(const Outcome<void>& outcome)
{
    if (!outcome) {
        failed(tr("Render failed: %1"), outcome.error());
        return;
    }
    ++m_renderGeneration;
    Q_EMIT renderGenerationChanged();
    Q_EMIT filmWritten(session());
    m_ports.library.refresh();
    if (m_job->gif.empty()) {
        succeeded(tr("Video exported"));
    } else if (isCancelling()) {
        failed({}, {});
    } else {
        makeGif();
    }
}

void FilmExport::gifMade(const Outcome<void>& outcome)
{
    if (outcome) {
        succeeded(tr("GIF exported"));
    } else {
        failed(tr("GIF export failed: %1"), outcome.error());
    }
}

void FilmExport::succeeded(const QString& toast)
{
    const std::filesystem::path file = m_job->gif.empty() ? m_job->film : m_job->gif;
    const bool isRevealed = m_job->settings.revealAfterExport;
    end();
    if (isRevealed) {
        m_ports.messages.setToast(toast);
        m_ports.files.reveal(file);
    } else {
        m_ports.messages.setToast(
            toast, tr("Show"), [&files = m_ports.files, file] { files.reveal(file); });
    }
}

void FilmExport::failed(const QString& sentence, const std::string& reason)
{
    const bool isCancelled = isCancelling();
    end();
    if (isCancelled) {
        m_ports.library.refresh();
        m_ports.messages.setToast(tr("Export cancelled"));
    } else {
        m_ports.messages.setErrorMessage(sentence.arg(QString::fromStdString(reason)));
    }
}

void FilmExport::end()
{
    m_progressTimer.reset();
    m_job.reset();
    m_shown = {};
    m_secondsLeft = -1;
    m_ports.flow.endExport();
    Q_EMIT sessionChanged();
    Q_EMIT progressed();
    for (const auto& done : std::exchange(m_onFinished, {})) {
        done();
    }
}

void FilmExport::cancel()
{
    if (m_job && m_job->stop.request_stop()) {
        Q_EMIT sessionChanged();
    }
}

void FilmExport::finish(std::function<void()> done)
{
    if (!m_job) {
        done();
        return;
    }
    m_onFinished.push_back(std::move(done));
    cancel();
}

} // namespace zento
