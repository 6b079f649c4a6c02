#include "WaylandStage/WaylandStage.h"

#include "Zento/Demo/Programs.h"
#include "Zento/Demo/Waiting.h"
#include "ZentoCore/FileIO.h"

#include <gio/gio.h>
#include <signal.h>

#include <cmath>
#include <cstdlib>
#include <sstream>

#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento::test {

namespace {

constexpr double kPatience = 20; // seconds
constexpr std::chrono::milliseconds kAnswer{10'000};
constexpr const char* kBackendName = "org.freedesktop.impl.portal.desktop.stage";
constexpr BusInterface kControl{
    kBackendName, "/org/freedesktop/portal/desktop", "dev.halvek.zento.Stage"};
constexpr BusInterface kDisplays{
    "org.gnome.Mutter.DisplayConfig",
    "/org/gnome/Mutter/DisplayConfig",
    "org.gnome.Mutter.DisplayConfig"};

constexpr std::string_view kBackend = R"([portal]
DBusName=org.freedesktop.impl.portal.desktop.stage
Interfaces=org.freedesktop.impl.portal.ScreenCast;org.freedesktop.impl.portal.RemoteDesktop;org.freedesktop.impl.portal.GlobalShortcuts;org.freedesktop.impl.portal.Screenshot;org.freedesktop.impl.portal.Access;
UseIn=stage
)";

/// Scales between the whole ones, points that are those of the programs, and windows in the middle.
constexpr std::string_view kSettings = R"([org/gnome/mutter]
center-new-windows=true
experimental-features=['scale-monitor-framebuffer']
)";

std::string program(const std::string& name, const std::string& package)
{
    return requireProgram(name, package, programSearchPath());
}

} // namespace

WaylandStage::WaylandStage()
    : m_home("zento-wayland-")
{
    const auto runtime = m_home.makeFolder("run");
    m_home.writeFile("portals/stage.portal", kBackend);
    m_home.writeFile(".config/glib-2.0/settings/keyfile", kSettings);
    m_environment = {
        {"PATH", programSearchPath()},
        {"LANG", "C.UTF-8"},
        {"HOME", m_home.path()},
        {"XDG_RUNTIME_DIR", runtime},
        {"XDG_SESSION_TYPE", "wayland"},
        {"XDG_CURRENT_DESKTOP", "stage"},
        {"XDG_DESKTOP_PORTAL_DIR", m_home.path() / "portals"},
        {"WAYLAND_DISPLAY", "stage"},
        {"QT_QPA_PLATFORM", "wayland"},
        {"GSETTINGS_BACKEND", "keyfile"}};
    for (const char* const name : {"DISPLAY", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_DATA_HOME"})
        ::unsetenv(name);
    startBus();
    for (const auto& [name, value] : m_environment)
        ::setenv(name.c_str(), value.c_str(), 1);
    m_bus = std::make_unique<SessionBus>();
    startServices();
}

WaylandStage::~WaylandStage() = default;

void WaylandStage::startBus()
{
    const auto socket = m_home.path() / "run" / "bus";
    m_environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + socket.string();
    start(
        "bus.log",
        {program("dbus-daemon", "dbus"),
         "--session",
         "--nofork",
         "--nopidfile",
         "--address=unix:path=" + socket.string()});
    waitUntil([&] { return std::filesystem::exists(socket); }, kPatience, "no session bus", {});
}

void WaylandStage::startServices()
{
    const auto runtime = m_home.path() / "run";
    start("pipewire.log", {program("pipewire", "pipewire")});
    waitUntil(
        [&] { return std::filesystem::exists(runtime / "pipewire-0"); },
        kPatience,
        "no PipeWire",
        {});
    start("wireplumber.log", {program("wireplumber", "wireplumber")});
    m_compositor = start(
        "compositor.log",
        {program("mutter", "mutter"),
         "--wayland",
         "--headless",
         "--no-x11",
         "--virtual-monitor",
         std::to_string(kWidth) + "x" + std::to_string(kHeight) + "@60",
         "--wayland-display",
         "stage"});
    start("backend.log", {"/usr/bin/python3", PORTAL_BACKEND});
    waitUntil(
        [&] {
            return owns("org.gnome.Mutter.ScreenCast") && owns("org.gnome.Mutter.RemoteDesktop");
        },
        kPatience,
        "no compositor",
        {});
    waitUntil([&] { return owns(kBackendName); }, kPatience, "no portal backend", {});
    startPortal();
}

void WaylandStage::startPortal()
{
    m_portal = start("portal.log", {"/usr/libexec/xdg-desktop-portal", "-v"});
    waitUntil([&] { return owns("org.freedesktop.portal.Desktop"); }, kPatience, "no portal", {});
}

bool WaylandStage::owns(const char* name)
{
    const Variant answer = m_bus->call(
        {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"},
        "NameHasOwner",
        g_variant_new("(s)", name),
        kAnswer);
    gboolean isOwned = FALSE;
    g_variant_get(answer.get(), "(b)", &isOwned);
    return isOwned != FALSE;
}

void WaylandStage::setScale(double scale)
{
    const Variant state = m_bus->call(kDisplays, "GetCurrentState", nullptr, kAnswer);
    guint32 serial = 0;
    const char* connector = nullptr;
    const char* mode = nullptr;
    GVariant* monitors = nullptr;
    GVariant* modes = nullptr;
    g_variant_get(
        state.get(), "(u@a((ssss)a(siiddada{sv})a{sv})@*@*)", &serial, &monitors, nullptr, nullptr);
    const Variant ownedMonitors(monitors);
    const Variant monitor(g_variant_get_child_value(monitors, 0));
    g_variant_get(
        monitor.get(),
        "((&s&s&s&s)@a(siiddada{sv})@a{sv})",
        &connector,
        nullptr,
        nullptr,
        nullptr,
        &modes,
        nullptr);
    const Variant ownedModes(modes);
    const Variant first(g_variant_get_child_value(modes, 0));
    g_variant_get_child(first.get(), 0, "&s", &mode);
    const std::string layout = "[(0, 0, " + std::to_string(scale) + ", uint32 0, true, [('"
                               + connector + "', '" + mode + "', @a{sv} {})])]";
    GVariant* const logical =
        g_variant_new_parsed(("@a(iiduba(ssa{sv})) " + layout).c_str(), nullptr);
    m_bus->call(
        kDisplays,
        "ApplyMonitorsConfig",
        g_variant_new(
            "(uu@a(iiduba(ssa{sv}))@a{sv})",
            serial,
            1U,
            logical,
            g_variant_new_parsed("@a{sv} {}", nullptr)),
        kAnswer);
}

pid_t WaylandStage::start(const std::string& name, const std::vector<std::string>& command)
{
    return m_programs.start(command, m_environment, m_home.path() / name);
}

pid_t WaylandStage::startClient(std::vector<std::string> sizes)
{
    sizes.insert(sizes.begin(), WAYLAND_CLIENT);
    return startInFront(sizes);
}

pid_t WaylandStage::startPage()
{
    return startInFront({WAYLAND_CLIENT, "page"});
}

pid_t WaylandStage::startGtkClient(const std::string& state)
{
    return startInFront({"/usr/bin/python3", GTK_CLIENT, state});
}

pid_t WaylandStage::startInFront(const std::vector<std::string>& command)
{
    endClient();
    m_client = start("client.log", command);
    waitUntil([&] { return !clientLines().empty(); }, kPatience, "no client", {});
    return m_client;
}

void WaylandStage::endClient()
{
    if (m_client != 0) {
        ::kill(m_client, SIGTERM);
        waitUntil(
            [&] { return !ProcessGroup::isRunning(m_client); }, kPatience, "a client stays", {});
        std::filesystem::remove(m_home.path() / "client.log");
        m_client = 0;
    }
}

std::vector<std::string> WaylandStage::clientLines() const
{
    std::vector<std::string> lines;
    const auto log = m_home.path() / "client.log";
    if (std::filesystem::exists(log)) {
        std::istringstream text(readFile(log));
        for (std::string line; std::getline(text, line) && !text.eof();)
            lines.push_back(line);
    }
    return lines;
}

Variant WaylandStage::tell(const char* method, _GVariant* arguments)
{
    return m_bus->call(kControl, method, arguments, kAnswer);
}

void WaylandStage::answer(const std::string& answer)
{
    tell("SetAnswer", g_variant_new("(s)", answer.c_str()));
}

void WaylandStage::setCursorModes(unsigned modes)
{
    tell("SetCursorModes", g_variant_new("(u)", modes));
    ::kill(m_portal, SIGTERM);
    waitUntil(
        [&] {
            return !ProcessGroup::isRunning(m_portal) && !owns("org.freedesktop.portal.Desktop");
        },
        kPatience,
        "the portal goes on",
        {});
    startPortal();
}

void WaylandStage::lendDevices(unsigned types)
{
    tell("SetDevices", g_variant_new("(u)", types));
}

unsigned WaylandStage::dialogs()
{
    guint32 count = 0;
    g_variant_get(tell("Dialogs").get(), "(u)", &count);
    return count;
}

void WaylandStage::revoke()
{
    tell("Revoke");
}

void WaylandStage::press(const std::string& shortcut)
{
    tell("Press", g_variant_new("(s)", shortcut.c_str()));
}

std::vector<std::string> WaylandStage::shortcuts()
{
    const Variant answer = tell("Shortcuts");
    GVariantIter* entries = nullptr;
    g_variant_get(answer.get(), "(as)", &entries);
    std::vector<std::string> all;
    for (const char* entry = nullptr; g_variant_iter_next(entries, "&s", &entry) != FALSE;)
        all.emplace_back(entry);
    g_variant_iter_free(entries);
    return all;
}

void WaylandStage::setShot(const std::filesystem::path& picture)
{
    tell("SetShot", g_variant_new("(s)", ("file://" + picture.string()).c_str()));
}

void WaylandStage::forgetCamera()
{
    constexpr const char* kStore = "org.freedesktop.impl.portal.PermissionStore";
    m_bus->call(
        {kStore, "/org/freedesktop/impl/portal/PermissionStore", kStore},
        "Delete",
        g_variant_new("(ss)", "devices", "camera"),
        kAnswer);
}

void WaylandStage::killCompositor()
{
    ::kill(m_compositor, SIGKILL);
}

} // namespace zento::test
