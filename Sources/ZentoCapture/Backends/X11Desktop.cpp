#include "ZentoCapture/Backends/X11Desktop.h"

#include "ZentoCapture/Backends/AtSpiLookup.h"
#include "ZentoCapture/Backends/X11FrameSource.h"
#include "ZentoCapture/Backends/X11InputSource.h"

#include <xcb/randr.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {

namespace {

std::string atomName(const X11Connection& connection, xcb_atom_t atom)
{
    const XcbPtr<xcb_get_atom_name_reply_t> reply(xcb_get_atom_name_reply(
        connection.get(), xcb_get_atom_name(connection.get(), atom), nullptr));
    if (!reply) {
        return {};
    }
    return {
        xcb_get_atom_name_name(reply.get()),
        static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

/// The whole screen, for a server that tells nothing about its monitors.
DisplayInfo wholeScreen(const X11Connection& connection, double scale)
{
    const xcb_screen_t& screen = connection.screen();
    return {
        .id = 0,
        .name = "screen",
        .bounds = {0, 0, screen.width_in_pixels / scale, screen.height_in_pixels / scale},
        .scale = scale,
        .role = DisplayRole::Main};
}

} // namespace

X11Desktop::X11Desktop(std::string displayName)
    : m_displayName(std::move(displayName))
    , m_connection(m_displayName)
{
}

std::vector<DisplayInfo> X11Desktop::displays()
{
    const double scale = displayScale(m_connection);
    xcb_connection_t* const connection = m_connection.get();
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(connection, &xcb_randr_id);
    if (m_connection.isBroken()) {
        return {};
    }
    if (extension == nullptr || extension->present == 0) {
        return {wholeScreen(m_connection, scale)};
    }
    // The server speaks no newer protocol than the client has asked for.
    const XcbPtr<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
        connection, xcb_randr_query_version(connection, 1, 5), nullptr));
    const XcbPtr<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
        connection, xcb_randr_get_monitors(connection, m_connection.root(), 1), nullptr));
    if (!version || !reply) {
        return m_connection.isBroken() ? std::vector<DisplayInfo>{}
                                       : std::vector{wholeScreen(m_connection, scale)};
    }
    std::vector<DisplayInfo> displays;
    for (auto monitors = xcb_randr_get_monitors_monitors_iterator(reply.get()); monitors.rem > 0;
         xcb_randr_monitor_info_next(&monitors)) {
        const xcb_randr_monitor_info_t& monitor = *monitors.data;
        displays.push_back(
            {.id = monitor.name,
             .name = atomName(m_connection, monitor.name),
             .bounds =
                 {monitor.x / scale,
                  monitor.y / scale,
                  monitor.width / scale,
                  monitor.height / scale},
             .scale = scale,
             .role = monitor.primary != 0 ? DisplayRole::Main : DisplayRole::Further});
    }
    return displays;
}

std::optional<Vec2> X11Desktop::pointerPosition()
{
    const auto pointer = m_connection.pointer();
    if (!pointer) {
        return {};
    }
    const double scale = displayScale(m_connection);
    return Vec2{pointer->position.x / scale, pointer->position.y / scale};
}

std::optional<std::string> X11Desktop::frontmostApplication()
{
    const auto window = m_connection.cardinal(m_connection.root(), "_NET_ACTIVE_WINDOW");
    if (!window || *window == XCB_WINDOW_NONE) {
        return {};
    }
    // Two texts, each ended by a zero: the instance and the class. The class names the application.
    const auto bytes = m_connection.property(*window, "WM_CLASS");
    const auto instanceEnd = std::ranges::find(bytes, 0);
    if (instanceEnd == bytes.end()) {
        return {};
    }
    std::string name(instanceEnd + 1, std::find(instanceEnd + 1, bytes.end(), 0));
    return name.empty() ? std::nullopt : std::optional(std::move(name));
}

std::unique_ptr<FrameSource> X11Desktop::frameSource(const FrameRequest& request)
{
    const auto all = displays();
    const auto display = std::ranges::find(all, request.displayID, &DisplayInfo::id);
    if (display == all.end()) {
        throw Error(ErrorCode::kNoDisplay, "the display to record is no longer connected");
    }
    const Rect local =
        request.sourceRect.value_or(Rect{0, 0, display->bounds.w, display->bounds.h});
    const auto pixels = [&](double points) {
        return static_cast<int>(std::floor(points * display->scale));
    };
    return std::make_unique<X11FrameSource>(
        m_displayName,
        PixelRect{
            .x = pixels(display->bounds.x + local.x),
            .y = pixels(display->bounds.y + local.y),
            .width = request.pixelWidth,
            .height = request.pixelHeight});
}

std::unique_ptr<InputSource> X11Desktop::inputSource()
{
    return std::make_unique<X11InputSource>(m_displayName);
}

std::unique_ptr<ElementLookup> X11Desktop::elementLookup()
{
    return std::make_unique<AtSpiLookup>(m_displayName);
}

std::unique_ptr<Desktop> openDesktop(const std::optional<std::string>& displayName)
{
    return std::make_unique<X11Desktop>(displayName.value_or(""));
}

} // namespace zento
