#include "Zento/Model/TimelineModel.h"

#include <algorithm>
#include <ranges>
#include <utility>
#include <vector>

namespace zento {

namespace {

using Kind = TrimDrag::Kind;

std::optional<Kind> kindOf(const QString& handle)
{
    if (handle == QLatin1StringView("start")) {
        return Kind::Start;
    }
    if (handle == QLatin1StringView("end")) {
        return Kind::End;
    }
    return handle == QLatin1StringView("move") ? std::optional(Kind::Move) : std::nullopt;
}

QVariantList cutMarks(const TimelineScale& strip, const std::vector<CutMark>& cuts)
{
    QVariantList list;
    for (const CutMark& cut : cuts) {
        list.append(QVariantMap{{"x", strip.position(cut.tOut)}, {"isOnBeat", cut.isOnBeat}});
    }
    return list;
}

QVariantList beatMarks(const TimelineScale& strip, const std::vector<double>& beats)
{
    QVariantList list;
    if (beats.size() > 1) {
        const double first = strip.position(beats.front());
        const double perBeat =
            (strip.position(beats.back()) - first) / static_cast<double>(beats.size() - 1);
        for (const double beat : thinnedBeats(beats, perBeat)) {
            list.append(strip.position(beat));
        }
    }
    return list;
}

QVariantList zoomBlocks(const TimelineScale& strip, const std::vector<ZoomBar>& zooms)
{
    QVariantList list;
    for (const ZoomBar& zoom : zooms) {
        const BarFrame frame = barFrame(strip, zoom, std::nullopt);
        list.append(QVariantMap{
            {"id", zoom.sourceTime},
            {"x", frame.x},
            {"width", frame.width},
            {"zoom", zoom.zoom},
            {"title", QString::fromStdString(zoom.title)},
            {"enabled", zoom.enabled},
            {"added", zoom.added},
            {"edited", zoom.edited},
            {"tint", zoomTint(zoom.zoom)},
            {"time", zoom.tOut},
            {"timeEnd", zoom.tOutEnd}});
    }
    return list;
}

QVariantList wordChips(const TimelineScale& strip, const std::vector<TimelineWord>& words)
{
    QVariantList list;
    for (const TimelineWord& word : words) {
        const double x = strip.position(word.tOut);
        list.append(QVariantMap{
            {"index", word.index},
            {"x", x},
            {"width", strip.position(word.tOutEnd) - x},
            {"text", QString::fromStdString(word.text)},
            {"time", word.tOut},
            {"timeEnd", word.tOutEnd}});
    }
    return list;
}

} // namespace

TimelineModel::TimelineModel(EditSession& session, LivePreview& preview)
    : m_session(session)
    , m_preview(preview)
{
    connect(&session, &EditSession::opened, this, &TimelineModel::dropDrags);
    connect(&session, &EditSession::planned, this, &TimelineModel::rebuild);
    connect(&session, &EditSession::editsChanged, this, &TimelineModel::editsChanged);
    connect(&preview, &LivePreview::tOutChanged, this, &TimelineModel::playheadChanged);
}

void TimelineModel::setWidth(double width)
{
    if (m_width != width) {
        m_width = width;
        rebuild();
    }
}

void TimelineModel::rebuild()
{
    m_strip = {};
    if (const auto film = m_session.film()) {
        const TimelineScale strip = scale();
        m_strip = {
            .cuts = cutMarks(strip, film->cuts),
            .beats = beatMarks(strip, film->beats),
            .zooms = zoomBlocks(strip, film->zoomBars),
            .words = wordChips(strip, film->words)};
    }
    Q_EMIT stripChanged();
    Q_EMIT editsChanged();
    Q_EMIT playheadChanged();
}

TimelineScale TimelineModel::scale() const
{
    const auto film = m_session.film();
    return {
        .width = m_width,
        .duration = film ? film->timelineDuration : m_session.recorded(),
        .curve = film ? film->timelineCurve : nullptr,
        .recorded = m_session.recorded()};
}

double TimelineModel::duration() const
{
    const auto film = m_session.film();
    return film ? film->timelineDuration : 0;
}

double TimelineModel::playheadX() const
{
    return scale().position(m_preview.playheadTimeline());
}

void TimelineModel::seekTo(double x)
{
    m_preview.seek(scale().timeAt(x));
}

QString TimelineModel::trimDrag() const
{
    if (!m_trimDrag) {
        return {};
    }
    switch (m_trimDrag->drag.kind) {
    case Kind::Start:
        return QStringLiteral("start");
    case Kind::End:
        return QStringLiteral("end");
    case Kind::Move:
        return QStringLiteral("move");
    }
    std::unreachable();
}

void TimelineModel::pressVideo(double x)
{
    if (!m_session.film()) {
        return;
    }
    m_trimDrag = RunningTrim{
        .drag = beginTrim(scale(), m_session.edits(), x), .startX = x, .before = m_session.edits()};
    if (m_trimDrag->drag.kind == Kind::Move) {
        m_preview.pause();
        seekTo(x); // a press is a click on the timeline until it moves
    } else {
        dragVideo(x);
    }
    Q_EMIT dragChanged();
}

void TimelineModel::dragVideo(double x)
{
    if (!m_trimDrag) {
        return;
    }
    const auto step =
        trimTo(scale(), m_session.edits(), m_trimDrag->drag, x, x - m_trimDrag->startX);
    if (step) {
        m_session.apply(*step);
        Q_EMIT dragChanged();
    }
}

void TimelineModel::releaseVideo()
{
    m_trimDrag.reset();
    Q_EMIT dragChanged();
}

void TimelineModel::nudgeTrim(const QString& handle, double seconds)
{
    if (const auto kind = kindOf(handle)) {
        m_session.apply(zento::nudgeTrim(scale(), m_session.edits(), *kind, seconds));
    }
}

void TimelineModel::resetTrim()
{
    m_session.apply(zento::resetTrim(scale(), m_session.edits()));
}

const ZoomBar* TimelineModel::bar(double id) const
{
    const auto film = m_session.film();
    if (!film) {
        return nullptr;
    }
    const auto found = std::ranges::find(film->zoomBars, id, &ZoomBar::sourceTime);
    return found == film->zoomBars.end() ? nullptr : &*found;
}

const ZoomBar* TimelineModel::barAt(double x) const
{
    const auto film = m_session.film();
    if (!film) {
        return nullptr;
    }
    const TimelineScale strip = scale();
    for (const ZoomBar& zoom : film->zoomBars | std::views::reverse) {
        const BarFrame frame = barFrame(strip, zoom, std::nullopt);
        if (frame.x <= x && x < frame.x + frame.width) {
            return &zoom;
        }
    }
    return nullptr;
}

double TimelineModel::zoomAt(double x) const
{
    const ZoomBar* const zoom = barAt(x);
    return zoom == nullptr ? -1 : zoom->sourceTime;
}

bool TimelineModel::stretchesAt(double x) const
{
    const ZoomBar* const zoom = barAt(x);
    if (zoom == nullptr) {
        return false;
    }
    const BarFrame frame = barFrame(scale(), *zoom, std::nullopt);
    return zoomDragAt(frame.width, x - frame.x) == ZoomDrag::Resize;
}

void TimelineModel::beginZoomDrag(double x)
{
    if (const ZoomBar* const zoom = barAt(x)) {
        const BarFrame frame = barFrame(scale(), *zoom, std::nullopt);
        m_zoomDrag = RunningZoom{
            .bar = *zoom, .startX = x, .movement = {.kind = zoomDragAt(frame.width, x - frame.x)}};
        Q_EMIT dragChanged();
    }
}

void TimelineModel::dragZoom(double x)
{
    if (m_zoomDrag) {
        m_zoomDrag->movement.deltaX = x - m_zoomDrag->startX;
        Q_EMIT dragChanged();
    }
}

void TimelineModel::endZoomDrag()
{
    if (const auto drag = std::exchange(m_zoomDrag, std::nullopt)) {
        m_session.apply(zento::endZoomDrag(scale(), m_session.edits(), drag->bar, drag->movement));
        Q_EMIT dragChanged();
    }
}

void TimelineModel::cancelDrag()
{
    if (const auto drag = std::exchange(m_trimDrag, std::nullopt)) {
        SavedOverrides edits = m_session.edits();
        edits.trimStart = drag->before.trimStart;
        edits.trimEnd = drag->before.trimEnd;
        m_session.apply({std::move(edits), EditName::kTrim});
    }
    dropDrags();
}

void TimelineModel::dropDrags()
{
    m_trimDrag.reset();
    m_zoomDrag.reset();
    Q_EMIT dragChanged();
}

bool TimelineModel::isStretching() const
{
    return m_zoomDrag && m_zoomDrag->movement.kind == ZoomDrag::Resize;
}

double TimelineModel::zoomDragTime() const
{
    if (!m_zoomDrag) {
        return 0;
    }
    const TimelineScale strip = scale();
    const ZoomBar& zoom = m_zoomDrag->bar;
    const double edge = isStretching() ? zoom.tOutEnd : zoom.tOut;
    return strip.timeAt(strip.position(edge) + m_zoomDrag->movement.deltaX);
}

void TimelineModel::nudgeZoom(double id, double seconds)
{
    if (const ZoomBar* const zoom = bar(id)) {
        m_session.apply(
            zento::nudgeZoom(scale(), m_session.edits(), *zoom, ZoomDrag::Move, seconds));
    }
}

void TimelineModel::stretchZoom(double id, double seconds)
{
    if (const ZoomBar* const zoom = bar(id)) {
        m_session.apply(
            zento::nudgeZoom(scale(), m_session.edits(), *zoom, ZoomDrag::Resize, seconds));
    }
}

void TimelineModel::toggleZoom(double id)
{
    m_session.apply(zento::toggleZoom(m_session.edits(), id));
}

void TimelineModel::setZoomLevel(double id, double level)
{
    m_session.apply(zento::setZoomLevel(m_session.edits(), id, level));
}

void TimelineModel::resetZoom(double id)
{
    m_session.apply(zento::resetZoom(m_session.edits(), id));
}

void TimelineModel::deleteZoom(double id)
{
    m_session.apply(zento::deleteZoom(m_session.edits(), id));
}

void TimelineModel::addZoomAt(double x)
{
    m_session.apply(zento::addZoomAt(
        scale(), m_session.edits(), scale().timeAt(x), m_session.addedZoomLevel()));
}

void TimelineModel::addZoomAtPlayhead()
{
    m_session.apply(zento::addZoomAt(
        scale(), m_session.edits(), m_preview.playheadTimeline(), m_session.addedZoomLevel()));
}

void TimelineModel::restoreDeletedZooms()
{
    m_session.apply(zento::restoreDeletedZooms(m_session.edits()));
}

} // namespace zento
