#include "Zento/Demo/AccessibilityBus.h"

#include "ZentoCore/Error.h"

#include <gio/gio.h>

#include <utility>

namespace zento {

namespace {

constexpr int kAnswerMilliseconds = 500;
constexpr unsigned kScreen = 0; // ATSPI_COORD_TYPE_SCREEN
constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr const char* kComponent = "org.a11y.atspi.Component";
constexpr const char* kAction = "org.a11y.atspi.Action";
constexpr const char* kText = "org.a11y.atspi.Text";

/// The offset of a byte, counted in characters.
int characterOffset(const std::string& text, std::size_t byte)
{
    return static_cast<int>(g_utf8_pointer_to_offset(text.c_str(), text.c_str() + byte));
}

/// From an answer of the signature `format`, which holds four numbers.
std::optional<Rect> rect(GVariant* answer, const char* format)
{
    gint32 x = 0;
    gint32 y = 0;
    gint32 width = 0;
    gint32 height = 0;
    g_variant_get(answer, format, &x, &y, &width, &height);
    if (width <= 0 || height <= 0) {
        return std::nullopt;
    }
    return Rect{
        static_cast<double>(x),
        static_cast<double>(y),
        static_cast<double>(width),
        static_cast<double>(height)};
}

} // namespace

void AccessibilityBus::Disconnect::operator()(GDBusConnection* connection) const
{
    g_dbus_connection_close_sync(connection, nullptr, nullptr);
    g_object_unref(connection);
}

void AccessibilityBus::Unreference::operator()(GVariant* variant) const
{
    g_variant_unref(variant);
}

AccessibilityBus::AccessibilityBus(const std::string& address)
{
    GError* error = nullptr;
    m_connection.reset(g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(
            G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
            | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr,
        nullptr,
        &error));
    if (!m_connection) {
        const std::string reason = error->message;
        g_error_free(error);
        throw Error(
            ErrorCode::kDesktopFailed, "The accessibility bus cannot be reached: " + reason);
    }
}

AccessibleObject AccessibilityBus::desktop()
{
    return {"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
}

std::string AccessibilityBus::textAt(GVariant* tuple, std::size_t index)
{
    const Variant child(g_variant_get_child_value(tuple, index));
    return g_variant_get_string(child.get(), nullptr);
}

AccessibilityBus::Variant AccessibilityBus::call(
    const AccessibleObject& object,
    const char* interface,
    const char* method,
    GVariant* arguments,
    const char* answer) const
{
    return Variant(g_dbus_connection_call_sync(
        m_connection.get(),
        object.program.c_str(),
        object.path.c_str(),
        interface,
        method,
        arguments,
        G_VARIANT_TYPE(answer),
        G_DBUS_CALL_FLAGS_NO_AUTO_START,
        kAnswerMilliseconds,
        nullptr,
        nullptr));
}

std::vector<AccessibleObject> AccessibilityBus::children(const AccessibleObject& object) const
{
    std::vector<AccessibleObject> result;
    if (const Variant reply = call(object, kAccessible, "GetChildren", nullptr, "(a(so))")) {
        const Variant list(g_variant_get_child_value(reply.get(), 0));
        for (std::size_t i = 0; i < g_variant_n_children(list.get()); ++i) {
            const Variant child(g_variant_get_child_value(list.get(), i));
            result.push_back({textAt(child.get(), 0), textAt(child.get(), 1)});
        }
    }
    return result;
}

std::string AccessibilityBus::role(const AccessibleObject& object) const
{
    const Variant reply = call(object, kAccessible, "GetRoleName", nullptr, "(s)");
    return reply ? textAt(reply.get(), 0) : std::string();
}

std::string AccessibilityBus::name(const AccessibleObject& object) const
{
    const Variant reply = call(
        object,
        "org.freedesktop.DBus.Properties",
        "Get",
        g_variant_new("(ss)", kAccessible, "Name"),
        "(v)");
    if (!reply) {
        return {};
    }
    const Variant boxed(g_variant_get_child_value(reply.get(), 0));
    const Variant value(g_variant_get_variant(boxed.get()));
    const bool isText = g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING) != 0;
    return isText ? g_variant_get_string(value.get(), nullptr) : std::string();
}

bool AccessibilityBus::has(const AccessibleObject& object, AccessibleState state) const
{
    const Variant reply = call(object, kAccessible, "GetState", nullptr, "(au)");
    if (!reply) {
        return false;
    }
    const Variant list(g_variant_get_child_value(reply.get(), 0));
    std::size_t count = 0;
    const auto* words =
        static_cast<const guint32*>(g_variant_get_fixed_array(list.get(), &count, sizeof(guint32)));
    return count > 0 && (words[0] >> std::to_underlying(state) & 1U) != 0;
}

std::optional<std::string> AccessibilityBus::text(const AccessibleObject& object) const
{
    const Variant reply = call(object, kText, "GetText", g_variant_new("(ii)", 0, -1), "(s)");
    return reply ? std::optional(textAt(reply.get(), 0)) : std::nullopt;
}

std::optional<Rect> AccessibilityBus::frame(const AccessibleObject& object) const
{
    const Variant reply =
        call(object, kComponent, "GetExtents", g_variant_new("(u)", kScreen), "((iiii))");
    return reply ? rect(reply.get(), "((iiii))") : std::nullopt;
}

std::optional<Rect>
AccessibilityBus::textFrame(const AccessibleObject& object, const std::string& wanted) const
{
    const std::string whole = text(object).value_or("");
    const std::size_t found = whole.find(wanted);
    if (found == std::string::npos) {
        return std::nullopt;
    }
    const Variant reply = call(
        object,
        kText,
        "GetRangeExtents",
        g_variant_new(
            "(iiu)",
            characterOffset(whole, found),
            characterOffset(whole, found + wanted.size()),
            kScreen),
        "(iiii)");
    return reply ? rect(reply.get(), "(iiii)") : std::nullopt;
}

bool AccessibilityBus::press(const AccessibleObject& object) const
{
    const Variant reply = call(object, kAction, "GetActions", nullptr, "(a(sss))");
    if (!reply) {
        return false;
    }
    const Variant actions(g_variant_get_child_value(reply.get(), 0));
    for (std::size_t i = 0; i < g_variant_n_children(actions.get()); ++i) {
        const Variant action(g_variant_get_child_value(actions.get(), i));
        if (textAt(action.get(), 0) == "Press") {
            const auto index = static_cast<gint32>(i);
            return call(object, kAction, "DoAction", g_variant_new("(i)", index), "(b)") != nullptr;
        }
    }
    return false;
}

} // namespace zento
