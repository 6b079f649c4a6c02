#include "TestSupport/RandomSession.h"

#include "TestSupport/Random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace zento::test {

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

class SessionWriter {
public:
    SessionWriter(Random& random, std::vector<InputEvent>& events)
        : m_random(random)
        , m_events(events)
    {
    }

    /// Activities one after the other for about `length` seconds. Returns the end.
    double write(double length)
    {
        while (m_t < length) {
            switch (m_random.below(5)) {
            case 0:
                burst(EventKind::KeyDown, 1 + m_random.below(40));
                break;
            case 1:
                burst(EventKind::Scroll, 1 + m_random.below(15));
                break;
            case 2:
                m_t += m_random.chance(0.5) ? m_random.uniform(0, 8) : 2.65;
                break;
            default:
                add(EventKind::Click);
                m_t += gap();
            }
            moves(m_random.below(12));
        }
        return m_t;
    }

private:
    /// Often one of the gaps that rules compare with.
    double gap()
    {
        constexpr std::array kGaps = {0.0, 0.05, 0.1, 0.25, 0.4, 0.45, 0.55, 0.6, 0.8};
        return m_random.chance(0.4) ? m_random.pick(kGaps) : m_random.uniform(0.01, 0.7);
    }

    void burst(EventKind kind, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            add(kind);
            m_t += m_random.chance(0.8) ? m_random.uniform(0.03, 0.3) : gap();
        }
    }

    void moves(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            add(EventKind::Move);
            m_t += m_random.chance(0.1) ? 0 : m_random.uniform(0.001, 0.05);
        }
        if (m_random.chance(0.2)) {
            add(EventKind::MouseUp);
        }
    }

    void add(EventKind kind)
    {
        InputEvent event;
        event.kind = kind;
        event.t = m_random.chance(0.3) ? std::round(m_t * 20) / 20 : m_t;
        event.pos = {m_random.uniform(-50, kWidth + 50), m_random.uniform(-50, kHeight + 50)};
        if (kind == EventKind::KeyDown && m_random.chance(0.9)) {
            event.key = label();
        }
        if (kind == EventKind::Click && m_random.chance(0.6)) {
            event.ax = element();
        }
        m_events.push_back(std::move(event));
    }

    std::string label()
    {
        static const std::array<std::string, 12> kLabels = {
            "a", "b", "é", "e\u0301", "", "⌘S", "Esc", " ", "\u0301", "👩‍💻", "🇩🇪", "🇫"};
        return m_random.pick(kLabels);
    }

    AXInfo element()
    {
        static const std::array<std::string, 4> kRoles = {
            "AXButton", "AXTextField", "AXTextArea", "AXGroup"};
        AXInfo info;
        info.role = m_random.pick(kRoles);
        info.frame = {
            m_random.uniform(-100, kWidth),
            m_random.uniform(-100, kHeight),
            m_random.uniform(0, 1400),
            m_random.uniform(0, 400)};
        if (m_random.chance(0.5)) {
            info.title = "title";
        }
        return info;
    }

    Random& m_random;
    std::vector<InputEvent>& m_events;
    double m_t = 0;
};

void disturb(std::vector<InputEvent>& events, Random& random)
{
    if (events.empty()) {
        return;
    }
    for (std::size_t i = events.size() / 8; i-- > 0;) {
        std::swap(events[random.below(events.size())], events[random.below(events.size())]);
        events[random.below(events.size())].t = events[random.below(events.size())].t;
    }
}

std::vector<TranscriptSegment> speech(Random& random, double length)
{
    std::vector<TranscriptSegment> transcript;
    if (random.chance(0.4)) {
        return transcript;
    }
    for (double t = random.uniform(-1, 10); t < length; t += random.uniform(0, 12)) {
        std::string text = random.chance(0.1) ? "  " : "";
        for (std::size_t words = random.below(40); words > 0; --words) {
            text += std::string(1 + random.below(9), 'x') + (random.chance(0.1) ? "  " : " ");
        }
        // Now and then one that ends before it starts.
        const double end = t + (random.chance(0.03) ? -2 : random.uniform(0, 5));
        transcript.push_back({t, end, text});
    }
    return transcript;
}

/// A time near one of the log's, or anywhere.
double someTime(Random& random, const std::vector<InputEvent>& events, double length)
{
    if (events.empty() || random.chance(0.2)) {
        return random.uniform(-1, length + 1);
    }
    const double t = random.pick(events).t;
    return random.chance(0.5) ? t : t + random.uniform(-0.5, 0.5);
}

Overrides edits(Random& random, const std::vector<InputEvent>& events, double length)
{
    Overrides result;
    const auto time = [&] { return someTime(random, events, length); };
    const auto maybe = [&](double low, double high) {
        return random.chance(0.5) ? std::optional(random.uniform(low, high)) : std::nullopt;
    };
    for (std::size_t n = random.below(6); n > 0; --n) {
        Overrides::ZoomEdit edit;
        edit.sourceTime = time();
        edit.newSourceTime = random.chance(0.5) ? std::optional(time()) : std::nullopt;
        edit.hold = maybe(0.4, 6);
        edit.level = maybe(1, 2);
        result.zoomEdits.push_back(edit);
    }
    for (std::size_t n = random.below(4); n > 0; --n) {
        result.disabledZoomSourceTimes.push_back(time());
        result.deletedZoomSourceTimes.push_back(time());
        const double added = time();
        result.addedZooms.push_back({added, time(), random.uniform(0.4, 4), random.uniform(1, 2)});
        const double start = time();
        result.removedRanges.push_back({start, start + random.uniform(-0.5, 3)});
    }
    return result;
}

PlanConfig config(Random& random)
{
    PlanConfig config;
    config.idleThreshold = random.uniform(0.5, 3);
    config.typingSpeed = random.uniform(1, 4);
    config.scrollSpeed = random.chance(0.2) ? config.typingSpeed : random.uniform(1, 3);
    config.showKeystrokes = random.chance(0.5);
    config.pointerOnClick = random.chance(0.7);
    config.zoomLevels.resize(random.chance(0.7) ? 4 : random.below(4));
    return config;
}

} // namespace

RandomSession::RandomSession(std::uint64_t seed, LogOrder order)
{
    Random random(seed);
    const double wanted = random.chance(0.05) ? 0 : random.uniform(5, 90);
    const double length = SessionWriter(random, events).write(wanted);
    if (order == LogOrder::Ascending) {
        std::ranges::stable_sort(events, {}, &InputEvent::t);
    } else {
        disturb(events, random);
    }
    input.events = events;
    input.meta.pixelWidth = kWidth;
    input.meta.pixelHeight = kHeight;
    input.meta.duration = length + random.uniform(0, 3);
    input.config = config(random);
    input.overrides = edits(random, events, length);
    input.transcript = speech(random, length);
    for (std::size_t n = random.below(30); n > 0; --n) {
        const Rect rect = {
            random.uniform(-50, kWidth),
            random.uniform(-50, kHeight),
            random.uniform(10, 900),
            random.uniform(10, 600)};
        input.framingHints.push_back({someTime(random, events, length), rect});
    }
    if (random.chance(0.5)) {
        input.music.emplace();
        input.music->file = "music.m4a";
        input.music->grid = {120, random.uniform(0.1, 1), random.uniform(0, 0.1), 200};
        input.music->start = random.uniform(0, 5);
        input.music->end = random.uniform(0, 60);
    }
    if (random.chance(0.5)) {
        input.semantics.emplace();
        input.semantics->heroSourceTime = someTime(random, events, length);
        for (std::size_t n = random.below(6); n > 0; --n) {
            input.semantics->chapters.push_back({someTime(random, events, length), "chapter"});
        }
    }
}

} // namespace zento::test
