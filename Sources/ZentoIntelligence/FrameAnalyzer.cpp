#include "ZentoIntelligence/FrameAnalyzer.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoIntelligence/PictureRegions.h"
#include "ZentoMedia/VideoSeeker.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento::FrameAnalyzer {

namespace {

constexpr double kJustBefore = 0.05; // seconds: a click changes what it hits
constexpr int kLongestSide = 1920;   // pixels; no region of interest is lost in more

/// The size in which a picture is looked at: that of its display in points.
VideoSize seenSize(const VideoSize& picture, const SessionMeta& meta)
{
    const int longer = std::max(picture.width, picture.height);
    const double smaller =
        std::max({1.0, meta.scaleFactor, static_cast<double>(longer) / kLongestSide});
    const auto seen = [smaller](int pixels) {
        return std::max(1, static_cast<int>(std::lround(pixels / smaller)));
    };
    return {seen(picture.width), seen(picture.height)};
}

/// The regions of one frame after the other; clicks on the same picture share them.
class FrameRegions {
public:
    FrameRegions(const std::filesystem::path& movie, SessionMeta meta)
        : m_seeker(movie)
        , m_meta(std::move(meta))
    {
    }

    std::optional<Rect> regionOf(const InputEvent& click)
    {
        const auto frame = m_seeker.frame(std::max(click.t - kJustBefore, 0.0));
        if (!frame)
            return std::nullopt;
        if (!m_regions || frame->identity() != m_identity)
            m_regions.emplace(*frame, seenSize(frame->size(), m_meta));
        m_identity = frame->identity();
        const VideoSize size = m_regions->size();
        const double sx = static_cast<double>(size.width) / m_meta.pixelWidth;
        const double sy = static_cast<double>(size.height) / m_meta.pixelHeight;
        const Vec2 place = {click.pos.x * sx, click.pos.y * sy};
        const auto best = bestRegion(place, m_regions->around(place), size);
        if (!best)
            return std::nullopt;
        return Rect{best->x / sx, best->y / sy, best->w / sx, best->h / sy};
    }

private:
    VideoSeeker m_seeker;
    SessionMeta m_meta;
    std::uint64_t m_identity = 0;
    std::optional<PictureRegions> m_regions;
};

} // namespace

std::vector<FramingHint> loadOrAnalyze(const SessionBundle& bundle, const std::stop_token& stop)
{
    try {
        return decodeFramingHints(readFile(bundle.framingURL()));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): they are made now
    }
    const std::vector<InputEvent> clicks = needyClicks(bundle.events, bundle.meta);
    if (clicks.empty())
        return {};
    auto hints = analyze(bundle.screenMovieURL(), bundle.meta, clicks, stop);
    if (stop.stop_requested())
        return {};
    try {
        writeFile(bundle.framingURL(), encodeFramingHints(hints));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): they are made again the next time
    }
    return hints;
}

std::vector<InputEvent> needyClicks(const std::vector<InputEvent>& events, const SessionMeta& meta)
{
    std::vector<InputEvent> clicks;
    for (const InputEvent& event : events)
        if (event.kind == EventKind::Click && (!event.ax || !event.ax->usableFrame(meta)))
            clicks.push_back(event);
    return clicks;
}

std::vector<FramingHint> analyze(
    const std::filesystem::path& movie,
    const SessionMeta& meta,
    std::span<const InputEvent> clicks,
    const std::stop_token& stop)
{
    FrameRegions regions(movie, meta);
    std::vector<FramingHint> hints;
    for (const InputEvent& click : clicks) {
        if (stop.stop_requested())
            break;
        if (const auto region = regions.regionOf(click))
            hints.push_back({click.t, *region});
    }
    return hints;
}

std::optional<Rect>
bestRegion(Vec2 place, std::span<const Rect> candidates, const VideoSize& frameSize)
{
    constexpr double kSmallest = 0.015;
    constexpr double kLargest = 0.6;
    const double whole = static_cast<double>(frameSize.width) * frameSize.height;
    std::optional<Rect> best;
    for (const Rect& rect : candidates) {
        const double area = rect.w * rect.h;
        const bool isPlausible = area >= kSmallest * whole && area <= kLargest * whole;
        if (isPlausible && holds(rect, place) && (!best || area < best->w * best->h))
            best = rect;
    }
    return best;
}

} // namespace zento::FrameAnalyzer
