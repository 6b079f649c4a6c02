#include "ZentoCapture/Backends/ScreenCastSession.h"

#include "ZentoCapture/ThreadName.h"
#include "ZentoCore/Error.h"

#include <gio/gio.h>

#include <atomic>
#include <thread>
#include <utility>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

constexpr const char* kScreenCast = "org.freedesktop.portal.ScreenCast";
constexpr const char* kSession = "org.freedesktop.portal.Session";
constexpr unsigned kMonitors = 1;
constexpr unsigned kWindows = 2;
constexpr unsigned kUntilRevoked = 2; // persist_mode
constexpr unsigned kFirstWithTokens = 4;

enum CursorMode : unsigned { Hidden = 1, Embedded = 2, Metadata = 4 };

/// A pointer that cannot be told is at least seen.
unsigned cursorMode(unsigned offered)
{
    for (const unsigned mode : {Metadata, Embedded}) {
        if ((offered & mode) != 0) {
            return mode;
        }
    }
    return Hidden;
}

std::optional<Vec2> pairOf(GVariant* properties, const char* name)
{
    const Variant value = entry(properties, name, "(ii)");
    if (!value) {
        return {};
    }
    gint32 x = 0;
    gint32 y = 0;
    g_variant_get(value.get(), "(ii)", &x, &y);
    return Vec2{static_cast<double>(x), static_cast<double>(y)};
}

std::optional<ScreenCastStream> firstStream(GVariant* results)
{
    const Variant streams = entry(results, "streams", "a(ua{sv})");
    if (!streams || g_variant_n_children(streams.get()) == 0) {
        return {};
    }
    ScreenCastStream stream;
    GVariant* properties = nullptr;
    g_variant_get_child(streams.get(), 0, "(u@a{sv})", &stream.node, &properties);
    const Variant owned(properties);
    stream.position = pairOf(properties, "position");
    stream.size = pairOf(properties, "size");
    return stream;
}

} // namespace

struct ScreenCastSession::State {
    explicit State(const PortalPatience& patience)
        : portal(bus, patience)
    {
    }

    void create(const std::stop_token& stop);
    void select(
        const ScreenChoice& choice,
        const std::optional<std::string>& token,
        const std::stop_token& stop);
    Variant start(const std::stop_token& stop);
    Variant choose(
        const ScreenChoice& choice,
        const std::optional<std::string>& token,
        const std::stop_token& stop);
    BusInterface session() const
    {
        return {"org.freedesktop.portal.Desktop", path.c_str(), kSession};
    }
    void close() noexcept;

    SessionBus bus;
    Portal portal;
    std::string path; // of the session
    unsigned mode = Hidden;
    ScreenCastStream stream;
    std::atomic<bool> isClosed = false;
    std::unique_ptr<BusSignal> closed;
    std::jthread watcher;
};

void ScreenCastSession::State::create(const std::stop_token& stop)
{
    const Variant results = portal.request(
        kScreenCast,
        "CreateSession",
        [](PortalOptions& options) { options.set("session_handle_token", Portal::newToken()); },
        [](GVariant* options) { return g_variant_new("(@a{sv})", options); },
        Portal::Asks::Nobody,
        stop);
    path = textEntry(results.get(), "session_handle").value_or("");
    if (path.empty() || g_variant_is_object_path(path.c_str()) == FALSE) {
        throw Error(ErrorCode::kPortalFailed, "the desktop's ScreenCast portal gave no session");
    }
}

void ScreenCastSession::State::select(
    const ScreenChoice& choice,
    const std::optional<std::string>& token,
    const std::stop_token& stop)
{
    const bool keepsTokens = portal.version(kScreenCast) >= kFirstWithTokens;
    mode = cursorMode(portal.number(kScreenCast, "AvailableCursorModes"));
    portal.request(
        kScreenCast,
        "SelectSources",
        [&](PortalOptions& options) {
            options.set("types", choice.kind == ScreenChoice::Kind::Window ? kWindows : kMonitors);
            options.set("multiple", /*value=*/false);
            options.set("cursor_mode", mode);
            if (keepsTokens) {
                options.set("persist_mode", kUntilRevoked);
            }
            if (keepsTokens && token) {
                options.set("restore_token", *token);
            }
        },
        [&](GVariant* options) { return g_variant_new("(o@a{sv})", path.c_str(), options); },
        Portal::Asks::Nobody,
        stop);
}

Variant ScreenCastSession::State::start(const std::stop_token& stop)
{
    return portal.request(
        kScreenCast,
        "Start",
        [](PortalOptions&) {},
        [&](GVariant* options) { return g_variant_new("(os@a{sv})", path.c_str(), "", options); },
        Portal::Asks::User,
        stop);
}

Variant ScreenCastSession::State::choose(
    const ScreenChoice& choice,
    const std::optional<std::string>& token,
    const std::stop_token& stop)
{
    create(stop);
    try {
        select(choice, token, stop);
        return start(stop);
    } catch (const Error&) {
        close();
        throw;
    }
}

void ScreenCastSession::State::close() noexcept
{
    if (path.empty() || isClosed) {
        return;
    }
    bus.send(session(), "Close");
    path.clear();
}

ScreenCastSession::ScreenCastSession(
    const ScreenChoice& choice,
    const RestoreTokens& tokens,
    const PortalPatience& patience,
    const std::stop_token& stop)
    : m_state(std::make_unique<State>(patience))
{
    const auto token = tokens.find(choice.name);
    Variant results;
    try {
        results = m_state->choose(choice, token, stop);
    } catch (const Error& error) {
        // A word from another time is no reason not to ask.
        if (!token || error.code() != ErrorCode::kPortalFailed) {
            throw;
        }
        tokens.keep(choice.name, {});
        results = m_state->choose(choice, {}, stop);
    }
    tokens.keep(choice.name, textEntry(results.get(), "restore_token"));
    const auto stream = firstStream(results.get());
    if (!stream) {
        m_state->close();
        throw Error(ErrorCode::kPortalFailed, "the desktop's ScreenCast portal shows nothing");
    }
    m_state->stream = *stream;
}

ScreenCastSession::~ScreenCastSession()
{
    if (m_state->watcher.joinable()) {
        m_state->watcher.request_stop();
        m_state->watcher.join();
    }
    m_state->closed.reset();
    m_state->close();
}

const ScreenCastStream& ScreenCastSession::stream() const
{
    return m_state->stream;
}

bool ScreenCastSession::tellsPointer() const
{
    return m_state->mode == Metadata;
}

int ScreenCastSession::openRemote()
{
    PortalOptions options;
    return m_state->bus.callForFile(
        Portal::interface(kScreenCast),
        "OpenPipeWireRemote",
        g_variant_new("(o@a{sv})", m_state->path.c_str(), options.end()),
        m_state->portal.patience().service);
}

void ScreenCastSession::watch(std::function<void()> closed)
{
    State& state = *m_state;
    state.closed = std::make_unique<BusSignal>(
        state.bus, state.session(), "Closed", [&state](GVariant*) { state.isClosed = true; });
    state.watcher = std::jthread([&state, closed = std::move(closed)](const std::stop_token& stop) {
        nameThread("capture.portal");
        const std::stop_callback onStop(stop, [&state] { state.bus.wake(); });
        while (!stop.stop_requested() && !state.isClosed) {
            state.bus.dispatch({});
        }
        if (state.isClosed) {
            closed();
        }
    });
}

} // namespace zento
