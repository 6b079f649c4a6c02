#include "ZentoCapture/Backends/X11Windows.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <ranges>
#include <utility>
#include <vector>

namespace zento {

namespace {

// The window manager's frame, the client and a few windows inside it.
constexpr int kDeepestNesting = 16;

std::optional<PixelRect> placeOf(const X11Connection& connection, xcb_window_t window)
{
    xcb_connection_t* const server = connection.get();
    const auto sizeRequest = xcb_get_geometry(server, window);
    const auto placeRequest = xcb_translate_coordinates(server, window, connection.root(), 0, 0);
    const auto size = replyOf(connection, xcb_get_geometry_reply, sizeRequest);
    const auto place = replyOf(connection, xcb_translate_coordinates_reply, placeRequest);
    if (!size || !place) {
        return {};
    }
    return PixelRect{place->dst_x, place->dst_y, size->width, size->height};
}

/// The child of `window` that holds the pixel.
std::optional<xcb_window_t>
childUnder(const X11Connection& connection, xcb_window_t window, Vec2 pixel)
{
    const auto request = xcb_translate_coordinates(
        connection.get(),
        connection.root(),
        window,
        static_cast<std::int16_t>(pixel.x),
        static_cast<std::int16_t>(pixel.y));
    const auto reply = replyOf(connection, xcb_translate_coordinates_reply, request);
    if (!reply || reply->child == XCB_WINDOW_NONE) {
        return {};
    }
    return reply->child;
}

/// What an application says it has drawn around its window for a shadow, taken off.
PixelRect
withoutMargin(const X11Connection& connection, xcb_window_t window, const PixelRect& whole)
{
    const auto bytes = connection.property(window, "_GTK_FRAME_EXTENTS");
    std::array<std::int32_t, 4> margin{}; // left, right, top, bottom
    if (bytes.size() < sizeof margin) {
        return whole;
    }
    std::memcpy(margin.data(), bytes.data(), sizeof margin);
    const auto [left, right, top, bottom] = margin;
    return {whole.x + left, whole.y + top, whole.width - left - right, whole.height - top - bottom};
}

} // namespace

std::optional<X11Window> windowUnder(const X11Connection& connection, Vec2 pixel)
{
    xcb_window_t window = connection.root();
    for (int depth = 0; depth < kDeepestNesting; ++depth) {
        const auto child = childUnder(connection, window, pixel);
        if (!child) {
            return {};
        }
        window = *child;
        if (const auto processID = connection.cardinal(window, "_NET_WM_PID")) {
            const auto rect = placeOf(connection, window);
            return rect ? std::optional(X11Window{*processID, *rect}) : std::nullopt;
        }
    }
    return {};
}

std::optional<xcb_window_t> topLevelOf(const X11Connection& connection, xcb_window_t window)
{
    for (int depth = 0; depth < kDeepestNesting; ++depth) {
        const auto tree =
            replyOf(connection, xcb_query_tree_reply, xcb_query_tree(connection.get(), window));
        if (!tree || tree->parent == XCB_WINDOW_NONE) {
            return {};
        }
        if (tree->parent == tree->root) {
            return window;
        }
        window = tree->parent;
    }
    return {};
}

std::optional<X11Placement> placementOf(const X11Connection& connection, xcb_window_t window)
{
    const auto topLevel = topLevelOf(connection, window);
    if (!topLevel) {
        return {};
    }
    const auto stateRequest = xcb_get_window_attributes(connection.get(), window);
    const auto placeRequest = xcb_get_geometry(connection.get(), *topLevel);
    const auto state = replyOf(connection, xcb_get_window_attributes_reply, stateRequest);
    const auto place = replyOf(connection, xcb_get_geometry_reply, placeRequest);
    if (!state || !place || state->map_state != XCB_MAP_STATE_VIEWABLE
        || state->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
        return {};
    }
    const int border = 2 * place->border_width;
    const PixelRect whole{place->x, place->y, place->width + border, place->height + border};
    const PixelRect frame = intersection(whole, withoutMargin(connection, window, whole));
    return X11Placement{
        .topLevel = *topLevel, .whole = whole, .frame = frame.isEmpty() ? whole : frame};
}

std::optional<xcb_window_t> frontmostWindow(const X11Connection& connection)
{
    const auto isOurs = [&](xcb_window_t window) {
        return connection.cardinal(window, "_NET_WM_PID") == static_cast<std::uint32_t>(getpid());
    };
    const auto active = connection.cardinal(connection.root(), "_NET_ACTIVE_WINDOW");
    if (active && *active != XCB_WINDOW_NONE && !isOurs(*active)) {
        return active;
    }
    const auto bytes = connection.property(connection.root(), "_NET_CLIENT_LIST_STACKING");
    std::vector<xcb_window_t> windows(bytes.size() / sizeof(xcb_window_t)); // from the back
    std::memcpy(windows.data(), bytes.data(), windows.size() * sizeof(xcb_window_t));
    for (const xcb_window_t window : std::views::reverse(windows)) {
        if (!isOurs(window) && placementOf(connection, window)) {
            return window;
        }
    }
    return {};
}

std::optional<std::string> applicationOf(const X11Connection& connection, xcb_window_t window)
{
    // Two texts, each ended by a zero: the instance and the class. The class names the application.
    const auto bytes = connection.property(window, "WM_CLASS");
    const auto instanceEnd = std::ranges::find(bytes, 0);
    if (instanceEnd == bytes.end()) {
        return {};
    }
    std::string name(instanceEnd + 1, std::find(instanceEnd + 1, bytes.end(), 0));
    return name.empty() ? std::nullopt : std::optional(std::move(name));
}

} // namespace zento
