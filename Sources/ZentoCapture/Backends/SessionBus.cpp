#include "ZentoCapture/Backends/SessionBus.h"

#include "ZentoCore/Error.h"

#include <gio/gio.h>
#include <gio/gunixfdlist.h>

#include <utility>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

/// Receives the error of one call of the library.
class Failure {
public:
    ~Failure() { g_clear_error(&m_error); }
    Failure() = default;
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;

    GError** place() { return &m_error; }

    Error translated(const BusInterface& target)
    {
        const std::string service = target.service;
        if (g_error_matches(m_error, G_IO_ERROR, G_IO_ERROR_CANCELLED)) {
            return {ErrorCode::kCancelled, "given up"};
        }
        if (g_error_matches(m_error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT)
            || g_error_matches(m_error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY)
            || g_error_matches(m_error, G_DBUS_ERROR, G_DBUS_ERROR_TIMEOUT)) {
            return {ErrorCode::kPortalSilent, service + " does not answer"};
        }
        if (g_error_matches(m_error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN)
            || g_error_matches(m_error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER)) {
            return {ErrorCode::kPortalSilent, "this session has no " + service};
        }
        g_dbus_error_strip_remote_error(m_error);
        return {ErrorCode::kPortalFailed, service + " says: " + m_error->message};
    }

    const char* text() const { return m_error == nullptr ? "" : m_error->message; }

private:
    GError* m_error = nullptr;
};

struct Unref {
    void operator()(void* object) const noexcept { g_object_unref(object); }
};

int milliseconds(SessionBus::Patience patience)
{
    return static_cast<int>(patience.count());
}

} // namespace

void UnrefVariant::operator()(_GVariant* variant) const noexcept
{
    g_variant_unref(variant);
}

struct SessionBus::State {
    ~State()
    {
        if (connection) {
            g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
        }
        connection.reset();
        while (g_main_context_iteration(context, FALSE) != FALSE) {
        }
        g_main_context_unref(context);
    }

    GMainContext* context = g_main_context_new();
    std::unique_ptr<GDBusConnection, Unref> connection;
};

SessionBus::SessionBus()
    : m_state(std::make_unique<State>())
{
    Failure failure;
    const std::unique_ptr<char, decltype(&g_free)> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, failure.place()), &g_free);
    if (address) {
        // What belongs to the connection's context is decided while it is made.
        g_main_context_push_thread_default(m_state->context);
        m_state->connection.reset(g_dbus_connection_new_for_address_sync(
            address.get(),
            static_cast<GDBusConnectionFlags>(
                G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr,
            nullptr,
            failure.place()));
        g_main_context_pop_thread_default(m_state->context);
    }
    if (!m_state->connection) {
        throw Error(
            ErrorCode::kPortalSilent,
            std::string("this session's bus cannot be reached: ") + failure.text());
    }
}

SessionBus::~SessionBus() = default;

Variant SessionBus::call(
    const BusInterface& target,
    const char* method,
    _GVariant* arguments,
    Patience patience,
    const std::stop_token& stop) const
{
    const std::unique_ptr<GCancellable, Unref> cancellable(g_cancellable_new());
    const std::stop_callback onStop(stop, [&] { g_cancellable_cancel(cancellable.get()); });
    Failure failure;
    Variant answer(g_dbus_connection_call_sync(
        connection(),
        target.service,
        target.path,
        target.name,
        method,
        arguments,
        nullptr,
        G_DBUS_CALL_FLAGS_NONE,
        milliseconds(patience),
        cancellable.get(),
        failure.place()));
    if (!answer) {
        throw failure.translated(target);
    }
    return answer;
}

void SessionBus::send(const BusInterface& target, const char* method) const noexcept
{
    g_dbus_connection_call(
        connection(),
        target.service,
        target.path,
        target.name,
        method,
        nullptr,
        nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START,
        -1,
        nullptr,
        nullptr,
        nullptr);
    g_dbus_connection_flush_sync(connection(), nullptr, nullptr);
}

int SessionBus::callForFile(
    const BusInterface& target, const char* method, _GVariant* arguments, Patience patience) const
{
    Failure failure;
    GUnixFDList* files = nullptr;
    const Variant answer(g_dbus_connection_call_with_unix_fd_list_sync(
        connection(),
        target.service,
        target.path,
        target.name,
        method,
        arguments,
        G_VARIANT_TYPE("(h)"),
        G_DBUS_CALL_FLAGS_NONE,
        milliseconds(patience),
        nullptr,
        &files,
        nullptr,
        failure.place()));
    const std::unique_ptr<GUnixFDList, Unref> owned(files);
    if (!answer) {
        throw failure.translated(target);
    }
    gint32 index = 0;
    g_variant_get(answer.get(), "(h)", &index);
    const int file = owned ? g_unix_fd_list_get(owned.get(), index, nullptr) : -1;
    if (file < 0) {
        throw Error(ErrorCode::kPortalFailed, std::string(target.service) + " handed over no file");
    }
    return file;
}

Variant SessionBus::property(const BusInterface& target, const char* name, Patience patience) const
{
    try {
        const Variant answer = call(
            {target.service, target.path, "org.freedesktop.DBus.Properties"},
            "Get",
            g_variant_new("(ss)", target.name, name),
            patience);
        GVariant* value = nullptr;
        g_variant_get(answer.get(), "(v)", &value);
        return Variant(value);
    } catch (const Error&) {
        return {};
    }
}

void SessionBus::dispatch(std::optional<Patience> longest)
{
    GSource* const alarm =
        longest ? g_timeout_source_new(static_cast<guint>(longest->count())) : nullptr;
    if (alarm != nullptr) {
        g_source_set_callback(
            alarm, [](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr, nullptr);
        g_source_attach(alarm, m_state->context);
    }
    g_main_context_iteration(m_state->context, TRUE);
    if (alarm != nullptr) {
        g_source_destroy(alarm);
        g_source_unref(alarm);
    }
}

void SessionBus::wake()
{
    g_main_context_wakeup(m_state->context);
}

_GDBusConnection* SessionBus::connection() const
{
    return m_state->connection.get();
}

_GMainContext* SessionBus::context() const
{
    return m_state->context;
}

struct BusSignal::State {
    SessionBus& bus;
    Handler handler;
    unsigned subscription = 0;
};

BusSignal::BusSignal(
    SessionBus& bus, const BusInterface& source, const char* signal, Handler handler)
    : m_state(std::make_unique<State>(bus, std::move(handler)))
{
    // The signal goes to the context that is the thread's own at this moment.
    g_main_context_push_thread_default(bus.context());
    m_state->subscription = g_dbus_connection_signal_subscribe(
        bus.connection(),
        source.service,
        source.name,
        signal,
        source.path,
        nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection*,
           const char*,
           const char*,
           const char*,
           const char*,
           GVariant* arguments,
           gpointer state) { static_cast<const State*>(state)->handler(arguments); },
        m_state.get(),
        nullptr);
    g_main_context_pop_thread_default(bus.context());
}

BusSignal::~BusSignal()
{
    g_dbus_connection_signal_unsubscribe(m_state->bus.connection(), m_state->subscription);
}

} // namespace zento
