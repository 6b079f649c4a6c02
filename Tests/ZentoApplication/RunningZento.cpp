#include "ZentoApplication/RunningZento.h"

#include "Zento/Demo/DesktopWindows.h"
#include "Zento/Demo/Programs.h"
#include "Zento/Demo/Waiting.h"
#include "Zento/Demo/XConnection.h"
#include "ZentoCore/FileIO.h"

#include <algorithm>
#include <csignal>

namespace zento::test {

namespace {

constexpr double kPatience = 120; // seconds that only a fault takes

} // namespace

RunningZento::RunningZento(
    std::string_view settings,
    std::string_view defaults,
    const std::function<void(const std::filesystem::path&)>& prepare)
{
    const auto& home = m_desktop.home();
    home.writeFile(".config/Zento/settings.json", settings);
    home.writeFile(".config/Zento/Zento.ini", defaults);
    if (prepare) {
        prepare(home.makeFolder("Videos/Zento"));
    }
    switchAccessibilityOn();
    const std::string& path = m_desktop.environment().at("PATH");
    const auto notes = home.writeFile("notes.txt", "Notes\n");
    m_desktop.start({requireProgram("l3afpad", "l3afpad", path), notes});
    const std::string address = accessibilityAddress();
    m_finder.emplace(address);
    m_actor.emplace(m_desktop.display(), address);
    m_hand.emplace(m_desktop.display(), 1);
    await([&] { return isShown(editor()); }, "The editor does not open");
    m_zento = m_desktop.start({ZENTO_PROGRAM});
    await(
        [&] { return isShown(element("push button", "Record")); },
        "Zento does not open; " + messages());
}

ElementQuery
RunningZento::element(const std::string& role, const std::string& name, const std::string& window)
{
    return {.application = "Zento", .window = window, .role = role, .name = name, .text = {}};
}

ElementQuery RunningZento::editor()
{
    return {.application = "l3afpad", .window = {}, .role = "text", .name = {}, .text = {}};
}

void RunningZento::await(const ElementQuery& query) const
{
    await(
        [&] { return isShown(query); },
        description(query) + " does not come; the programs said: " + messages());
}

void RunningZento::click(const ElementQuery& query)
{
    await(query);
    m_actor->perform(ClickStep{query}, {});
}

void RunningZento::choose(const ElementQuery& query, const ElementQuery& item)
{
    await(query);
    m_actor->perform(MenuStep{.target = query, .item = item}, {});
}

void RunningZento::drag(Vec2 from, Vec2 to)
{
    m_hand->moveTo(from, 8, {});
    m_hand->dragTo(to, {});
}

void RunningZento::doubleClick(Vec2 place)
{
    m_hand->moveTo(place, 8, {});
    m_hand->doubleClick({});
}

/// As a screen reader does when it starts.
void RunningZento::switchAccessibilityOn()
{
    const std::string& path = m_desktop.environment().at("PATH");
    const pid_t call = m_desktop.start(
        {requireProgram("dbus-send", "dbus-bin", path),
         "--session",
         "--print-reply",
         "--dest=org.a11y.Bus",
         "/org/a11y/bus",
         "org.freedesktop.DBus.Properties.Set",
         "string:org.a11y.Status",
         "string:IsEnabled",
         "variant:boolean:true"});
    await([&] { return !ProcessGroup::isRunning(call); }, "The accessibility bus does not answer");
}

std::string RunningZento::accessibilityAddress() const
{
    const XConnection connection(m_desktop.display());
    std::string address;
    await(
        [&] {
            address = rootText(connection, "AT_SPI_BUS");
            return !address.empty();
        },
        "The accessibility bus does not come up");
    return address;
}

void RunningZento::terminate() const
{
    kill(m_zento, SIGTERM);
    await([&] { return !ProcessGroup::isRunning(m_zento); }, "Zento does not end");
}

std::vector<std::filesystem::path> RunningZento::recordings() const
{
    const auto folder = m_desktop.home().path() / "Videos/Zento";
    std::vector<std::filesystem::path> bundles;
    if (std::filesystem::exists(folder)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".zento") {
                bundles.push_back(entry.path());
            }
        }
    }
    return bundles;
}

std::filesystem::path RunningZento::trash() const
{
    return m_desktop.home().path() / ".local/share/Trash/files";
}

std::string RunningZento::messages() const
{
    return readFile(m_desktop.log());
}

void RunningZento::await(const std::function<bool()>& condition, const std::string& what)
{
    waitUntil(condition, kPatience, what, {});
}

} // namespace zento::test
