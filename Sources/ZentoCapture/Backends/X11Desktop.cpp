#include "ZentoCapture/Backends/X11Desktop.h"

#include "ZentoCapture/Backends/AtSpiLookup.h"
#include "ZentoCapture/Backends/X11FrameSource.h"
#include "ZentoCapture/Backends/X11InputSource.h"
#include "ZentoCapture/Backends/X11Monitors.h"
#include "ZentoCapture/Backends/X11ScreenSubject.h"
#include "ZentoCapture/Backends/X11WindowSubject.h"
#include "ZentoCapture/Backends/X11Windows.h"

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

/// A rectangle in pixels as one in points.
Rect inPoints(const PixelRect& rect, double scale)
{
    return {rect.x / scale, rect.y / scale, rect.width / scale, rect.height / scale};
}

/// The pixel nearest to a place in points; a fraction that only the division by the scale has
/// brought must not move it to the one before.
int nearestPixel(double points, double scale)
{
    return static_cast<int>(std::lround(points * scale));
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
    std::vector<DisplayInfo> displays;
    for (const X11Monitor& monitor : monitors(m_connection)) {
        displays.push_back(
            {.id = monitor.name,
             .name =
                 monitor.name == XCB_ATOM_NONE ? "screen" : atomName(m_connection, monitor.name),
             .bounds = inPoints(monitor.rect, scale),
             .scale = scale,
             .role = monitor.isPrimary ? DisplayRole::Main : DisplayRole::Further});
    }
    return displays;
}

std::optional<WindowInfo> X11Desktop::window(std::uint32_t windowID)
{
    const auto placement = placementOf(m_connection, windowID);
    if (!placement) {
        return {};
    }
    return WindowInfo{
        .frame = inPoints(placement->frame, displayScale(m_connection)),
        .application = applicationOf(m_connection, windowID)};
}

Desktop::WindowFrameQuery X11Desktop::windowFrameQuery(std::uint32_t windowID)
{
    auto connection = std::make_shared<const X11Connection>(m_displayName);
    const double scale = displayScale(*connection);
    return [connection = std::move(connection), scale, windowID]() -> std::optional<Rect> {
        const auto placement = placementOf(*connection, windowID);
        return placement ? std::optional(inPoints(placement->frame, scale)) : std::nullopt;
    };
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
    const auto window = frontmostWindow(m_connection);
    return window ? applicationOf(m_connection, *window) : std::nullopt;
}

std::unique_ptr<FrameSource> X11Desktop::frameSource(const FrameRequest& request)
{
    const auto source = [&](const X11FrameSource::SubjectFactory& makeSubject) {
        return std::make_unique<X11FrameSource>(
            m_displayName, request.pixelWidth, request.pixelHeight, makeSubject);
    };
    if (request.window) {
        const double scale = displayScale(m_connection);
        const Vec2 size{
            std::round(request.window->size.x * scale), std::round(request.window->size.y * scale)};
        return source([&](const X11Connection& connection) {
            return std::make_unique<X11WindowSubject>(connection, request.window->id, size);
        });
    }
    const auto all = displays();
    const auto display = std::ranges::find(all, request.displayID, &DisplayInfo::id);
    if (display == all.end()) {
        throw Error(ErrorCode::kNoDisplay, "the display to record is no longer connected");
    }
    const Rect local =
        request.sourceRect.value_or(Rect{0, 0, display->bounds.w, display->bounds.h});
    const PixelRect rect{
        .x = nearestPixel(display->bounds.x + local.x, display->scale),
        .y = nearestPixel(display->bounds.y + local.y, display->scale),
        .width = request.pixelWidth,
        .height = request.pixelHeight};
    return source([&](const X11Connection& connection) {
        return std::make_unique<X11ScreenSubject>(connection, rect, request.excludedWindowIDs);
    });
}

std::unique_ptr<InputSource> X11Desktop::inputSource()
{
    return std::make_unique<X11InputSource>(m_displayName);
}

std::unique_ptr<ElementLookup> X11Desktop::elementLookup()
{
    return std::make_unique<AtSpiLookup>(m_displayName);
}

std::unique_ptr<ScrollWheel> X11Desktop::scrollWheel(const std::stop_token& /*stop*/)
{
    return openScrollWheel(m_displayName);
}

} // namespace zento
