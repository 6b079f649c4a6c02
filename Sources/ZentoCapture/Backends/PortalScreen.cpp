#include "ZentoCapture/Backends/PortalScreen.h"

#include "ZentoCapture/Backends/PipeWireScreenStream.h"
#include "ZentoCapture/Backends/StreamFrames.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCore/Error.h"

#include <cmath>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace zento {

namespace {

/// The stream's end comes before the word that the user wanted it.
constexpr double kTimeForAWord = 0.5; // seconds

/// What the first picture is waited for with.
class FirstPicture {
public:
    void come()
    {
        const std::lock_guard lock(m_mutex);
        m_hasCome = true;
        m_changed.notify_all();
    }

    void fail(const std::string& reason)
    {
        const std::lock_guard lock(m_mutex);
        m_failure = reason;
        m_changed.notify_all();
    }

    void await(std::chrono::milliseconds patience, const std::stop_token& stop)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, stop, patience, [this] { return m_hasCome || m_failure; });
        if (stop.stop_requested()) {
            throw Error(ErrorCode::kCancelled, "given up");
        }
        if (!m_hasCome) {
            throw Error(
                ErrorCode::kPortalSilent,
                "the desktop sends no picture of what was chosen"
                    + (m_failure ? ": " + *m_failure : ""));
        }
    }

private:
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    bool m_hasCome = false;
    std::optional<std::string> m_failure;
};

} // namespace

double streamScale(double pixels, double points)
{
    constexpr double kSteps = 120;
    if (points <= 0) {
        return 1;
    }
    const double raw = pixels / points;
    const double step = std::round(raw * kSteps) / kSteps;
    return step > 0 && std::abs(pixels / step - points) < 1 ? step : raw;
}

struct PortalScreen::State {
    State(
        ScreenCastSession& itsSession,
        ScreenChoice::Hand hand,
        std::shared_ptr<PointerTrack> itsPointer)
        : offered(itsSession.stream())
        , pointer(std::move(itsPointer))
        , loop("capture.video", itsSession.openRemote())
        , pacer(loop, [this] { pace(monotonicSeconds()); })
        , ender(loop, [this] { tellEnd(); })
        , frames(
              hand == ScreenChoice::Hand::None ? StreamFrames::Keeps::UntilBegin
                                               : StreamFrames::Keeps::Always)
    {
    }

    // On the loop's thread.
    void take(const ScreenUpdate& update);
    void measure(Vec2 whole);
    void pace(double now);
    void lose(const std::string& reason);
    void tellEnd();

    ScreenCastStream offered;
    std::shared_ptr<PointerTrack> pointer;
    Vec2 origin; // points
    Vec2 size;   // pixels, with the first picture
    double scale = 1;
    FirstPicture first;
    PipeWireLoop loop;
    PipeWireTimer pacer;
    PipeWireTimer ender;
    StreamFrames frames;
    FrameSource::EndHandler onEnd;
    std::optional<Error> loss;
    bool isRevoked = false;
    std::unique_ptr<ScreenCastSession> session;
    std::unique_ptr<PipeWireScreenStream> stream;
};

void PortalScreen::State::take(const ScreenUpdate& update)
{
    const double now = monotonicSeconds();
    const bool isFirst = !frames.hasPicture();
    frames.take(update, now);
    if (isFirst && frames.hasPicture()) {
        measure(update.stream);
        first.come();
    }
    if (update.pointer && frames.hasPicture()) {
        const Vec2 pixel = frames.asRecorded(*update.pointer);
        pointer->add(update.time, {origin.x + pixel.x / scale, origin.y + pixel.y / scale});
    }
    pace(now);
}

/// A window's stream is as large as the desktop thinks the window can become; the size that is told
/// of it is that of the whole.
void PortalScreen::State::measure(Vec2 whole)
{
    size = frames.size();
    origin = offered.position.value_or(Vec2{});
    scale = offered.size ? streamScale(whole.x, offered.size->x) : 1;
}

void PortalScreen::State::pace(double now)
{
    frames.tick(now);
    if (const auto due = frames.due()) {
        pacer.set(*due - now);
    }
}

void PortalScreen::State::lose(const std::string& reason)
{
    first.fail(reason);
    loss = Error(ErrorCode::kNoDisplay, "the desktop no longer shows its picture: " + reason);
    ender.set(kTimeForAWord);
}

/// Once, to whoever records by then.
void PortalScreen::State::tellEnd()
{
    if ((isRevoked || loss) && onEnd) {
        std::exchange(onEnd, nullptr)(isRevoked ? std::nullopt : loss);
    }
}

PortalScreen::PortalScreen(
    const ScreenChoice& choice,
    const RestoreTokens& tokens,
    const PortalPatience& patience,
    std::shared_ptr<PointerTrack> pointer,
    const std::stop_token& stop)
{
    auto session = std::make_unique<ScreenCastSession>(choice, tokens, patience, stop);
    m_state = std::make_unique<State>(*session, choice.hand, std::move(pointer));
    State& state = *m_state;
    state.session = std::move(session);
    state.stream = std::make_unique<PipeWireScreenStream>(
        state.loop,
        state.offered.node,
        PipeWireScreenStream::Handlers{
            .update = [&state](const ScreenUpdate& update) { state.take(update); },
            .gone = [&state](const std::string& reason) { state.lose(reason); }});
    state.session->watch([&state] {
        const PipeWireLoop::Lock lock(state.loop);
        state.isRevoked = true;
        state.ender.set(0);
    });
    state.first.await(patience.service, stop);
}

PortalScreen::~PortalScreen()
{
    m_state->stream.reset();
    m_state->session.reset(); // its thread speaks to the loop
}

Rect PortalScreen::bounds() const
{
    const State& state = *m_state;
    return {state.origin.x, state.origin.y, state.size.x / state.scale, state.size.y / state.scale};
}

double PortalScreen::scale() const
{
    return m_state->scale;
}

bool PortalScreen::tellsPointer() const
{
    return m_state->session->tellsPointer();
}

const ScreenCastSession& PortalScreen::session() const
{
    return *m_state->session;
}

ShownPlace PortalScreen::place() const
{
    const PipeWireLoop::Lock lock(m_state->loop);
    const Vec2 pixels = m_state->frames.size();
    return {
        .origin = m_state->origin,
        .size = {pixels.x / m_state->scale, pixels.y / m_state->scale},
        .factor = m_state->frames.asRecorded({1, 1}).x};
}

void PortalScreen::begin(
    const PixelRect& part, FrameSource::FrameHandler onFrame, FrameSource::EndHandler onEnd)
{
    State& state = *m_state;
    const PipeWireLoop::Lock lock(state.loop);
    state.onEnd = std::move(onEnd);
    state.frames.begin(part, std::move(onFrame), monotonicSeconds());
    state.pacer.set(0); // the first frame, too, comes on the loop's thread
    if (state.isRevoked || state.loss) {
        state.ender.set(0);
    }
}

void PortalScreen::end()
{
    const PipeWireLoop::Lock lock(m_state->loop);
    m_state->frames.end();
    m_state->onEnd = nullptr;
}

} // namespace zento
