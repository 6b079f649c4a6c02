#include "Zento/Demo/ElementFinder.h"

#include "Zento/Demo/AccessibilityBus.h"

#include <functional>
#include <regex>

namespace zento {

namespace {

constexpr int kDeepest = 40; // levels: no window nests deeper, a broken tree may

using Visit = std::function<bool(const AccessibleObject&)>;

/// GTK's icon view settles whether an item is showing when the item is first asked for. With a
/// second client on the bus, the recorder, that is before the item has a place, and "not showing"
/// stays. So an item of such a view counts by where it is.
bool isShown(
    const AccessibilityBus& bus, const AccessibleObject& object, const AccessibleObject& parent)
{
    if (bus.has(object, AccessibleState::Showing)) {
        return true;
    }
    if (!bus.has(object, AccessibleState::Visible) || bus.role(parent) != "layered pane") {
        return false;
    }
    const auto frame = bus.frame(object);
    const auto view = bus.frame(parent);
    if (!frame || !view) {
        return false;
    }
    const Vec2 middle = frame->center();
    return middle.x >= view->x && middle.x < view->x + view->w && middle.y >= view->y
           && middle.y < view->y + view->h;
}

/// Walks what is shown, depth first, until `visit` says that it has what it wants.
bool walk(
    const AccessibilityBus& bus, const AccessibleObject& object, int depth, const Visit& visit)
{
    for (const AccessibleObject& child : bus.children(object)) {
        if (depth > kDeepest || !isShown(bus, child, object)) {
            continue;
        }
        if (visit(child) || walk(bus, child, depth + 1, visit)) {
            return true;
        }
    }
    return false;
}

/// What a person would call the element: its name, or else the text it holds, as an icon's title.
std::string label(const AccessibilityBus& bus, const AccessibleObject& object)
{
    std::string name = bus.name(object);
    return name.empty() ? bus.text(object).value_or("") : name;
}

/// Calls `visit` for every element that fits the query until it returns true.
void visitMatches(const AccessibilityBus& bus, const ElementQuery& query, const Visit& visit)
{
    const std::regex name(query.name);
    const auto fits = [&](const AccessibleObject& object) {
        return bus.role(object) == query.role
               && (query.name.empty() || std::regex_match(label(bus, object), name))
               && visit(object);
    };
    for (const AccessibleObject& application : bus.children(AccessibilityBus::desktop())) {
        if (!query.application.empty() && bus.name(application) != query.application) {
            continue;
        }
        for (const AccessibleObject& window : bus.children(application)) {
            const bool isAsked = bus.has(window, AccessibleState::Showing)
                                 && (query.window.empty() || bus.name(window) == query.window);
            if (isAsked && walk(bus, window, 0, fits)) {
                return;
            }
        }
    }
}

} // namespace

ElementFinder::ElementFinder(const std::string& address)
    : m_bus(std::make_unique<AccessibilityBus>(address))
{
}

ElementFinder::~ElementFinder() = default;

std::optional<FoundElement> ElementFinder::find(const ElementQuery& query) const
{
    std::optional<FoundElement> found;
    visitMatches(*m_bus, query, [&](const AccessibleObject& object) {
        const auto frame =
            query.text.empty() ? m_bus->frame(object) : m_bus->textFrame(object, query.text);
        if (frame) {
            found = FoundElement{*frame, query.role, m_bus->name(object)};
        }
        return found.has_value();
    });
    return found;
}

std::optional<std::string> ElementFinder::textOf(const ElementQuery& query) const
{
    std::optional<std::string> found;
    visitMatches(*m_bus, query, [&](const AccessibleObject& object) {
        found = m_bus->text(object);
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
