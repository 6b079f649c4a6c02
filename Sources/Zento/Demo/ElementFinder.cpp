#include "Zento/Demo/ElementFinder.h"

#include "Zento/Demo/DemoError.h"
#include "ZentoCore/Error.h"

#include <gio/gio.h>

#include <functional>
#include <regex>
#include <vector>

namespace zento {

namespace {

constexpr int kAnswerMilliseconds = 500;
constexpr int kDeepest = 40;      // levels: no window nests deeper, a broken tree may
constexpr unsigned kShowing = 25; // ATSPI_STATE_SHOWING
constexpr unsigned kScreen = 0;   // ATSPI_COORD_TYPE_SCREEN
constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr const char* kComponent = "org.a11y.atspi.Component";
constexpr const char* kText = "org.a11y.atspi.Text";

struct FreeVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, FreeVariant>;

/// An object of a program on the bus.
struct Node {
    std::string program; // its unique name
    std::string path;
};

std::string textAt(GVariant* tuple, std::size_t index)
{
    const Variant child(g_variant_get_child_value(tuple, index));
    return g_variant_get_string(child.get(), nullptr);
}

/// The offset of a byte, counted in characters.
int characterOffset(const std::string& text, std::size_t byte)
{
    return static_cast<int>(g_utf8_pointer_to_offset(text.c_str(), text.c_str() + byte));
}

} // namespace

/// One connection to the accessibility bus, and its questions. What is not answered is empty.
class ElementFinder::Bus {
public:
    explicit Bus(const std::string& address)
    {
        GError* error = nullptr;
        m_connection = g_dbus_connection_new_for_address_sync(
            address.c_str(),
            static_cast<GDBusConnectionFlags>(
                G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr,
            nullptr,
            &error);
        if (m_connection == nullptr) {
            const std::string reason = error->message;
            g_error_free(error);
            throw Error(
                DemoErrorCode::kDesktopFailed,
                "The accessibility bus cannot be reached: " + reason);
        }
    }

    ~Bus()
    {
        g_dbus_connection_close_sync(m_connection, nullptr, nullptr);
        g_object_unref(m_connection);
    }

    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    static Node applications()
    {
        return {"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
    }

    std::vector<Node> children(const Node& node) const
    {
        std::vector<Node> result;
        if (const Variant reply = call(node, kAccessible, "GetChildren", nullptr, "(a(so))")) {
            const Variant list(g_variant_get_child_value(reply.get(), 0));
            for (std::size_t i = 0; i < g_variant_n_children(list.get()); ++i) {
                const Variant child(g_variant_get_child_value(list.get(), i));
                result.push_back({textAt(child.get(), 0), textAt(child.get(), 1)});
            }
        }
        return result;
    }

    std::string role(const Node& node) const
    {
        const Variant reply = call(node, kAccessible, "GetRoleName", nullptr, "(s)");
        return reply ? textAt(reply.get(), 0) : std::string();
    }

    std::string name(const Node& node) const
    {
        const Variant reply = property(node, kAccessible, "Name");
        return reply && g_variant_is_of_type(reply.get(), G_VARIANT_TYPE_STRING) != 0
                   ? g_variant_get_string(reply.get(), nullptr)
                   : std::string();
    }

    bool isShowing(const Node& node) const
    {
        const Variant reply = call(node, kAccessible, "GetState", nullptr, "(au)");
        if (!reply) {
            return false;
        }
        const Variant list(g_variant_get_child_value(reply.get(), 0));
        std::size_t count = 0;
        const auto* words = static_cast<const guint32*>(
            g_variant_get_fixed_array(list.get(), &count, sizeof(guint32)));
        return count > 0 && (words[0] >> kShowing & 1U) != 0;
    }

    std::optional<Rect> frame(const Node& node) const
    {
        const Variant reply =
            call(node, kComponent, "GetExtents", g_variant_new("(u)", kScreen), "((iiii))");
        if (!reply) {
            return std::nullopt;
        }
        gint32 x = 0;
        gint32 y = 0;
        gint32 width = 0;
        gint32 height = 0;
        g_variant_get(reply.get(), "((iiii))", &x, &y, &width, &height);
        return rect(x, y, width, height);
    }

    std::optional<std::string> text(const Node& node) const
    {
        const Variant reply = call(node, kText, "GetText", g_variant_new("(ii)", 0, -1), "(s)");
        return reply ? std::optional(textAt(reply.get(), 0)) : std::nullopt;
    }

    std::optional<Rect> textFrame(const Node& node, const std::string& wanted) const
    {
        const std::optional<std::string> whole = text(node);
        const std::size_t found = whole ? whole->find(wanted) : std::string::npos;
        if (found == std::string::npos) {
            return std::nullopt;
        }
        const Variant reply = call(
            node,
            kText,
            "GetRangeExtents",
            g_variant_new(
                "(iiu)",
                characterOffset(*whole, found),
                characterOffset(*whole, found + wanted.size()),
                kScreen),
            "(iiii)");
        if (!reply) {
            return std::nullopt;
        }
        gint32 x = 0;
        gint32 y = 0;
        gint32 width = 0;
        gint32 height = 0;
        g_variant_get(reply.get(), "(iiii)", &x, &y, &width, &height);
        return rect(x, y, width, height);
    }

private:
    static std::optional<Rect> rect(int x, int y, int width, int height)
    {
        if (width <= 0 || height <= 0) {
            return std::nullopt;
        }
        return Rect{
            static_cast<double>(x),
            static_cast<double>(y),
            static_cast<double>(width),
            static_cast<double>(height)};
    }

    Variant call(
        const Node& node,
        const char* interface,
        const char* method,
        GVariant* arguments,
        const char* answer) const
    {
        return Variant(g_dbus_connection_call_sync(
            m_connection,
            node.program.c_str(),
            node.path.c_str(),
            interface,
            method,
            arguments,
            G_VARIANT_TYPE(answer),
            G_DBUS_CALL_FLAGS_NO_AUTO_START,
            kAnswerMilliseconds,
            nullptr,
            nullptr));
    }

    Variant property(const Node& node, const char* interface, const char* name) const
    {
        const Variant reply = call(
            node,
            "org.freedesktop.DBus.Properties",
            "Get",
            g_variant_new("(ss)", interface, name),
            "(v)");
        if (!reply) {
            return nullptr;
        }
        const Variant boxed(g_variant_get_child_value(reply.get(), 0));
        return Variant(g_variant_get_variant(boxed.get()));
    }

    GDBusConnection* m_connection = nullptr;
};

namespace {

/// Walks what is shown, depth first, until `visit` says that it has what it wants.
template <typename Bus, typename Visit>
bool walk(const Bus& bus, const Node& node, int depth, const Visit& visit)
{
    for (const Node& child : bus.children(node)) {
        if (!bus.isShowing(child) || depth > kDeepest) {
            continue;
        }
        if (visit(child) || walk(bus, child, depth + 1, visit)) {
            return true;
        }
    }
    return false;
}

/// What a person would call the element: its name, or else the text it holds, as an icon's title.
template <typename Bus>
std::string label(const Bus& bus, const Node& node)
{
    std::string name = bus.name(node);
    return name.empty() ? bus.text(node).value_or("") : name;
}

/// Calls `visit` for every element that fits the query until it returns true.
template <typename Bus, typename Visit>
void visitMatches(const Bus& bus, const ElementQuery& query, const Visit& visit)
{
    const std::regex name(query.name);
    const auto fits = [&](const Node& node) {
        return bus.role(node) == query.role
               && (query.name.empty() || std::regex_match(label(bus, node), name)) && visit(node);
    };
    for (const Node& application : bus.children(Bus::applications())) {
        if (!query.application.empty() && bus.name(application) != query.application) {
            continue;
        }
        for (const Node& window : bus.children(application)) {
            const bool isAsked =
                bus.isShowing(window) && (query.window.empty() || bus.name(window) == query.window);
            if (isAsked && walk(bus, window, 0, fits)) {
                return;
            }
        }
    }
}

} // namespace

ElementFinder::ElementFinder(const std::string& address)
    : m_bus(std::make_unique<Bus>(address))
{
}

ElementFinder::~ElementFinder() = default;

std::optional<FoundElement> ElementFinder::find(const ElementQuery& query) const
{
    std::optional<FoundElement> found;
    visitMatches(*m_bus, query, [&](const Node& node) {
        const auto frame =
            query.text.empty() ? m_bus->frame(node) : m_bus->textFrame(node, query.text);
        if (frame) {
            found = FoundElement{*frame, query.role, m_bus->name(node)};
        }
        return found.has_value();
    });
    return found;
}

std::optional<std::string> ElementFinder::textOf(const ElementQuery& query) const
{
    std::optional<std::string> found;
    visitMatches(*m_bus, query, [&](const Node& node) {
        found = m_bus->text(node);
        return found.has_value();
    });
    return found;
}

std::string description(const ElementQuery& query)
{
    std::string result = query.text.empty() ? "the " : "“" + query.text + "” in the ";
    result += query.role;
    if (!query.name.empty()) {
        result += " “" + query.name + "”";
    }
    return query.application.empty() ? result : result + " of " + query.application;
}

} // namespace zento
