#include "ZentoCapture/Backends/X11Redirection.h"

namespace zento {

void requireComposite(const X11Connection& connection)
{
    const auto* const extension = xcb_get_extension_data(connection.get(), &xcb_composite_id);
    if (extension != nullptr && extension->present != 0) {
        // Version 0.2 brought the names of windows' pictures.
        const auto version = replyOf(
            connection,
            xcb_composite_query_version_reply,
            xcb_composite_query_version(connection.get(), 0, 4));
        if (version && (version->major_version > 0 || version->minor_version >= 2)) {
            return;
        }
    }
    throw Error(
        ErrorCode::kNoDisplay,
        "windows cannot be told apart: the display's server does not keep their pictures "
        "(no Composite)");
}

X11WindowPixmap::X11WindowPixmap(const X11Connection& connection, xcb_window_t window)
    : m_connection(&connection)
{
    const xcb_pixmap_t pixmap = xcb_generate_id(connection.get());
    if (connection.succeeded(
            xcb_composite_name_window_pixmap_checked(connection.get(), window, pixmap))) {
        m_pixmap = pixmap;
    }
}

X11WindowPixmap::~X11WindowPixmap()
{
    if (m_pixmap != XCB_NONE) {
        xcb_free_pixmap(m_connection->get(), m_pixmap);
    }
}

} // namespace zento
