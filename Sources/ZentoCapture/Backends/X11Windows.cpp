#include "ZentoCapture/Backends/X11Windows.h"

#include <cstddef>

namespace zento {

namespace {

// The window manager's frame, the client and a few windows inside it.
constexpr int kDeepestNesting = 16;

std::optional<PixelRect> rootRect(const X11Connection& connection, xcb_window_t window)
{
    xcb_connection_t* const server = connection.get();
    const auto sizeRequest = xcb_get_geometry(server, window);
    const auto placeRequest = xcb_translate_coordinates(server, window, connection.root(), 0, 0);
    xcb_generic_error_t* sizeError = nullptr;
    xcb_generic_error_t* placeError = nullptr;
    const XcbPtr<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(server, sizeRequest, &sizeError));
    const XcbPtr<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(server, placeRequest, &placeError));
    const XcbPtr<xcb_generic_error_t> ownedSizeError(sizeError);
    const XcbPtr<xcb_generic_error_t> ownedPlaceError(placeError);
    if (!size || !place) {
        return {};
    }
    return PixelRect{place->dst_x, place->dst_y, size->width, size->height};
}

/// The child of `window` that holds the pixel.
std::optional<xcb_window_t>
childUnder(const X11Connection& connection, xcb_window_t window, Vec2 pixel)
{
    xcb_generic_error_t* error = nullptr;
    const auto request = xcb_translate_coordinates(
        connection.get(),
        connection.root(),
        window,
        static_cast<std::int16_t>(pixel.x),
        static_cast<std::int16_t>(pixel.y));
    const XcbPtr<xcb_translate_coordinates_reply_t> reply(
        xcb_translate_coordinates_reply(connection.get(), request, &error));
    const XcbPtr<xcb_generic_error_t> ownedError(error);
    if (!reply || reply->child == XCB_WINDOW_NONE) {
        return {};
    }
    return reply->child;
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
            const auto rect = rootRect(connection, window);
            return rect ? std::optional(X11Window{*processID, *rect}) : std::nullopt;
        }
    }
    return {};
}

} // namespace zento
