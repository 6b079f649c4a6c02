#include "ZentoCapture/Backends/X11ScreenSubject.h"

#include "ZentoCapture/Backends/X11Monitors.h"

#include <xcb/randr.h>

#include <algorithm>

namespace zento {

namespace {

/// Checks what the members that follow rely on.
const X11Connection& checked(const X11Connection& connection, const PixelRect& rect)
{
    requireDamage(connection);
    if (rect.isEmpty() || intersection(rootRect(connection), rect) != rect) {
        throw Error(
            ErrorCode::kNoDisplay, "what is to be recorded does not lie wholly on the desktop");
    }
    return connection; // NOLINT(bugprone-return-const-ref-from-parameter): the caller's, which
                       // stays
}

} // namespace

X11ScreenSubject::X11ScreenSubject(
    const X11Connection& connection,
    const PixelRect& rect,
    const std::vector<xcb_window_t>& excludedWindows)
    : m_connection(checked(connection, rect))
    , m_rect(rect)
    , m_damage(connection, connection.root())
    , m_part(connection)
{
    if (!excludedWindows.empty()) {
        m_underlay.emplace(connection, excludedWindows);
    }
    lookForParts(); // the server speaks RandR from here on
    selectEvents();
    m_mustLookForParts = true; // what changed before the selection is not reported
}

void X11ScreenSubject::selectEvents() const
{
    xcb_connection_t* const server = m_connection.get();
    // A monitor that is only defined sends nothing of RandR, but the root window's configuration.
    const std::uint32_t mask =
        XCB_EVENT_MASK_STRUCTURE_NOTIFY | (m_underlay ? X11Underlay::kRootEvents : 0U);
    xcb_change_window_attributes(server, m_connection.root(), XCB_CW_EVENT_MASK, &mask);
    if (m_randrEvent != 0) {
        xcb_randr_select_input(
            server,
            m_connection.root(),
            XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE
                | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
    xcb_flush(server);
}

void X11ScreenSubject::lookForParts()
{
    const PixelRect root = rootRect(m_connection);
    m_parts = shownParts(m_rect, root, monitors(m_connection));
    m_isWholeScreen = m_rect == root;
    const auto* const extension = xcb_get_extension_data(m_connection.get(), &xcb_randr_id);
    m_randrEvent = extension != nullptr && extension->present != 0 ? extension->first_event : 0;
    m_mustLookForParts = false;
}

X11Subject::News X11ScreenSubject::handle(const xcb_generic_event_t& event)
{
    const int type = event.response_type & 0x7F;
    const bool isOfRoot = type == XCB_CONFIGURE_NOTIFY
                          && reinterpret_cast<const xcb_configure_notify_event_t&>(event).window
                                 == m_connection.root();
    if (isOfRoot
        || (m_randrEvent != 0
            && (type == m_randrEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY
                || type == m_randrEvent + XCB_RANDR_NOTIFY))) {
        m_mustLookForParts = true;
        m_mustDraw = true;
        return News::MayHaveChanged;
    }
    if (m_underlay && m_underlay->handle(event) == News::MayHaveChanged) {
        m_mustDraw = true;
        return News::MayHaveChanged;
    }
    return m_damage.isReported(event) ? News::MayHaveChanged : News::None;
}

/// Whether the changes touch the rectangle.
bool X11ScreenSubject::takeDamage() const
{
    if (m_isWholeScreen) {
        m_damage.clear();
        return true;
    }
    return m_damage.take(m_rect);
}

bool X11ScreenSubject::draw(X11Frames& frames, Want want)
{
    if (m_mustLookForParts) {
        lookForParts();
    }
    const bool isDamaged = takeDamage();
    if (!isDamaged && !m_mustDraw && want == Want::IfChanged) {
        return false;
    }
    m_mustDraw = false;
    if (m_parts.empty() || !read(frames)) {
        return false;
    }
    if (m_underlay) {
        m_underlay->paint(frames, m_rect);
    }
    return true;
}

/// A refusal says that the screen has just become smaller: looks again, once. Whatever comes after
/// that is told by an event of its own.
bool X11ScreenSubject::read(X11Frames& frames)
{
    if (readParts(frames)) {
        return true;
    }
    lookForParts();
    return !m_parts.empty() && readParts(frames);
}

bool X11ScreenSubject::readParts(X11Frames& frames)
{
    if (m_parts.size() == 1 && m_parts.front() == m_rect) {
        return frames.next().read(m_connection.root(), m_rect);
    }
    frames.repeatLast();
    const PixelTarget target{frames.next().pixels(), m_rect};
    return std::ranges::all_of(m_parts, [&](const PixelRect& part) {
        if (!m_part.read(m_connection.root(), part)) {
            return false;
        }
        copyPixels(target, {m_part.pixels(), part}, part);
        return true;
    });
}

} // namespace zento
