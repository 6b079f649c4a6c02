#include "WaylandStage/WaylandUser.h"

#include <gio/gio.h>
#include <linux/input-event-codes.h>

#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento::test {

namespace {

constexpr std::chrono::milliseconds kAnswer{10'000};
constexpr const char* kRemote = "org.gnome.Mutter.RemoteDesktop";
constexpr const char* kCast = "org.gnome.Mutter.ScreenCast";
constexpr const char* kRemoteSession = "org.gnome.Mutter.RemoteDesktop.Session";

std::string pathOf(const Variant& answer)
{
    const char* path = nullptr;
    g_variant_get(answer.get(), "(&o)", &path);
    return path;
}

} // namespace

/// Places are told against a stream, which a session of the other service has to make.
WaylandUser::WaylandUser(WaylandStage& /*stage*/)
{
    m_session = pathOf(m_bus.call(
        {kRemote, "/org/gnome/Mutter/RemoteDesktop", kRemote}, "CreateSession", nullptr, kAnswer));
    const Variant id =
        m_bus.property({kRemote, m_session.c_str(), kRemoteSession}, "SessionId", kAnswer);
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(
        &options,
        "{sv}",
        "remote-desktop-session-id",
        g_variant_new_string(g_variant_get_string(id.get(), nullptr)));
    const std::string cast = pathOf(m_bus.call(
        {kCast, "/org/gnome/Mutter/ScreenCast", kCast},
        "CreateSession",
        g_variant_new("(a{sv})", &options),
        kAnswer));
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    m_stream = pathOf(m_bus.call(
        {kCast, cast.c_str(), "org.gnome.Mutter.ScreenCast.Session"},
        "RecordMonitor",
        g_variant_new("(sa{sv})", "", &options),
        kAnswer));
    notify("Start", nullptr);
    // A desktop gets its keyboard with the first key, and its programs hear of it after that.
    type(KEY_LEFTSHIFT);
}

WaylandUser::~WaylandUser() = default;

void WaylandUser::move(double x, double y)
{
    notify("NotifyPointerMotionAbsolute", g_variant_new("(sdd)", m_stream.c_str(), x, y));
}

void WaylandUser::click()
{
    notify("NotifyPointerButton", g_variant_new("(ib)", BTN_LEFT, TRUE));
    notify("NotifyPointerButton", g_variant_new("(ib)", BTN_LEFT, FALSE));
}

void WaylandUser::type(unsigned kernelCode)
{
    notify("NotifyKeyboardKeycode", g_variant_new("(ub)", kernelCode, TRUE));
    notify("NotifyKeyboardKeycode", g_variant_new("(ub)", kernelCode, FALSE));
}

void WaylandUser::notify(const char* method, _GVariant* arguments)
{
    m_bus.call({kRemote, m_session.c_str(), kRemoteSession}, method, arguments, kAnswer);
}

} // namespace zento::test
