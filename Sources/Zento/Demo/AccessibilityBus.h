#pragma once

#include "ZentoCore/Geometry.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct _GDBusConnection; // NOLINT(bugprone-reserved-identifier): the library's own name
struct _GVariant;        // NOLINT(bugprone-reserved-identifier)

namespace zento {

/// An object of a program on the accessibility bus: a window, a button, …
struct AccessibleObject {
    std::string program; // its name on the bus
    std::string path;
};

/// Bits of an object's states.
enum class AccessibleState : unsigned char { Showing = 25, Visible = 30 };

/// One connection to an accessibility bus, and the questions of its protocol (AT-SPI 2). What is
/// not answered within half a second is empty or absent. Threading: one thread at a time.
class AccessibilityBus {
public:
    /// Throws `Error` kDesktopFailed if nobody answers at the address.
    explicit AccessibilityBus(const std::string& address);

    /// The parent of all applications.
    static AccessibleObject desktop();

    std::vector<AccessibleObject> children(const AccessibleObject& object) const;
    std::string role(const AccessibleObject& object) const;
    std::string name(const AccessibleObject& object) const;
    bool has(const AccessibleObject& object, AccessibleState state) const;
    std::optional<std::string> text(const AccessibleObject& object) const;

    /// In pixels of the display; absent if it has no extent.
    std::optional<Rect> frame(const AccessibleObject& object) const;

    /// Of the first occurrence of `wanted` in the object's text.
    std::optional<Rect> textFrame(const AccessibleObject& object, const std::string& wanted) const;

    /// Does what a click on it would, also where nobody knows its place, as on Wayland. False if it
    /// cannot be pressed.
    bool press(const AccessibleObject& object) const;

private:
    struct Disconnect {
        void operator()(_GDBusConnection* connection) const;
    };
    struct Unreference {
        void operator()(_GVariant* variant) const;
    };
    using Variant = std::unique_ptr<_GVariant, Unreference>;

    static std::string textAt(_GVariant* tuple, std::size_t index);
    Variant call(
        const AccessibleObject& object,
        const char* interface,
        const char* method,
        _GVariant* arguments,
        const char* answer) const;

    std::unique_ptr<_GDBusConnection, Disconnect> m_connection;
};

} // namespace zento
