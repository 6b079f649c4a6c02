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
constexpr const char* kRemoteDesktop = "org.freedesktop.portal.RemoteDesktop";
constexpr const char* kSession = "org.freedesktop.portal.Session";
constexpr unsigned kMonitors = 1;
constexpr unsigned kWindows = 2;
constexpr unsigned kUntilRevoked = 2; // persist_mode
constexpr unsigned kFirstWithTokens = 4;
constexpr unsigned kFirstHandWithTokens = 2;
constexpr unsigned kPointer = 2; // of the types of devices
constexpr unsigned kVertical = 0;

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
    void selectPointer(const std::optional<std::string>& token, const std::stop_token& stop);
    void select(
        const ScreenChoice& choice,
        const std::optional<std::string>& token,
        const std::stop_token& stop);
    Variant start(const std::stop_token& stop);
    void act(const char* method, _GVariant* arguments) const;
    const char* owner() const { return hasHand ? kRemoteDesktop : kScreenCast; }
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
    bool hasHand = false;
    unsigned mode = Hidden;
    ScreenCastStream stream;
    std::atomic<bool> isClosed = false;
    std::unique_ptr<BusSignal> closed;
    std::jthread watcher;
};

void ScreenCastSession::State::create(const std::stop_token& stop)
{
    const Variant results = portal.request(
        owner(),
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

void setToken(PortalOptions& options, const std::optional<std::string>& token)
{
    options.set("persist_mode", kUntilRevoked);
    if (token) {
        options.set("restore_token", *token);
    }
}

void ScreenCastSession::State::selectPointer(
    const std::optional<std::string>& token, const std::stop_token& stop)
{
    portal.request(
        kRemoteDesktop,
        "SelectDevices",
        [&](PortalOptions& options) {
            options.set("types", kPointer);
            if (portal.version(kRemoteDesktop) >= kFirstHandWithTokens) {
                setToken(options, token);
            }
        },
        [&](GVariant* options) { return g_variant_new("(o@a{sv})", path.c_str(), options); },
        Portal::Asks::Nobody,
        stop);
}

void ScreenCastSession::State::select(
    const ScreenChoice& choice,
    const std::optional<std::string>& token,
    const std::stop_token& stop)
{
    // A hand's session is remembered with the hand or not at all.
    const bool keepsTokens = !hasHand && portal.version(kScreenCast) >= kFirstWithTokens;
    mode = cursorMode(portal.number(kScreenCast, "AvailableCursorModes"));
    portal.request(
        kScreenCast,
        "SelectSources",
        [&](PortalOptions& options) {
            options.set("types", choice.kind == ScreenChoice::Kind::Window ? kWindows : kMonitors);
            options.set("multiple", /*value=*/false);
            options.set("cursor_mode", mode);
            if (keepsTokens) {
                setToken(options, token);
            }
        },
        [&](GVariant* options) { return g_variant_new("(o@a{sv})", path.c_str(), options); },
        Portal::Asks::Nobody,
        stop);
}

Variant ScreenCastSession::State::start(const std::stop_token& stop)
{
    return portal.request(
        owner(),
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
    hasHand = choice.hand == ScreenChoice::Hand::Pointer;
    if (hasHand && (portal.number(kRemoteDesktop, "AvailableDeviceTypes") & kPointer) == 0) {
        throw Error(
            ErrorCode::kNoInput,
            "a page cannot be scrolled for you here, as this desktop's portal lets no program turn "
            "the wheel; shoot the parts that can be seen");
    }
    create(stop);
    try {
        if (hasHand) {
            selectPointer(token, stop);
        }
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
    if (m_state->hasHand && (numberEntry(results.get(), "devices") & kPointer) == 0) {
        m_state->close();
        throw Error(
            ErrorCode::kNoInput,
            "a page can only be scrolled for you if the desktop's dialog is let to control the "
            "pointer");
    }
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

void ScreenCastSession::State::act(const char* method, _GVariant* arguments) const
{
    bus.call(Portal::interface(kRemoteDesktop), method, arguments, portal.patience().service);
}

void ScreenCastSession::movePointer(Vec2 place) const
{
    PortalOptions options;
    m_state->act(
        "NotifyPointerMotionAbsolute",
        g_variant_new(
            "(o@a{sv}udd)",
            m_state->path.c_str(),
            options.end(),
            m_state->stream.node,
            place.x,
            place.y));
}

void ScreenCastSession::movePointerBy(Vec2 way) const
{
    PortalOptions options;
    m_state->act(
        "NotifyPointerMotion",
        g_variant_new("(o@a{sv}dd)", m_state->path.c_str(), options.end(), way.x, way.y));
}

void ScreenCastSession::turnWheel(int notches) const
{
    PortalOptions options;
    m_state->act(
        "NotifyPointerAxisDiscrete",
        g_variant_new("(o@a{sv}ui)", m_state->path.c_str(), options.end(), kVertical, notches));
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
