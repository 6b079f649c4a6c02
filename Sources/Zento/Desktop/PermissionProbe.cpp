#include "Zento/Desktop/PermissionProbe.h"

#include "ZentoCapture/DesktopKind.h"
#include "ZentoCapture/DesktopServices.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusReply>
#include <QProcess>
#include <QStringList>

#include <xcb/xcb.h>

#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace zento {

namespace {

constexpr auto kBusService = "org.a11y.Bus";
constexpr auto kBusPath = "/org/a11y/bus";
constexpr auto kProperties = "org.freedesktop.DBus.Properties";
constexpr auto kStatus = "org.a11y.Status";
constexpr int kBusTimeout = 1000; // milliseconds
constexpr unsigned kWindows = 2;  // of the kinds of sources

bool isAccessibilityOn()
{
    QDBusMessage call = QDBusMessage::createMethodCall(kBusService, kBusPath, kProperties, "Get");
    call << kStatus << "IsEnabled";
    const QDBusReply<QDBusVariant> reply =
        QDBusConnection::sessionBus().call(call, QDBus::Block, kBusTimeout);
    return reply.isValid() && reply.value().variant().toBool();
}

/// A property of a portal; 0 where there is no such portal.
unsigned portalNumber(const char* portal, const char* property)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", kProperties, "Get");
    call << QString("org.freedesktop.portal.") + portal << property;
    const QDBusReply<QDBusVariant> reply =
        QDBusConnection::sessionBus().call(call, QDBus::Block, kBusTimeout);
    return reply.isValid() ? reply.value().variant().toUInt() : 0;
}

void startFirst(const std::vector<std::pair<QString, QStringList>>& programs)
{
    for (const auto& [program, arguments] : programs) {
        if (QProcess::startDetached(program, arguments)) {
            return;
        }
    }
}

} // namespace

class PermissionProbe::Server {
public:
    Server()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
    }
    ~Server() { xcb_disconnect(m_connection); }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    bool isConnected() const { return xcb_connection_has_error(m_connection) == 0; }

    /// Also a sign of life.
    bool hasInput() const
    {
        constexpr std::string_view kName = "XInputExtension";
        xcb_query_extension_reply_t* const reply = xcb_query_extension_reply(
            m_connection, xcb_query_extension(m_connection, kName.size(), kName.data()), nullptr);
        const bool isPresent = reply != nullptr && reply->present != 0;
        std::free(reply); // NOLINT: libxcb's contract
        return isPresent;
    }

private:
    xcb_connection_t* m_connection;
};

PermissionProbe::PermissionProbe(std::shared_ptr<DeviceWatch> devices)
    : m_devices(std::move(devices))
{
}

PermissionProbe::~PermissionProbe() = default;

PermissionState PermissionProbe::operator()()
{
    if (environmentFacts().isWaylandSession()) {
        const CaptureDevices devices = m_devices->devices();
        return {
            .screen = portalNumber("ScreenCast", "version") > 0,
            .input = deviceInputAccess() != InputAccess::None,
            .accessibility = isAccessibilityOn(),
            .microphone = !devices.microphones.empty(),
            .camera = !devices.cameras.empty(),
            .needsInput = false,
            .window = (portalNumber("ScreenCast", "AvailableSourceTypes") & kWindows) != 0,
            .scrolling = portalNumber("RemoteDesktop", "version") > 0};
    }
    if (!m_server) {
        m_server = std::make_unique<Server>();
    }
    const bool hasInput = m_server->isConnected() && m_server->hasInput();
    const bool hasScreen = m_server->isConnected();
    if (!hasScreen) {
        m_server.reset(); // there may be one next time
    }
    const CaptureDevices devices = m_devices->devices();
    return {
        .screen = hasScreen,
        .input = hasInput,
        .accessibility = isAccessibilityOn(),
        .microphone = !devices.microphones.empty(),
        .camera = !devices.cameras.empty()};
}

void enableAccessibility()
{
    QDBusMessage call = QDBusMessage::createMethodCall(kBusService, kBusPath, kProperties, "Set");
    call << kStatus << "IsEnabled" << QVariant::fromValue(QDBusVariant(true));
    QDBusConnection::sessionBus().asyncCall(call);
}

void openSoundSettings()
{
    startFirst(
        {{"gnome-control-center", {"sound"}},
         {"systemsettings", {"kcm_pulseaudio"}},
         {"cinnamon-settings", {"sound"}},
         {"mate-volume-control", {}},
         {"pavucontrol", {}}});
}

void openCameraSettings()
{
    startFirst({{"gnome-control-center", {"camera"}}, {"systemsettings", {}}});
}

} // namespace zento
