#pragma once

#include "ZentoCapture/Backends/SessionBus.h"

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>

namespace zento {

/// How long a portal is waited for.
struct PortalPatience {
    std::chrono::milliseconds service{10'000}; // a service that may have to be started first
    std::chrono::milliseconds person{180'000}; // somebody who is asked in a dialog
};

/// The desktop's portals: services that do for a program what its user allows.
///
/// Threading: as `SessionBus`.
class PortalOptions;

class Portal {
public:
    explicit Portal(SessionBus& bus, PortalPatience patience = {});

    static BusInterface interface(const char* name); // "org.freedesktop.portal.ScreenCast"

    SessionBus& bus() const { return m_bus; }
    const PortalPatience& patience() const { return m_patience; }

    /// 0 where the desktop has no such portal.
    unsigned version(const char* name) const;

    /// A number that the portal tells of itself; 0 where it does not.
    unsigned number(const char* name, const char* property) const;

    /// A word by which a request or a session is known, never the same twice.
    static std::string newToken();

    /// From the options, "a{sv}", to a method's arguments. Both are floating.
    using Arguments = std::function<_GVariant*(_GVariant* options)>;

    enum class Asks : unsigned char { Nobody, User };

    /// Makes a request and waits for its response, "a{sv}". `options`: without the handle's token.
    /// Throws `Error`: kPortalDenied when the user said no, kPortalSilent when no answer comes in
    /// time, kPortalFailed, or kCancelled once `stop` is requested.
    Variant request(
        const char* name,
        const char* method,
        const std::function<void(PortalOptions&)>& options,
        const Arguments& arguments,
        Asks asks,
        const std::stop_token& stop = {});

private:
    std::string senderPart() const;

    SessionBus& m_bus;
    PortalPatience m_patience;
};

/// The options of a call.
class PortalOptions {
public:
    PortalOptions();
    ~PortalOptions();
    PortalOptions(const PortalOptions&) = delete;
    PortalOptions& operator=(const PortalOptions&) = delete;

    void set(const char* name, const std::string& value);
    void set(const char* name, unsigned value);
    void set(const char* name, bool value);
    void set(const char* name, const char* value) { set(name, std::string(value)); }

    _GVariant* end(); // floating

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// An entry of a response; nothing where there is none of that type.
std::optional<std::string> textEntry(_GVariant* dictionary, const char* name);
unsigned numberEntry(_GVariant* dictionary, const char* name); // 0 where there is none
Variant entry(_GVariant* dictionary, const char* name, const char* type);

} // namespace zento
