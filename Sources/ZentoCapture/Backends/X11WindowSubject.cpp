#include "ZentoCapture/Backends/X11WindowSubject.h"

#include "ZentoCapture/Backends/PixelTarget.h"
#include "ZentoCapture/CaptureSpace.h"
#include "ZentoImaging/Convert.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zento {

namespace {

constexpr std::uint32_t kStructure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
constexpr std::uint32_t kStructureAndProperties = kStructure | XCB_EVENT_MASK_PROPERTY_CHANGE;

void select(const X11Connection& connection, xcb_window_t window, std::uint32_t mask)
{
    xcb_change_window_attributes(connection.get(), window, XCB_CW_EVENT_MASK, &mask);
}

} // namespace

X11WindowSubject::X11WindowSubject(
    const X11Connection& connection, xcb_window_t window, Vec2 recorded)
    : m_connection(connection)
    , m_window(window)
    , m_recorded(recorded)
    , m_source(connection)
{
    requireDamage(connection);
    requireComposite(connection);
    select(connection, window, kStructureAndProperties);
    if (!place()) {
        throw Error(ErrorCode::kWindowGone, "window no longer exists");
    }
}

X11WindowSubject::~X11WindowSubject() = default;

X11Subject::News X11WindowSubject::handle(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7F) {
    case XCB_CONFIGURE_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        const int border = 2 * change.border_width;
        const bool keepsSize = change.window == m_topLevel
                               && change.width + border == m_placement.whole.width
                               && change.height + border == m_placement.whole.height;
        m_mustPlace = m_mustPlace || !keepsSize;
        return keepsSize ? News::None : News::MayHaveChanged; // moved: the picture is the same
    }
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_DESTROY_NOTIFY:
    case XCB_PROPERTY_NOTIFY: // the margin for its shadow
        m_mustPlace = true;
        return News::MayHaveChanged;
    default:
        break;
    }
    return m_damage && m_damage->isReported(event) ? News::MayHaveChanged : News::None;
}

/// Finds the window on the screen and its picture in the server. False while there is none.
bool X11WindowSubject::place()
{
    m_mustPlace = false;
    m_pixmap = {};
    const auto topLevel = topLevelOf(m_connection, m_window);
    if (!topLevel) {
        return false;
    }
    if (*topLevel != m_topLevel) {
        detach();
        attach(*topLevel);
    }
    // Asked for after its events were: whatever changes from here on is reported.
    const auto placement = placementOf(m_connection, m_window);
    if (!placement || placement->topLevel != m_topLevel) {
        return false;
    }
    m_placement = *placement;
    m_pixmap = X11WindowPixmap(m_connection, m_topLevel);
    return m_pixmap.get() != XCB_NONE;
}

void X11WindowSubject::attach(xcb_window_t topLevel)
{
    m_topLevel = topLevel;
    if (topLevel != m_window) {
        select(m_connection, topLevel, kStructure);
    }
    xcb_composite_redirect_window(m_connection.get(), topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    m_damage.emplace(m_connection, topLevel);
}

void X11WindowSubject::detach()
{
    if (m_topLevel == XCB_WINDOW_NONE) {
        return;
    }
    m_damage.reset();
    if (m_topLevel != m_window) {
        select(m_connection, m_topLevel, XCB_EVENT_MASK_NO_EVENT);
    }
    xcb_composite_unredirect_window(
        m_connection.get(), m_topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    m_topLevel = XCB_WINDOW_NONE;
}

bool X11WindowSubject::draw(X11Frames& frames, Want)
{
    if (m_mustPlace && !place()) {
        return false;
    }
    if (m_pixmap.get() == XCB_NONE || !m_damage) {
        return false;
    }
    m_damage->clear();
    const PixelRect& frame = m_placement.frame;
    const PixelRect part = frame.movedBy(-m_placement.whole.x, -m_placement.whole.y);
    const double scale = shownScale(
        m_recorded, {static_cast<double>(frame.width), static_cast<double>(frame.height)});
    if (scale == 1 && part.width >= frames.width() && part.height >= frames.height()) {
        return frames.next().read(
            m_pixmap.get(), {part.x, part.y, frames.width(), frames.height()});
    }
    if (!m_source.read(m_pixmap.get(), part)) {
        return false;
    }
    if (scale == 1) {
        drawUnscaledInto(frames);
    } else {
        drawScaledInto(frames, scale);
    }
    return true;
}

void X11WindowSubject::drawUnscaledInto(X11Frames& frames)
{
    std::memset(frames.next().data(), 0, frames.byteCount());
    const PixelRect all{0, 0, frames.width(), frames.height()};
    const PixelRect source{0, 0, m_placement.frame.width, m_placement.frame.height};
    copyPixels({frames.next().pixels(), all}, {m_source.pixels(), source}, all);
}

void X11WindowSubject::drawScaledInto(X11Frames& frames, double scale)
{
    const BgraView source{
        .data = m_source.data(),
        .width = m_placement.frame.width,
        .height = m_placement.frame.height,
        .stride = std::ptrdiff_t{m_placement.frame.width} * 4};
    m_fitted.draw(source, scale, frames.next().pixels(), frames.width(), frames.height());
}

} // namespace zento
