#include "ZentoCapture/Backends/PipeWireLoop.h"

#include "ZentoCapture/ThreadName.h"
#include "ZentoCore/Error.h"

#include <pipewire/pipewire.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <new>
#include <utility>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

constexpr int kPatienceSeconds = 2;

/// The library says on standard error what it does not like about a desktop; what matters reaches
/// us as an error.
void initialise()
{
    static std::once_flag once;
    std::call_once(once, [] {
        pw_init(nullptr, nullptr);
        if (std::getenv("PIPEWIRE_DEBUG") == nullptr) { // NOLINT(concurrency-mt-unsafe)
            pw_log_set_level(SPA_LOG_LEVEL_NONE);
        }
    });
}

} // namespace

struct PipeWireLoop::State {
    explicit State(const char* itsThreadName);
    ~State();

    static void started(void* self, std::uint64_t count);
    static void answered(void* self, std::uint32_t id, int sequence);
    static void failed(void* self, std::uint32_t id, int sequence, int result, const char* message);

    const char* threadName;
    pw_thread_loop* thread = nullptr;
    spa_source* begun = nullptr;
    pw_context* context = nullptr;
    pw_core* core = nullptr;
    spa_hook listener{};
    pw_core_events events{};
    int answeredSequence = -1;
    bool isGone = false;
};

PipeWireLoop::State::State(const char* itsThreadName)
    : threadName(itsThreadName)
    , thread(pw_thread_loop_new(threadName, nullptr))
{
    if (thread == nullptr) {
        throw systemError("could not start", "a thread for PipeWire", errno);
    }
    events.version = PW_VERSION_CORE_EVENTS;
    events.done = &State::answered;
    events.error = &State::failed;
    begun = pw_loop_add_event(pw_thread_loop_get_loop(thread), &State::started, this);
    context = pw_context_new(pw_thread_loop_get_loop(thread), nullptr, 0);
}

PipeWireLoop::State::~State()
{
    pw_thread_loop_stop(thread);
    if (core != nullptr) {
        pw_core_disconnect(core);
    }
    if (context != nullptr) {
        pw_context_destroy(context);
    }
    if (begun != nullptr) {
        pw_loop_destroy_source(pw_thread_loop_get_loop(thread), begun);
    }
    pw_thread_loop_destroy(thread);
}

void PipeWireLoop::State::started(void* self, std::uint64_t /*count*/)
{
    nameThread(static_cast<const State*>(self)->threadName);
}

void PipeWireLoop::State::answered(void* self, std::uint32_t id, int sequence)
{
    if (id == PW_ID_CORE) {
        auto& state = *static_cast<State*>(self);
        state.answeredSequence = sequence;
        pw_thread_loop_signal(state.thread, false);
    }
}

void PipeWireLoop::State::failed(
    void* self, std::uint32_t id, int /*sequence*/, int /*result*/, const char* /*message*/)
{
    if (id == PW_ID_CORE) {
        auto& state = *static_cast<State*>(self);
        state.isGone = true;
        pw_thread_loop_signal(state.thread, false);
    }
}

PipeWireLoop::PipeWireLoop(const char* threadName, int remote)
{
    initialise();
    m_state = std::make_unique<State>(threadName);
    State& state = *m_state;
    if (state.context != nullptr && remote >= 0) {
        state.core = pw_context_connect_fd(state.context, remote, nullptr, 0);
    } else if (state.context != nullptr) {
        state.core = pw_context_connect(state.context, nullptr, 0);
    } else if (remote >= 0) {
        ::close(remote);
    }
    if (state.core == nullptr) {
        throw systemError("could not connect to", "PipeWire", errno);
    }
    pw_core_add_listener(state.core, &state.listener, &state.events, &state);
    if (pw_thread_loop_start(state.thread) < 0) {
        throw systemError("could not start", "a thread for PipeWire", errno);
    }
    // An event is dealt with on the loop's thread, whatever that is doing yet.
    pw_loop_signal_event(loop(), state.begun);
}

PipeWireLoop::~PipeWireLoop() = default;

bool PipeWireLoop::roundTrip()
{
    const int sequence = pw_core_sync(core(), PW_ID_CORE, 0);
    while (!m_state->isGone && m_state->answeredSequence != sequence) {
        if (pw_thread_loop_timed_wait(m_state->thread, kPatienceSeconds) != 0) {
            return false;
        }
    }
    return !m_state->isGone;
}

pw_core* PipeWireLoop::core() const
{
    return m_state->core;
}

pw_loop* PipeWireLoop::loop() const
{
    return pw_thread_loop_get_loop(m_state->thread);
}

PipeWireLoop::Lock::Lock(PipeWireLoop& loop)
    : m_loop(loop)
{
    pw_thread_loop_lock(m_loop.m_state->thread);
}

PipeWireLoop::Lock::~Lock()
{
    pw_thread_loop_unlock(m_loop.m_state->thread);
}

struct PipeWireTimer::State {
    PipeWireLoop& loop;
    std::function<void()> ring;
    spa_source* source = nullptr;
};

PipeWireTimer::PipeWireTimer(PipeWireLoop& loop, std::function<void()> ring)
    : m_state(std::make_unique<State>(loop, std::move(ring)))
{
    const PipeWireLoop::Lock lock(loop);
    m_state->source = pw_loop_add_timer(
        loop.loop(),
        [](void* state, std::uint64_t) { static_cast<const State*>(state)->ring(); },
        m_state.get());
    if (m_state->source == nullptr) {
        throw systemError("could not make", "a timer for PipeWire", errno);
    }
}

PipeWireTimer::~PipeWireTimer()
{
    const PipeWireLoop::Lock lock(m_state->loop);
    pw_loop_destroy_source(m_state->loop.loop(), m_state->source);
}

void PipeWireTimer::set(double seconds)
{
    constexpr double kSoon = 1e-6; // a timer set to nothing is switched off
    const double later = std::max(seconds, kSoon);
    timespec time{};
    time.tv_sec = static_cast<time_t>(later);
    time.tv_nsec = static_cast<long>((later - std::floor(later)) * 1e9);
    pw_loop_update_timer(m_state->loop.loop(), m_state->source, &time, nullptr, false);
}

} // namespace zento
