#include "WaylandStage/AccessibleHand.h"

#include "Zento/Demo/Waiting.h"

#include <gio/gio.h>

#include <chrono>
#include <functional>
#include <regex>

#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento::test {

namespace {

constexpr double kPatience = 60; // seconds that only a fault takes
constexpr std::chrono::milliseconds kAnswer{10'000};
constexpr const char* kService = "org.a11y.Bus";
constexpr const char* kPath = "/org/a11y/bus";

std::string addressAfterSwitchingOn(SessionBus& bus)
{
    bus.call(
        {kService, kPath, "org.freedesktop.DBus.Properties"},
        "Set",
        g_variant_new("(ssv)", "org.a11y.Status", "IsEnabled", g_variant_new_boolean(TRUE)),
        kAnswer);
    const Variant answer = bus.call({kService, kPath, kService}, "GetAddress", nullptr, kAnswer);
    const char* address = nullptr;
    g_variant_get(answer.get(), "(&s)", &address);
    return address;
}

/// Until `visit` says true. What is not shown hides what it holds.
bool walk(
    const AccessibilityBus& bus,
    const AccessibleObject& parent,
    const std::function<bool(const AccessibleObject&)>& visit)
{
    for (const AccessibleObject& child : bus.children(parent)) {
        const bool isProgram = bus.role(child) == "application";
        const bool isShown = isProgram || bus.has(child, AccessibleState::Showing);
        if (isShown && (visit(child) || walk(bus, child, visit))) {
            return true;
        }
    }
    return false;
}

} // namespace

AccessibleHand::AccessibleHand(WaylandStage& stage)
    : m_bus(addressAfterSwitchingOn(stage.bus()))
{
}

std::optional<AccessibleObject>
AccessibleHand::find(const std::string& role, const std::string& name) const
{
    const std::regex wanted(name);
    std::optional<AccessibleObject> found;
    walk(m_bus, AccessibilityBus::desktop(), [&](const AccessibleObject& object) {
        if ((role.empty() || m_bus.role(object) == role)
            && std::regex_match(m_bus.name(object), wanted)) {
            found = object;
        }
        return found.has_value();
    });
    return found;
}

bool AccessibleHand::isShown(const std::string& role, const std::string& name) const
{
    return find(role, name).has_value();
}

void AccessibleHand::press(const std::string& role, const std::string& name) const
{
    std::string what = "The " + role + " “" + name + "” cannot be pressed";
    waitUntil(
        [&] {
            const auto found = find(role, name);
            return found && m_bus.press(*found);
        },
        kPatience,
        what,
        {});
}

std::string AccessibleHand::everything() const
{
    std::string all;
    walk(m_bus, AccessibilityBus::desktop(), [&](const AccessibleObject& object) {
        all += m_bus.role(object) + ": " + m_bus.name(object) + "\n";
        return false;
    });
    return all;
}

} // namespace zento::test
