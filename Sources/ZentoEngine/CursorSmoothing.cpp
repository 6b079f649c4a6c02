#include "ZentoEngine/CursorSmoothing.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace zento::EditPlanner {

namespace {

// Seconds of source time, inclusive.
constexpr double kHalfWindow = 0.045;
constexpr double kHandBefore = 0.15;
constexpr double kHandAfter = 0.4;

Vec2 operator+(const Vec2& a, const Vec2& b)
{
    return {a.x + b.x, a.y + b.y};
}

/// Sums of the places in windows whose two ends only move forward.
///
/// A window of a real log holds about eleven moves and is added up as it is. A log with very many
/// moves of one instant would make that quadratic, so wide windows are split at a fixed place: what
/// lies before it comes from sums made once from that place backwards, what lies behind it from a
/// sum that grows. No sum is ever subtracted from, so no error builds up.
class WindowSum {
public:
    explicit WindowSum(std::span<const PointerMove> moves)
        : m_moves(moves)
    {
    }

    /// Over lo...hi, both inclusive.
    Vec2 over(std::size_t lo, std::size_t hi)
    {
        return hi - lo < kWide ? plain(lo, hi) : split(lo, hi);
    }

private:
    static constexpr std::size_t kWide = 128; // moves

    Vec2 plain(std::size_t lo, std::size_t hi) const
    {
        Vec2 sum;
        for (std::size_t i = lo; i <= hi; ++i) {
            sum = sum + m_moves[i].pos;
        }
        return sum;
    }

    Vec2 split(std::size_t lo, std::size_t hi)
    {
        if (lo >= m_split) {
            m_split = hi + 1;
            m_behindEnd = m_split;
            m_behind = {};
            m_before.resize(m_moves.size());
            Vec2 sum;
            for (std::size_t i = m_split; i-- > lo;) {
                sum = sum + m_moves[i].pos;
                m_before[i] = sum;
            }
        }
        for (; m_behindEnd <= hi; ++m_behindEnd) {
            m_behind = m_behind + m_moves[m_behindEnd].pos;
        }
        return m_before[lo] + m_behind;
    }

    std::span<const PointerMove> m_moves;
    std::size_t m_split = 0;
    std::vector<Vec2> m_before; // entry i: the sum over i ... m_split - 1
    Vec2 m_behind;              // the sum over m_split ... m_behindEnd - 1
    std::size_t m_behindEnd = 0;
};

/// The pointer's shape at ascending times.
class ShapeTrack {
public:
    ShapeTrack(const EventList& clicks, std::span<const Moment> moments, const PlanConfig& config)
    {
        for (const Moment& moment : moments) {
            if (moment.kind == Moment::Kind::Typing) {
                m_typing.push_back({moment.start, moment.end});
            }
        }
        std::ranges::sort(m_typing, {}, &Stretch::start);
        if (config.pointerOnClick) {
            for (const InputEvent* click : clicks) {
                m_clicks.push_back({click->t - kHandBefore, click->t + kHandAfter});
            }
            std::ranges::sort(m_clicks, {}, &Stretch::start);
        }
    }

    const char* at(double t)
    {
        if (isInside(m_typing, m_typingReach, t)) {
            return "iBeam";
        }
        return isInside(m_clicks, m_clickReach, t) ? "pointingHand" : "arrow";
    }

private:
    struct Stretch {
        double start = 0;
        double end = 0;
    };

    /// How far the stretches begun so far reach. `t` lies in one of them exactly if it lies up to
    /// there, since all of them began before it.
    struct Reach {
        std::size_t begun = 0;
        double end = -std::numeric_limits<double>::infinity();
    };

    static bool isInside(const std::vector<Stretch>& stretches, Reach& reach, double t)
    {
        for (; reach.begun < stretches.size() && stretches[reach.begun].start <= t; ++reach.begun) {
            reach.end = std::max(reach.end, stretches[reach.begun].end);
        }
        return t <= reach.end;
    }

    std::vector<Stretch> m_typing; // by start
    std::vector<Stretch> m_clicks;
    Reach m_typingReach;
    Reach m_clickReach;
};

std::vector<CursorSample> samplesOf(std::span<const PointerMove> moves, ShapeTrack& shapes)
{
    WindowSum sums(moves);
    std::vector<CursorSample> samples;
    samples.reserve(moves.size());
    std::size_t lo = 0;
    std::size_t hi = 0;
    for (const PointerMove& move : moves) {
        while (moves[lo].t < move.t - kHalfWindow) {
            ++lo;
        }
        while (hi + 1 < moves.size() && moves[hi + 1].t <= move.t + kHalfWindow) {
            ++hi;
        }
        const Vec2 sum = sums.over(lo, hi);
        const auto count = static_cast<double>(hi - lo + 1);
        samples.push_back({move.t, {sum.x / count, sum.y / count}, shapes.at(move.t)});
    }
    return samples;
}

} // namespace

std::vector<CursorSample>
smoothCursor(const EventLog& events, std::span<const Moment> moments, const PlanConfig& config)
{
    ShapeTrack shapes(events.clicks, moments, config);
    if (std::ranges::is_sorted(events.moves, {}, &PointerMove::t)) {
        return samplesOf(events.moves, shapes);
    }
    std::vector<PointerMove> sorted = events.moves;
    std::ranges::stable_sort(sorted, {}, &PointerMove::t);
    return samplesOf(sorted, shapes);
}

} // namespace zento::EditPlanner
