#include "Zento/Model/MusicTrack.h"

#include "Zento/Timeline/TimelineContents.h"
#include "ZentoMedia/SoundLevels.h"

#include <utility>

namespace zento {

namespace {

std::optional<SectionDrag::Kind> kindOf(const QString& edge)
{
    if (edge == QLatin1StringView("start")) {
        return SectionDrag::Kind::Start;
    }
    if (edge == QLatin1StringView("end")) {
        return SectionDrag::Kind::End;
    }
    return edge == QLatin1StringView("move") ? std::optional(SectionDrag::Kind::Move)
                                             : std::nullopt;
}

} // namespace

MusicTrack::MusicTrack(EditSession& session, Worker& worker)
    : m_session(session)
    , m_worker(worker)
{
    connect(&session, &EditSession::musicChanged, this, &MusicTrack::refresh);
    connect(&session, &EditSession::opened, this, &MusicTrack::refresh);
    connect(&session, &EditSession::editsChanged, this, &MusicTrack::changed);
}

MusicTrack::~MusicTrack()
{
    m_reading.request_stop();
}

void MusicTrack::setWidth(double width)
{
    if (m_width != width) {
        m_width = width;
        Q_EMIT changed();
    }
}

double MusicTrack::duration() const
{
    return m_music ? m_music->grid.duration : 0;
}

double MusicTrack::bpm() const
{
    return m_music ? m_music->grid.bpm : 0;
}

QList<qreal> MusicTrack::beats() const
{
    QList<qreal> list;
    if (m_music) {
        const TrackScale strip = scale();
        const double perBeat = strip.position(m_music->grid.period);
        for (const double beat : thinnedBeats(m_music->grid.beats(), perBeat)) {
            list.append(strip.position(beat));
        }
    }
    return list;
}

bool MusicTrack::isChosen() const
{
    return isSectionChosen(m_session.edits(), duration());
}

MusicSection MusicTrack::section() const
{
    return musicSection(m_session.edits(), duration());
}

bool MusicTrack::resizesAt(double x) const
{
    return beginSection(scale(), m_session.edits(), x).kind != SectionDrag::Kind::Move;
}

void MusicTrack::press(double x)
{
    if (m_music) {
        m_drag = {.drag = beginSection(scale(), m_session.edits(), x), .before = m_session.edits()};
        drag(x);
    }
}

void MusicTrack::drag(double x)
{
    if (m_drag) {
        m_session.apply(sectionTo(scale(), m_session.edits(), m_drag->drag, x));
        Q_EMIT changed();
    }
}

void MusicTrack::release()
{
    m_drag.reset();
    Q_EMIT changed();
}

void MusicTrack::cancelDrag()
{
    if (const auto running = std::exchange(m_drag, std::nullopt)) {
        SavedOverrides edits = m_session.edits();
        edits.musicStart = running->before.musicStart;
        edits.musicEnd = running->before.musicEnd;
        m_session.apply({std::move(edits), EditName::kMusicSection});
        Q_EMIT changed();
    }
}

void MusicTrack::nudge(const QString& edge, double seconds)
{
    const auto kind = kindOf(edge);
    if (m_music && kind) {
        m_session.apply(nudgeSection(scale(), m_session.edits(), *kind, seconds));
    }
}

void MusicTrack::reset()
{
    m_session.apply(resetSection(m_session.edits()));
}

void MusicTrack::refresh()
{
    m_drag.reset();
    if (m_music != m_session.music()) {
        m_music = m_session.music();
        m_reading.request_stop();
        m_reading = {};
        m_levels.clear();
        Q_EMIT levelsChanged();
        if (m_music) {
            readLevels();
        }
    }
    Q_EMIT changed();
}

void MusicTrack::readLevels()
{
    compute(
        m_worker,
        this,
        [file = m_music->file, duration = duration(), stop = m_reading.get_token()] {
            return soundLevels(file, duration, kBins, stop);
        },
        [this, stop = m_reading.get_token()](Outcome<std::vector<float>> levels) {
            if (levels && !stop.stop_requested()) {
                m_levels = QList<qreal>(levels->begin(), levels->end());
                Q_EMIT levelsChanged();
            }
        });
}

} // namespace zento
