#include "ZentoEngine/CameraDirector.h"

#include "ZentoEngine/NearestTime.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace zento::EditPlanner {

namespace {

constexpr double kHeroDistance = 0.08; // source seconds, exclusive
constexpr double kHeroZoom = 1.9;      // without zoom levels
constexpr double kPlainZoom = 1.45;    // with fewer than two zoom levels
constexpr double kClosestWanted = 1.9;
constexpr double kSmallestFocusWidth = 60; // pixels
constexpr double kZoomedIn = 1.05;         // above this the picture counts as zoomed
constexpr double kLowestAim = 0.12;        // shares of the frame between which the camera aims
constexpr double kHighestAim = 0.88;
constexpr double kSameShotZoom = 0.01;
constexpr double kSameShotDistance = 0.14; // share of the frame
constexpr double kShortestHold = 0.3;      // output seconds
constexpr double kWideAfterRoom = 1.2;     // output seconds a return must last to be worth it
constexpr double kClosingRoom = 0.6;
constexpr double kClosingLead = 0.8;
constexpr double kClosingDelay = 0.5;

double clamped(double value, double low, double high)
{
    return std::min(std::max(value, low), high);
}

std::string_view focusKind(Moment::Kind kind)
{
    switch (kind) {
    case Moment::Kind::Typing:
        return "typing";
    case Moment::Kind::Added:
        return "added";
    case Moment::Kind::Dwell:
        return "dwell";
    case Moment::Kind::Click:
    case Moment::Kind::Scroll:
    case Moment::Kind::Activity:
        break;
    }
    return "click";
}

FocusMoment focusMoment(const Moment& moment, double zoom)
{
    FocusMoment result;
    result.sourceTime = moment.key();
    result.kind = focusKind(moment.kind);
    result.title = moment.title;
    result.zoom = zoom;
    if (moment.start != moment.key()) {
        result.effectiveSourceTime = moment.start;
    }
    result.hold = moment.hold;
    return result;
}

/// One walk over the moments; the state is that of the last keyframe and the last moment.
class Director {
public:
    Director(
        const RemapCurve& remap,
        const SessionMeta& meta,
        const PlanConfig& config,
        const Overrides& overrides,
        std::optional<double> heroTime)
        : m_remap(remap)
        , m_config(config)
        , m_disabled(overrides.disabledZoomSourceTimes)
        , m_heroTime(heroTime)
        , m_width(meta.pixelWidth)
        , m_height(meta.pixelHeight)
        , m_middle{m_width / 2, m_height / 2}
    {
        emit(wide(0));
    }

    void follow(const Moment& moment)
    {
        if (!m_remap.contains(moment.start)) {
            return;
        }
        const double t = std::max(m_remap.outputTime(moment.start) - m_config.cameraLead, 0.0);
        if (moment.kind == Moment::Kind::Scroll) {
            pullBack(t);
        } else {
            frame(moment, t);
        }
        m_lastOut = m_remap.outputTime(moment.end);
    }

    CameraScript finished()
    {
        const bool endsZoomed = m_currentZoom > kZoomedIn;
        const double end = m_remap.outputDuration();
        std::vector<CameraKeyframe> keyframes = withReturns();
        if (end - m_lastOut > kClosingRoom && endsZoomed) {
            keyframes.push_back(wide(std::min(end - kClosingLead, m_lastOut + kClosingDelay)));
        }
        std::ranges::stable_sort(keyframes, {}, &CameraKeyframe::tOut);
        return {std::move(keyframes), std::move(m_focusMoments)};
    }

private:
    CameraKeyframe wide(double t) const { return {t, m_middle, 1}; }

    void emit(const CameraKeyframe& keyframe)
    {
        m_keyframes.push_back(keyframe);
        m_currentZoom = keyframe.zoom;
        m_lastT = keyframe.tOut;
        m_lastCenter = keyframe.center;
    }

    void pullBack(double t)
    {
        if (m_currentZoom > kZoomedIn && t - m_lastT >= m_config.minKeyframeSpacing) {
            emit(wide(t));
        }
    }

    void frame(const Moment& moment, double t)
    {
        const bool isHero = m_heroTime && std::abs(moment.start - *m_heroTime) < kHeroDistance;
        const double zoom =
            moment.forcedZoom.value_or(isHero ? heroZoom() : zoomLevel(moment.focus));
        m_focusMoments.push_back(focusMoment(moment, zoom));
        if (m_disabled.isWithin(kZoomIdentityTolerance, moment.key())) {
            return;
        }
        const bool isPinned = isHero || moment.forcedZoom || moment.editKey || moment.hold;
        const CameraKeyframe shot = {t, aim(moment), zoom};
        if (!isPinned && (isSameShot(shot) || isTooSoon(t))) {
            return;
        }
        emit(shot);
        if (moment.hold) {
            returnAfterHold(moment.start + *moment.hold, t);
        }
    }

    void returnAfterHold(double sourceTime, double t)
    {
        // A hold that ends in cut time has no place in the film to return at.
        if (m_remap.contains(sourceTime) && t + kShortestHold < m_remap.outputTime(sourceTime)) {
            emit(wide(m_remap.outputTime(sourceTime)));
        }
    }

    Vec2 aim(const Moment& moment) const
    {
        const Vec2 target = moment.focus ? moment.focus->center() : moment.pos;
        return {
            clamped(target.x, kLowestAim * m_width, kHighestAim * m_width),
            clamped(target.y, kLowestAim * m_height, kHighestAim * m_height)};
    }

    bool isSameShot(const CameraKeyframe& shot) const
    {
        return std::abs(shot.zoom - m_currentZoom) < kSameShotZoom
               && std::abs(shot.center.x - m_lastCenter.x) / m_width < kSameShotDistance
               && std::abs(shot.center.y - m_lastCenter.y) / m_height < kSameShotDistance;
    }

    /// The very first zoom is never held back.
    bool isTooSoon(double t) const
    {
        return t - m_lastT < m_config.minKeyframeSpacing && m_keyframes.size() >= 2;
    }

    double heroZoom() const
    {
        return m_config.zoomLevels.empty() ? kHeroZoom : m_config.zoomLevels.back();
    }

    /// The level nearest to the zoom at which the focus fills its share of the width.
    double zoomLevel(const std::optional<Rect>& focus) const
    {
        const std::vector<double>& levels = m_config.zoomLevels;
        if (levels.size() < 2) {
            return kPlainZoom;
        }
        if (!focus) {
            return levels[1];
        }
        const double wanted = std::min(
            m_width * m_config.focusFraction / std::max(focus->w, kSmallestFocusWidth),
            kClosestWanted);
        return std::ranges::min(std::span(levels).subspan(1), {}, [wanted](double level) {
            return std::abs(level - wanted);
        });
    }

    /// The keyframes with a return to the whole frame in every long pause after a zoom.
    std::vector<CameraKeyframe> withReturns() const
    {
        std::vector<CameraKeyframe> result;
        for (std::size_t i = 0; i < m_keyframes.size(); ++i) {
            if (i > 0 && m_keyframes[i - 1].zoom > kZoomedIn
                && m_config.wideAfter + kWideAfterRoom
                       < m_keyframes[i].tOut - m_keyframes[i - 1].tOut) {
                result.push_back(wide(m_keyframes[i - 1].tOut + m_config.wideAfter));
            }
            result.push_back(m_keyframes[i]);
        }
        return result;
    }

    const RemapCurve& m_remap;
    const PlanConfig& m_config;
    NearestTime m_disabled;
    std::optional<double> m_heroTime;
    double m_width = 0; // source pixels
    double m_height = 0;
    Vec2 m_middle;

    std::vector<CameraKeyframe> m_keyframes;
    std::vector<FocusMoment> m_focusMoments;
    double m_currentZoom = 1; // of the last keyframe
    double m_lastT = 0;       // output time of the last keyframe
    Vec2 m_lastCenter;
    double m_lastOut = 0; // output time of the last moment's end
};

} // namespace

CameraScript buildCamera(
    std::span<const Moment> moments,
    const RemapCurve& remap,
    const SessionMeta& meta,
    const PlanConfig& config,
    const Overrides& overrides,
    std::optional<double> heroTime)
{
    Director director(remap, meta, config, overrides, heroTime);
    for (const Moment& moment : moments) {
        director.follow(moment);
    }
    return director.finished();
}

} // namespace zento::EditPlanner
