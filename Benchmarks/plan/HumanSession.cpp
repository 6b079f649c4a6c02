#include "HumanSession.h"

#include "TestSupport/Random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>

namespace zento::bench {

namespace {

using test::Random;

constexpr double kHour = 3600;
constexpr double kMovesPerSecond = 120;
constexpr int kBoutsPerHour = 500; // of typing, clicking and scrolling
constexpr int kBoutsBetweenPauses = 10;
constexpr double kPause = 12; // seconds
constexpr int kKeysPerBout = 40;
constexpr int kClicksPerBout = 6;
constexpr int kTicksPerBout = 10;

/// A pointer that glides from place to place, at the half pixels of a display with two per point.
class Pointer {
public:
    explicit Pointer(Random& random)
        : m_random(random)
    {
    }

    Vec2 at(double t)
    {
        if (t >= m_arrival) {
            m_from = m_to;
            m_to = {m_random.uniform(0, 2880), m_random.uniform(0, 1800)};
            m_departure = t;
            m_arrival = t + m_random.uniform(0.4, 2);
        }
        const double a = (t - m_departure) / (m_arrival - m_departure);
        const double eased = a * a * (3 - 2 * a);
        const auto place = [&](double from, double to) {
            return std::round((from + (to - from) * eased) * 2) / 2;
        };
        return {place(m_from.x, m_to.x), place(m_from.y, m_to.y)};
    }

private:
    Random& m_random;
    Vec2 m_from;
    Vec2 m_to;
    double m_departure = 0;
    double m_arrival = 0;
};

AXInfo element(Random& random)
{
    static const std::array<std::string, 4> kRoles = {
        "AXButton", "AXTextField", "AXMenuItem", "AXTextArea"};
    const Rect frame = {
        random.uniform(0, 2500),
        random.uniform(0, 1600),
        random.uniform(30, 900),
        random.uniform(20, 300)};
    return {random.pick(kRoles), frame, "A control"};
}

void addBout(std::vector<InputEvent>& events, double start, Random& random)
{
    constexpr std::string_view kLetters = "etaoinshrdlu ";
    double t = start;
    const auto add = [&](EventKind kind, double step) -> InputEvent& {
        t += step;
        InputEvent& event = events.emplace_back();
        event.t = t;
        event.kind = kind;
        event.pos = {random.uniform(0, 2880), random.uniform(0, 1800)};
        return event;
    };
    for (int i = 0; i < kClicksPerBout; ++i) {
        InputEvent& click = add(EventKind::Click, random.uniform(0.1, 0.3));
        click.button = 0;
        if (random.chance(0.8)) {
            click.ax = element(random);
        }
    }
    for (int i = 0; i < kKeysPerBout; ++i) {
        add(EventKind::KeyDown, random.uniform(0.05, 0.12)).key =
            std::string(1, random.pick(kLetters));
    }
    for (int i = 0; i < kTicksPerBout; ++i) {
        add(EventKind::Scroll, random.uniform(0.02, 0.05)).scroll = Vec2{0, -12};
    }
}

} // namespace

SessionBundle humanSession(double hours)
{
    Random random(1);
    SessionBundle session;
    session.meta.pixelWidth = 2880;
    session.meta.pixelHeight = 1800;
    session.meta.scaleFactor = 2;
    session.meta.nominalFPS = 60;
    session.meta.duration = hours * kHour;

    const auto bouts = static_cast<int>(hours * kBoutsPerHour);
    const double round = kHour * kBoutsBetweenPauses / kBoutsPerHour; // bouts and a pause
    const double boutLength = (round - kPause) / kBoutsBetweenPauses;
    for (int i = 0; i < bouts; ++i) {
        const int roundIndex = i / kBoutsBetweenPauses;
        const int inRound = i % kBoutsBetweenPauses;
        addBout(session.events, roundIndex * round + inRound * boutLength, random);
    }
    Pointer pointer(random);
    const auto moves = static_cast<std::size_t>(hours * kHour * kMovesPerSecond);
    for (std::size_t i = 0; i < moves; ++i) {
        InputEvent& move = session.events.emplace_back();
        move.t = (static_cast<double>(i) + random.uniform(0, 0.5)) / kMovesPerSecond;
        move.pos = pointer.at(move.t);
    }
    std::ranges::stable_sort(session.events, {}, &InputEvent::t);
    return session;
}

EditPlanner::PlanInput richInput(const SessionBundle& session)
{
    Random random(2);
    EditPlanner::PlanInput input;
    input.events = session.events;
    input.meta = session.meta;
    input.config.showKeystrokes = true;
    for (double t = 3; t < session.meta.duration; t += random.uniform(4, 12)) {
        input.transcript.push_back(
            {t,
             t + random.uniform(1, 6),
             "And here we open the settings and choose what is shown."});
    }
    for (const InputEvent& event : session.events) {
        if (event.kind != EventKind::Click) {
            continue;
        }
        input.framingHints.push_back({event.t, {100, 100, 400, 300}});
        const double place = random.uniform(0, 1);
        if (place < 0.2) {
            input.overrides.zoomEdits.push_back({event.t, event.t + 0.2, 1.5, 1.7});
        } else if (place < 0.3) {
            input.overrides.disabledZoomSourceTimes.push_back(event.t);
        } else if (place < 0.4) {
            input.overrides.deletedZoomSourceTimes.push_back(event.t);
        } else if (place < 0.5) {
            input.overrides.addedZooms.push_back({event.t, event.t, 1.5, 1.6});
        } else if (place < 0.55) {
            input.overrides.removedRanges.push_back({event.t, event.t + 0.3});
        }
    }
    return input;
}

} // namespace zento::bench
