#include "Zento/Demo/PrivateDesktop.h"

#include "Zento/Demo/DesktopWindows.h"
#include "Zento/Demo/Programs.h"
#include "Zento/Demo/Waiting.h"
#include "Zento/Demo/XConnection.h"
#include "ZentoCore/Error.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace zento {

namespace {

// Measured on two busy cores: the server reports after 0.3 s, the others after 0.1 s.
constexpr double kStartSeconds = 15;
constexpr double kOpenSeconds = 20; // until a program asks for the accessibility bus

/// A click focuses and raises, title bars drag: what the demo's windows need and no more.
constexpr std::string_view kWindowManagerSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><focusLast>yes</focusLast></focus>
  <placement><policy>Smart</policy><center>yes</center></placement>
  <theme>
    <name>Clearlooks</name>
    <titleLayout>LIMC</titleLayout>
    <keepBorder>yes</keepBorder>
    <font place="ActiveWindow"><name>Inter</name><size>11</size><weight>bold</weight></font>
    <font place="InactiveWindow"><name>Inter</name><size>11</size><weight>bold</weight></font>
  </theme>
  <desktops><number>1</number><popupTime>0</popupTime></desktops>
  <keyboard/>
  <mouse>
    <dragThreshold>1</dragThreshold>
    <doubleClickTime>400</doubleClickTime>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
      <mousebind button="Right" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
    <context name="Titlebar">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
      <mousebind button="Left" action="Drag"><action name="Move"/></mousebind>
    </context>
    <context name="Close">
      <mousebind button="Left" action="Click"><action name="Close"/></mousebind>
    </context>
  </mouse>
</openbox_config>
)";

constexpr std::string_view kToolkitSettings = R"([Settings]
gtk-theme-name=Adwaita
gtk-icon-theme-name=Adwaita
gtk-cursor-theme-name=Adwaita
gtk-font-name=Inter 12
gtk-xft-antialias=1
gtk-xft-hinting=1
gtk-xft-hintstyle=hintslight
gtk-recent-files-enabled=0
)";

/// The one service that is started when it is asked for. A machine's others, its portals say, mount
/// and ask, and leave processes that no group holds.
constexpr std::string_view kAccessibilityService =
    "/usr/share/dbus-1/services/org.a11y.Bus.service";

constexpr std::string_view kBusSettings = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

Environment baseEnvironment(const PrivateFolder& home)
{
    return {
        {"PATH", programSearchPath()},
        {"LANG", "C.UTF-8"},
        {"HOME", home.path().string()},
        {"XDG_CONFIG_HOME", home.makeFolder(".config").string()},
        {"XDG_CACHE_HOME", home.makeFolder(".cache").string()},
        {"XDG_DATA_HOME", home.makeFolder(".local/share").string()},
        {"XDG_RUNTIME_DIR", home.makeFolder(".run").string()},
        // Settings a program changes must not reach the user's own.
        {"GSETTINGS_BACKEND", "memory"},
        {"GTK_OVERLAY_SCROLLING", "1"},
        {"NO_AT_BRIDGE", "0"}};
}

/// The first line that arrives at `descriptor`; nothing when the other side closes it first.
std::optional<std::string>
readLine(int descriptor, const std::string& name, const std::stop_token& stop)
{
    std::string text;
    bool isClosed = false;
    const auto lineIsThere = [&] {
        pollfd waiting{.fd = descriptor, .events = POLLIN, .revents = 0};
        std::array<char, 256> buffer{};
        while (!isClosed && !text.contains('\n') && poll(&waiting, 1, 0) > 0) {
            const auto count = read(descriptor, buffer.data(), buffer.size());
            isClosed = count <= 0;
            text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
        return isClosed || text.contains('\n');
    };
    waitUntil(lineIsThere, kStartSeconds, name + " did not report that it is ready", stop);
    const std::size_t end = text.find('\n');
    return end == std::string::npos ? std::nullopt : std::optional(text.substr(0, end));
}

} // namespace

PrivateDesktop::PrivateDesktop(DesktopSize size, const std::stop_token& stop)
    : m_home("zento-desktop-")
    , m_environment(baseEnvironment(m_home))
{
    m_home.writeFile(".config/gtk-3.0/settings.ini", kToolkitSettings);
    startServer(size, stop);
    startSessionBus(stop);
    startWindowManager(stop);
}

pid_t PrivateDesktop::start(const std::vector<std::string>& command)
{
    return m_programs.start(command, m_environment, log());
}

std::string PrivateDesktop::awaitAccessibilityBus(const std::stop_token& stop) const
{
    const XConnection connection(m_display);
    std::string address;
    const auto isUp = [&] {
        address = rootText(connection, "AT_SPI_BUS"); // it leaves it there
        return !address.empty();
    };
    waitUntil(isUp, kOpenSeconds, "The accessibility bus did not come up", stop);
    return address;
}

void PrivateDesktop::requireRunning() const
{
    for (const Member& member : m_members) {
        if (!ProcessGroup::isRunning(member.program)) {
            throw Error(
                ErrorCode::kDesktopFailed,
                "The desktop's " + member.name + " has ended by itself.");
        }
    }
}

std::string PrivateDesktop::startReporting(
    const std::string& name, const std::vector<std::string>& command, const std::stop_token& stop)
{
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
        throw systemError("start", command.front(), errno);
    }
    const auto closeEnd = [](int* end) { close(*end); };
    const std::unique_ptr<int, decltype(closeEnd)> reading(&pipe[0], closeEnd);
    std::unique_ptr<int, decltype(closeEnd)> writing(&pipe[1], closeEnd);
    const pid_t program = m_programs.start(command, m_environment, log(), pipe[1]);
    writing.reset();
    m_members.push_back({name, program});
    const auto line = readLine(pipe[0], name, stop);
    if (!line) {
        throw Error(ErrorCode::kDesktopFailed, name + " ended before it was ready.");
    }
    return *line;
}

void PrivateDesktop::startServer(DesktopSize size, const std::stop_token& stop)
{
    const auto program = requireProgram("Xvfb", "xvfb", m_environment["PATH"]);
    const std::string number = startReporting(
        "Xvfb",
        {program,
         "-displayfd",
         "3",
         "-screen",
         "0",
         std::to_string(size.width) + "x" + std::to_string(size.height) + "x24",
         "-noreset",
         "-nolisten",
         "tcp"},
        stop);
    m_display = ":" + number;
    m_environment["DISPLAY"] = m_display;
}

void PrivateDesktop::startSessionBus(const std::stop_token& stop)
{
    const auto program = requireProgram("dbus-daemon", "dbus", m_environment["PATH"]);
    const auto services = m_home.makeFolder(".run/services");
    std::filesystem::create_symlink(
        kAccessibilityService, services / std::filesystem::path(kAccessibilityService).filename());
    const auto settings = m_home.writeFile(".run/session.conf", kBusSettings);
    const std::filesystem::path socket = m_home.path() / ".run" / "bus";
    m_environment["DBUS_SESSION_BUS_ADDRESS"] = startReporting(
        "dbus-daemon",
        {program,
         "--config-file=" + settings.string(),
         "--nofork",
         "--nopidfile",
         "--print-address=3",
         "--address=unix:path=" + socket.string()},
        stop);
}

void PrivateDesktop::startWindowManager(const std::stop_token& stop)
{
    const auto program = requireProgram("openbox", "openbox", m_environment["PATH"]);
    const auto settings = m_home.writeFile(".config/openbox/rc.xml", kWindowManagerSettings);
    m_members.push_back({"openbox", start({program, "--sm-disable", "--config-file", settings})});
    const XConnection connection(m_display);
    const WindowManagerProbe probe(connection);
    const auto isReady = [&] {
        requireRunning();
        return probe.isAnswered();
    };
    waitUntil(isReady, kStartSeconds, "openbox did not take over the windows", stop);
}

} // namespace zento
