#include "Zento/Model/TimelineMedia.h"

#include "Zento/Model/PictureImage.h"
#include "ZentoMedia/VideoSeeker.h"
#include "ZentoRender/AudioMixer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {

namespace {

constexpr double kSameTime = 0.1; // source seconds; a picture is not taken anew for less

bool areNear(const std::vector<double>& a, const std::vector<double>& b)
{
    return std::ranges::equal(a, b, [](double x, double y) { return std::abs(x - y) < kSameTime; });
}

/// Whether two films sound alike. A film's times of sound follow from its time curve.
bool soundAlike(const EditPlan& a, const EditPlan& b)
{
    return a.timeRemap == b.timeRemap && a.sfx == b.sfx && a.music == b.music
           && a.narration == b.narration && a.systemAudio == b.systemAudio;
}

std::vector<QImage> readThumbnails(
    const std::filesystem::path& movie,
    const std::vector<double>& times,
    const std::stop_token& stop)
{
    std::vector<QImage> images;
    if (stop.stop_requested()) {
        return images;
    }
    VideoSeeker seeker(movie);
    for (const double time : times) {
        if (stop.stop_requested()) {
            break;
        }
        if (const auto frame = seeker.frame(time, VideoSeeker::Accuracy::Nearby)) {
            images.push_back(toImage(*frame, TimelineMedia::kThumbnailHeight));
        }
    }
    return images;
}

} // namespace

TimelineMedia::TimelineMedia(Ports ports)
    : m_ports(ports)
{
    connect(&m_ports.session, &EditSession::planned, this, &TimelineMedia::refresh);
    refresh();
}

TimelineMedia::~TimelineMedia()
{
    m_pictureJob.request_stop();
    m_soundJob.request_stop();
}

void TimelineMedia::refresh()
{
    if (m_bundle != m_ports.session.bundlePath()) {
        m_bundle = m_ports.session.bundlePath();
        m_heard.reset();
        m_times.clear();
        m_thumbnails.clear();
        m_waveform.clear();
        m_pictureJob.request_stop();
        m_soundJob.request_stop();
        Q_EMIT thumbnailsChanged();
        Q_EMIT waveformChanged();
    }
    if (m_ports.session.film()) {
        refreshThumbnails();
        refreshWaveform();
    }
}

void TimelineMedia::refreshThumbnails()
{
    const auto film = m_ports.session.film();
    std::vector<double> times =
        thumbnailTimes(*film->timelineCurve, film->timelineDuration, kThumbnails);
    if (!m_times.empty() && areNear(times, m_times)) {
        return;
    }
    m_times = std::move(times);
    m_pictureJob.request_stop();
    m_pictureJob = {};
    compute(
        m_ports.pictures,
        this,
        [movie = m_bundle / "screen.mov", wanted = m_times, stop = m_pictureJob.get_token()] {
            return readThumbnails(movie, wanted, stop);
        },
        [this, stop = m_pictureJob.get_token()](Outcome<std::vector<QImage>> images) {
            if (!stop.stop_requested()) {
                m_thumbnails = std::move(images).value_or(std::vector<QImage>{});
                Q_EMIT thumbnailsChanged();
            }
        });
}

void TimelineMedia::refreshWaveform()
{
    const auto film = m_ports.session.film();
    if (m_heard && soundAlike(*m_heard->timelinePlan, *film->timelinePlan)) {
        return;
    }
    m_heard = film;
    m_soundJob.request_stop();
    m_soundJob = {};
    compute(
        m_ports.sounds,
        this,
        [film, bundle = m_bundle, stop = m_soundJob.get_token()] {
            return AudioMixer::waveform(
                *film->timelinePlan, film->timelineDuration, bundle, kBins, stop);
        },
        [this, stop = m_soundJob.get_token()](Outcome<std::vector<float>> bins) {
            if (!stop.stop_requested()) {
                m_waveform = std::move(bins).value_or(std::vector<float>{});
                Q_EMIT waveformChanged();
            }
        });
}

} // namespace zento
