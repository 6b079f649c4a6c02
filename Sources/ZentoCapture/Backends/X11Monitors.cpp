#include "ZentoCapture/Backends/X11Monitors.h"

#include <xcb/randr.h>

#include <algorithm>
#include <tuple>

namespace zento {

namespace {

std::vector<X11Monitor> wholeScreen(const X11Connection& connection)
{
    const PixelRect rect = rootRect(connection);
    return rect.isEmpty() ? std::vector<X11Monitor>{}
                          : std::vector{X11Monitor{.rect = rect, .isPrimary = true}};
}

bool hasRandr(const X11Connection& connection)
{
    const auto* const extension = xcb_get_extension_data(connection.get(), &xcb_randr_id);
    if (extension == nullptr || extension->present == 0) {
        return false;
    }
    // The server speaks no newer protocol than the client has asked for.
    return replyOf(
               connection,
               xcb_randr_query_version_reply,
               xcb_randr_query_version(connection.get(), 1, 5))
           != nullptr;
}

bool contains(const PixelRect& outer, const PixelRect& inner)
{
    return intersection(outer, inner) == inner;
}

} // namespace

std::vector<X11Monitor> monitors(const X11Connection& connection)
{
    if (!hasRandr(connection)) {
        return wholeScreen(connection);
    }
    const auto reply = replyOf(
        connection,
        xcb_randr_get_monitors_reply,
        xcb_randr_get_monitors(connection.get(), connection.root(), 1));
    if (!reply) {
        return wholeScreen(connection);
    }
    std::vector<X11Monitor> result;
    for (auto each = xcb_randr_get_monitors_monitors_iterator(reply.get()); each.rem > 0;
         xcb_randr_monitor_info_next(&each)) {
        const xcb_randr_monitor_info_t& info = *each.data;
        result.push_back(
            {.name = info.name,
             .rect = {info.x, info.y, info.width, info.height},
             .isPrimary = info.primary != 0});
    }
    std::ranges::stable_sort(result, {}, [](const X11Monitor& monitor) {
        return std::tuple(monitor.rect.x, monitor.rect.y);
    });
    return result;
}

PixelRect rootRect(const X11Connection& connection)
{
    const auto reply = replyOf(
        connection, xcb_get_geometry_reply, xcb_get_geometry(connection.get(), connection.root()));
    return reply ? PixelRect{0, 0, reply->width, reply->height} : PixelRect{};
}

std::vector<PixelRect>
shownParts(const PixelRect& rect, const PixelRect& root, std::span<const X11Monitor> monitors)
{
    std::vector<PixelRect> parts;
    for (const X11Monitor& monitor : monitors) {
        const PixelRect part = intersection(intersection(rect, root), monitor.rect);
        const auto isWithin = [&](const PixelRect& other) { return contains(other, part); };
        if (part.isEmpty() || std::ranges::any_of(parts, isWithin)) {
            continue;
        }
        std::erase_if(parts, [&](const PixelRect& other) { return contains(part, other); });
        parts.push_back(part);
    }
    return parts;
}

} // namespace zento
