#include "ZentoCapture/Backends/X11FrameSource.h"

#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCapture/ThreadName.h"

#include <poll.h>

#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace zento {

namespace {

constexpr double kForever = std::numeric_limits<double>::infinity();

Error lostDisplay()
{
    return {ErrorCode::kNoDisplay, "the display being recorded is gone or has become smaller"};
}

PixelRect rootRect(const X11Connection& connection)
{
    const XcbPtr<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(
        connection.get(), xcb_get_geometry(connection.get(), connection.root()), nullptr));
    return reply ? PixelRect{0, 0, reply->width, reply->height} : PixelRect{};
}

bool contains(const PixelRect& outer, const PixelRect& inner)
{
    return inner.x >= outer.x && inner.y >= outer.y && inner.width > 0 && inner.height > 0
           && inner.x + inner.width <= outer.x + outer.width
           && inner.y + inner.height <= outer.y + outer.height;
}

/// The moment from which the next frame may be taken. Frames that follow each other keep to one
/// beat, so that a late one does not slow all the others down.
double nextSlot(double slot, double now)
{
    constexpr double kInterval = FrameSource::kMinimumFrameInterval;
    return now - slot < kInterval ? slot + kInterval : now + kInterval;
}

} // namespace

X11FrameSource::X11FrameSource(const std::string& displayName, const PixelRect& rect)
    : m_connection(displayName)
    , m_rect(rect)
    , m_grabber(m_connection, rect)
{
    const PixelRect screen = rootRect(m_connection);
    if (!contains(screen, rect)) {
        throw Error(ErrorCode::kNoDisplay, "the area to record does not lie on the display");
    }
    m_isWholeScreen = rect == screen;
    watchDamage();
}

X11FrameSource::~X11FrameSource()
{
    stop();
}

void X11FrameSource::watchDamage()
{
    xcb_connection_t* const connection = m_connection.get();
    const auto* const damage = xcb_get_extension_data(connection, &xcb_damage_id);
    const auto* const fixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (damage == nullptr || damage->present == 0 || fixes == nullptr || fixes->present == 0) {
        throw Error(
            ErrorCode::kNoDisplay,
            "the display cannot be recorded: its server does not report what changes (no DAMAGE)");
    }
    const XcbPtr<xcb_damage_query_version_reply_t> damageVersion(xcb_damage_query_version_reply(
        connection, xcb_damage_query_version(connection, 1, 1), nullptr));
    const XcbPtr<xcb_xfixes_query_version_reply_t> fixesVersion(xcb_xfixes_query_version_reply(
        connection, xcb_xfixes_query_version(connection, 5, 0), nullptr));
    m_damageEvent = damage->first_event + XCB_DAMAGE_NOTIFY;
    m_region = xcb_generate_id(connection);
    xcb_xfixes_create_region(connection, m_region, 0, nullptr);
    m_damage = xcb_generate_id(connection);
    // One event when the region stops being empty, none while it grows: the raw levels cost
    // thousands of events a second.
    const auto create = xcb_damage_create_checked(
        connection, m_damage, m_connection.root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    if (!m_connection.succeeded(create)) {
        throw lostDisplay();
    }
}

void X11FrameSource::start(FrameHandler onFrame, EndHandler onEnd)
{
    m_onFrame = std::move(onFrame);
    m_onEnd = std::move(onEnd);
    m_thread = std::thread([this] { run(); });
}

void X11FrameSource::stop()
{
    m_wake.wake();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void X11FrameSource::run()
{
    nameThread("capture.video");
    Change change = Change::Changed; // the first frame
    double slot = monotonicSeconds();
    while (!m_wake.isAwake()) {
        const double now = monotonicSeconds();
        if (change == Change::Changed && now >= slot) {
            slot = nextSlot(slot, now);
            change = deliver();
        }
        if (const Change read = readEvents(); read != Change::None) {
            change = read;
        }
        if (change == Change::Lost) {
            m_onEnd(lostDisplay());
            return;
        }
        wait(change == Change::Changed ? slot : kForever);
    }
}

X11FrameSource::Change X11FrameSource::readEvents()
{
    Change change = Change::None;
    while (const auto event = m_connection.nextEvent()) {
        if ((event->response_type & 0x7F) == m_damageEvent) {
            change = Change::Changed;
        }
    }
    return m_connection.isBroken() ? Change::Lost : change;
}

/// Empties the damage before the picture is taken, so that what changes afterwards makes a new
/// event. Whether it touches the rectangle.
bool X11FrameSource::takeDamage()
{
    xcb_connection_t* const connection = m_connection.get();
    if (m_isWholeScreen) {
        xcb_damage_subtract(connection, m_damage, XCB_NONE, XCB_NONE);
        return true;
    }
    xcb_damage_subtract(connection, m_damage, XCB_NONE, m_region);
    const XcbPtr<xcb_xfixes_fetch_region_reply_t> reply(xcb_xfixes_fetch_region_reply(
        connection, xcb_xfixes_fetch_region(connection, m_region), nullptr));
    if (!reply) {
        return true;
    }
    const xcb_rectangle_t* const rects = xcb_xfixes_fetch_region_rectangles(reply.get());
    for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++i) {
        if (intersects(m_rect, {rects[i].x, rects[i].y, rects[i].width, rects[i].height})) {
            return true;
        }
    }
    return false;
}

/// What is still to be shown afterwards.
X11FrameSource::Change X11FrameSource::deliver()
{
    if (!takeDamage() && !m_owesPicture) {
        return Change::None;
    }
    const auto picture = m_grabber.grab();
    if (!picture) {
        return Change::Lost;
    }
    // Stamped when the picture is here: nothing it shows happened later, so an effect never comes
    // before its cause. It is late by the time of the copy at most.
    const double time = monotonicSeconds();
    m_owesPicture = false;
    if (m_grabber.isUnchanged()) {
        return Change::None; // repainted with the same pixels
    }
    if (m_onFrame({.picture = *picture, .time = time}) == FrameVerdict::Refused) {
        m_owesPicture = true;
        return Change::Changed;
    }
    m_grabber.keep();
    return Change::None;
}

void X11FrameSource::wait(double untilSeconds)
{
    std::array<pollfd, 2> entries{
        {{.fd = m_connection.fileDescriptor(), .events = POLLIN, .revents = 0},
         {.fd = m_wake.fileDescriptor(), .events = POLLIN, .revents = 0}}};
    timespec timeout{};
    if (std::isfinite(untilSeconds)) {
        const double seconds = std::max(0.0, untilSeconds - monotonicSeconds());
        timeout.tv_sec = static_cast<time_t>(seconds);
        timeout.tv_nsec = static_cast<long>((seconds - std::floor(seconds)) * 1e9);
    }
    ::ppoll(
        entries.data(), entries.size(), std::isfinite(untilSeconds) ? &timeout : nullptr, nullptr);
}

} // namespace zento
