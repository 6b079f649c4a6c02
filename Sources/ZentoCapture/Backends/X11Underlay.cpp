#include "ZentoCapture/Backends/X11Underlay.h"

#include "ZentoCapture/Backends/X11Windows.h"
#include "ZentoCapture/MonotonicClock.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

namespace zento {

namespace {

constexpr xcb_shape_kind_t kBoundingShape = 0;

/// How long a compositor may still show a window where it no longer is. They take a frame or two.
constexpr double kCompositorSeconds = 0.1;

/// Where a window has pixels, relative to the inside of its border: its whole self unless it is of
/// another shape than a rectangle.
std::vector<PixelRect> shapeOf(const X11Connection& connection, xcb_window_t window)
{
    xcb_connection_t* const server = connection.get();
    const xcb_xfixes_region_t region = xcb_generate_id(server);
    xcb_xfixes_create_region_from_window(server, region, window, kBoundingShape);
    const auto reply =
        replyOf(connection, xcb_xfixes_fetch_region_reply, xcb_xfixes_fetch_region(server, region));
    xcb_xfixes_destroy_region(server, region);
    std::vector<PixelRect> shape;
    if (reply) {
        const xcb_rectangle_t* const rects = xcb_xfixes_fetch_region_rectangles(reply.get());
        for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++i) {
            shape.push_back({rects[i].x, rects[i].y, rects[i].width, rects[i].height});
        }
    }
    return shape;
}

struct ServerWindow {
    xcb_window_t id = XCB_WINDOW_NONE;
    PixelRect rect; // root pixels, with its border
    int border = 0;
    bool hasAlpha = false;
};

/// The top-level windows that are on the screen, from the lowest up.
std::vector<ServerWindow> stack(const X11Connection& connection)
{
    xcb_connection_t* const server = connection.get();
    const auto tree =
        replyOf(connection, xcb_query_tree_reply, xcb_query_tree(server, connection.root()));
    if (!tree) {
        return {};
    }
    const std::span ids(
        xcb_query_tree_children(tree.get()),
        static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    // All questions first, then all answers: one wait instead of one for each window.
    std::vector<std::pair<xcb_get_window_attributes_cookie_t, xcb_get_geometry_cookie_t>> requests;
    requests.reserve(ids.size());
    for (const xcb_window_t id : ids) {
        requests.emplace_back(xcb_get_window_attributes(server, id), xcb_get_geometry(server, id));
    }
    std::vector<ServerWindow> windows;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const auto state = replyOf(connection, xcb_get_window_attributes_reply, requests[i].first);
        const auto place = replyOf(connection, xcb_get_geometry_reply, requests[i].second);
        if (!state || !place || state->map_state != XCB_MAP_STATE_VIEWABLE
            || state->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
            continue;
        }
        const int borders = 2 * place->border_width;
        windows.push_back(
            {.id = ids[i],
             .rect = {place->x, place->y, place->width + borders, place->height + borders},
             .border = place->border_width,
             .hasAlpha = place->depth == 32});
    }
    return windows;
}

} // namespace

X11Underlay::X11Underlay(const X11Connection& connection, std::vector<xcb_window_t> excludedWindows)
    : m_connection(connection)
    , m_excluded(std::move(excludedWindows))
    , m_part(connection)
{
    requireComposite(connection);
    xcb_composite_redirect_subwindows(
        connection.get(), connection.root(), XCB_COMPOSITE_REDIRECT_AUTOMATIC);
}

X11Subject::News X11Underlay::handle(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7F) {
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_CIRCULATE_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_DESTROY_NOTIFY:
    case XCB_PROPERTY_NOTIFY: // the wallpaper; others are rare
        m_mustReadStack = true;
        m_isOutdated = m_isOutdated || concernsExcluded(event);
        return X11Subject::News::MayHaveChanged;
    default:
        break;
    }
    const bool isHidden = std::ranges::any_of(
        m_layers, [&](const Layer& layer) { return layer.damage->isReported(event); });
    return isHidden ? X11Subject::News::MayHaveChanged : X11Subject::News::None;
}

/// A window that is mapped may be an excluded one that was not there yet.
bool X11Underlay::concernsExcluded(const xcb_generic_event_t& event) const
{
    switch (event.response_type & 0x7F) {
    case XCB_MAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
        return true;
    case XCB_CONFIGURE_NOTIFY:
        return isExcluded(reinterpret_cast<const xcb_configure_notify_event_t&>(event).window);
    default:
        return false;
    }
}

void X11Underlay::paint(X11Frames& frames, const PixelRect& captured)
{
    if (std::exchange(m_mustReadStack, false)) {
        readStack();
    }
    m_isOutdated = false;
    std::erase_if(
        m_holes, [now = monotonicSeconds()](const Hole& hole) { return hole.until < now; });
    for (const Layer& layer : m_layers) {
        layer.damage->clear();
    }
    const PixelTarget target{frames.next().pixels(), captured};
    for (const Hole& hole : m_holes) {
        const PixelRect area = intersection(hole.rect, captured);
        if (area.isEmpty()) {
            continue;
        }
        paintWallpaper(target, area, frames);
        for (const Layer& layer : m_layers) {
            paintLayer(target, area, layer);
        }
    }
}

void X11Underlay::readStack()
{
    m_excludedTopLevels.clear();
    for (const xcb_window_t window : m_excluded) {
        if (const auto topLevel = topLevelOf(m_connection, window)) {
            m_excludedTopLevels.push_back(*topLevel);
        }
    }
    m_layers.clear();
    m_wallpaper = wallpaper();
    const std::vector<ServerWindow> windows = stack(m_connection);
    std::vector<PixelRect> holes;
    for (const ServerWindow& window : windows) {
        if (isExcluded(window.id)) {
            holes.push_back(window.rect);
        }
    }
    const bool blends = hasCompositor();
    setHoles(holes, blends ? monotonicSeconds() + kCompositorSeconds : 0);
    for (const ServerWindow& window : windows) {
        const auto meets = [&](const Hole& hole) { return intersects(hole.rect, window.rect); };
        if (!isExcluded(window.id) && std::ranges::any_of(m_holes, meets)) {
            addLayer(window.id, window.rect, window.border, blends && window.hasAlpha);
        }
    }
}

/// The holes there were until now last to the time given.
void X11Underlay::setHoles(const std::vector<PixelRect>& rects, double formerUntil)
{
    std::erase_if(m_holes, [&](const Hole& hole) {
        return std::ranges::find(rects, hole.rect) != rects.end();
    });
    for (Hole& hole : m_holes) {
        hole.until = std::min(hole.until, formerUntil);
    }
    for (const PixelRect& rect : rects) {
        m_holes.push_back({.rect = rect});
    }
}

bool X11Underlay::isExcluded(xcb_window_t topLevel) const
{
    return std::ranges::find(m_excludedTopLevels, topLevel) != m_excludedTopLevels.end();
}

/// Without a compositor nobody looks at the alpha of windows, and the screen shows them opaque.
bool X11Underlay::hasCompositor() const
{
    const auto atom = m_connection.existingAtom("_NET_WM_CM_S0");
    if (!atom) {
        return false;
    }
    const auto owner = replyOf(
        m_connection,
        xcb_get_selection_owner_reply,
        xcb_get_selection_owner(m_connection.get(), *atom));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

void X11Underlay::addLayer(
    xcb_window_t window, const PixelRect& rect, int border, bool isTranslucent)
{
    X11WindowPixmap pixmap(m_connection, window);
    if (pixmap.get() == XCB_NONE) {
        return; // it has just gone
    }
    Layer layer{
        .rect = rect,
        .shape = shapeOf(m_connection, window),
        .isTranslucent = isTranslucent,
        .pixmap = std::move(pixmap),
        .damage = std::make_unique<X11Damage>(m_connection, window)};
    for (PixelRect& part : layer.shape) {
        part = intersection(part.movedBy(rect.x + border, rect.y + border), rect);
    }
    m_layers.push_back(std::move(layer));
}

X11Underlay::Wallpaper X11Underlay::wallpaper() const
{
    const auto pixmap = m_connection.cardinal(m_connection.root(), "_XROOTPMAP_ID");
    if (!pixmap || *pixmap == XCB_NONE) {
        return {};
    }
    const auto size = replyOf(
        m_connection, xcb_get_geometry_reply, xcb_get_geometry(m_connection.get(), *pixmap));
    return size ? Wallpaper{.pixmap = *pixmap, .tile = {0, 0, size->width, size->height}}
                : Wallpaper{};
}

void X11Underlay::paintWallpaper(
    const PixelTarget& target, const PixelRect& area, X11Frames& frames)
{
    if (m_wallpaper.pixmap != XCB_NONE) {
        if (intersection(area, m_wallpaper.tile) == area) {
            if (m_part.read(m_wallpaper.pixmap, area)) {
                copyPixels(target, {m_part.pixels(), area}, area);
                return;
            }
        } else if (m_part.read(m_wallpaper.pixmap, m_wallpaper.tile)) {
            paintTiles(target, area);
            return;
        }
    }
    if (frames.hasLast()) {
        copyPixels(target, {frames.last().pixels(), target.rect}, area);
    } else {
        bridgePixels(target, area);
    }
}

void X11Underlay::paintTiles(const PixelTarget& target, const PixelRect& area)
{
    const PixelRect& tile = m_wallpaper.tile;
    for (int y = area.y - area.y % tile.height; y < area.bottom(); y += tile.height) {
        for (int x = area.x - area.x % tile.width; x < area.right(); x += tile.width) {
            copyPixels(target, {m_part.pixels(), tile.movedBy(x, y)}, area);
        }
    }
}

void X11Underlay::paintLayer(const PixelTarget& target, const PixelRect& area, const Layer& layer)
{
    const PixelRect part = intersection(area, layer.rect);
    if (part.isEmpty()
        || !m_part.read(layer.pixmap.get(), part.movedBy(-layer.rect.x, -layer.rect.y))) {
        return;
    }
    for (const PixelRect& shape : layer.shape) {
        const PixelRect shown = intersection(part, shape);
        if (layer.isTranslucent) {
            blendPixels(target, {m_part.pixels(), part}, shown);
        } else {
            copyPixels(target, {m_part.pixels(), part}, shown);
        }
    }
}

} // namespace zento
