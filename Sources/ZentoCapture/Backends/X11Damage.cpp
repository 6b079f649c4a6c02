#include "ZentoCapture/Backends/X11Damage.h"

namespace zento {

void requireDamage(const X11Connection& connection)
{
    xcb_connection_t* const server = connection.get();
    const auto* const damage = xcb_get_extension_data(server, &xcb_damage_id);
    const auto* const fixes = xcb_get_extension_data(server, &xcb_xfixes_id);
    if (damage == nullptr || damage->present == 0 || fixes == nullptr || fixes->present == 0) {
        throw Error(
            ErrorCode::kNoDisplay,
            "the display cannot be recorded: its server does not report what changes (no DAMAGE)");
    }
    // The server speaks no newer protocol than the client has asked for.
    const auto damageVersion = xcb_damage_query_version(server, 1, 1);
    const auto fixesVersion = xcb_xfixes_query_version(server, 5, 0);
    replyOf(connection, xcb_damage_query_version_reply, damageVersion);
    replyOf(connection, xcb_xfixes_query_version_reply, fixesVersion);
}

X11Damage::X11Damage(const X11Connection& connection, xcb_window_t window)
    : m_connection(connection)
    , m_damage(xcb_generate_id(connection.get()))
    , m_region(xcb_generate_id(connection.get()))
{
    xcb_connection_t* const server = connection.get();
    const auto* const extension = xcb_get_extension_data(server, &xcb_damage_id);
    m_eventType = static_cast<std::uint8_t>(extension->first_event + XCB_DAMAGE_NOTIFY);
    // One event when the region stops being empty, none while it grows: the raw levels cost
    // thousands of events a second.
    xcb_damage_create(server, m_damage, window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_xfixes_create_region(server, m_region, 0, nullptr);
}

X11Damage::~X11Damage()
{
    // A damage goes with its window; to destroy it then is an error that nobody hears of.
    xcb_damage_destroy(m_connection.get(), m_damage);
    xcb_xfixes_destroy_region(m_connection.get(), m_region);
}

bool X11Damage::isReported(const xcb_generic_event_t& event) const
{
    return (event.response_type & 0x7F) == m_eventType
           && reinterpret_cast<const xcb_damage_notify_event_t&>(event).damage == m_damage;
}

void X11Damage::clear() const
{
    xcb_damage_subtract(m_connection.get(), m_damage, XCB_NONE, XCB_NONE);
}

bool X11Damage::take(const PixelRect& rect) const
{
    xcb_connection_t* const server = m_connection.get();
    xcb_damage_subtract(server, m_damage, XCB_NONE, m_region);
    const auto reply = replyOf(
        m_connection, xcb_xfixes_fetch_region_reply, xcb_xfixes_fetch_region(server, m_region));
    if (!reply) {
        return true;
    }
    const xcb_rectangle_t* const rects = xcb_xfixes_fetch_region_rectangles(reply.get());
    for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++i) {
        if (intersects(rect, {rects[i].x, rects[i].y, rects[i].width, rects[i].height})) {
            return true;
        }
    }
    return false;
}

} // namespace zento
