#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

struct _GDBusConnection; // NOLINT(bugprone-reserved-identifier): the library's own name
struct _GMainContext;    // NOLINT(bugprone-reserved-identifier): the library's own name
struct _GVariant;        // NOLINT(bugprone-reserved-identifier): the library's own name

namespace zento {

struct UnrefVariant {
    void operator()(_GVariant* variant) const noexcept;
};
using Variant = std::unique_ptr<_GVariant, UnrefVariant>;

/// One object of one service, seen through one interface.
struct BusInterface {
    const char* service = nullptr;
    const char* path = nullptr;
    const char* name = nullptr;
};

/// A connection of its own to the session bus. What it hears waits for `dispatch`.
///
/// Threading: one thread at a time; `wake` from any.
class SessionBus {
public:
    using Patience = std::chrono::milliseconds;

    /// Throws `Error` with the code kPortalSilent where the session has no bus.
    SessionBus();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// The answer's tuple. Takes `arguments`, floating or null. Throws `Error`: kPortalSilent when
    /// nothing answers in time, kPortalFailed with the service's own words, kCancelled.
    Variant call(
        const BusInterface& target,
        const char* method,
        _GVariant* arguments,
        Patience patience,
        const std::stop_token& stop = {}) const;

    /// The same for a method that hands over one file descriptor, which the caller then owns.
    int callForFile(
        const BusInterface& target,
        const char* method,
        _GVariant* arguments,
        Patience patience) const;

    /// A call without arguments whose answer nobody waits for.
    void send(const BusInterface& target, const char* method) const noexcept;

    /// A property's value; nothing if the service, the interface or the property is not there.
    Variant property(const BusInterface& target, const char* name, Patience patience) const;

    /// Runs what has been heard, and waits for it if there is nothing, until something has come,
    /// `wake` was called or the time is over.
    void dispatch(std::optional<Patience> longest);
    void wake();

    _GDBusConnection* connection() const;
    _GMainContext* context() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Hears one signal of one object, while the bus is dispatched, for as long as it lives.
class BusSignal {
public:
    using Handler = std::function<void(_GVariant* arguments)>;

    BusSignal(SessionBus& bus, const BusInterface& source, const char* signal, Handler handler);
    ~BusSignal();
    BusSignal(const BusSignal&) = delete;
    BusSignal& operator=(const BusSignal&) = delete;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
