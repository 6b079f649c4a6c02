#include "PrivateSession.h"

#include "TestSupport/QtEnvironment.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <xcb/xtest.h>

#include <chrono>
#include <stdexcept>
#include <vector>

namespace zento::test {

namespace {

// NOLINTNEXTLINE(cert-err58-cpp): how the library is told
const testing::Environment* const kEnvironment =
    testing::AddGlobalTestEnvironment(new QtEnvironment);

} // namespace

bool eventually(const std::function<bool()>& condition)
{
    const QDeadlineTimer deadline(20'000);
    while (!condition() && !deadline.hasExpired()) {
        // With pauses: asking a server without end leaves nobody else a turn.
        QEventLoop events;
        QTimer::singleShot(10, &events, &QEventLoop::quit);
        events.exec();
    }
    return condition();
}

Keyboard::Keyboard(const std::string& display)
    : m_connection(xcb_connect(display.c_str(), nullptr))
{
    if (xcb_connection_has_error(m_connection) != 0) {
        throw std::runtime_error("no server at " + display);
    }
}

Keyboard::~Keyboard()
{
    xcb_disconnect(m_connection);
}

void Keyboard::strike(std::initializer_list<std::uint8_t> codes)
{
    // A press in the millisecond of a release is what a held key does, not a hand.
    const auto now = [] {
        return std::chrono::floor<std::chrono::milliseconds>(std::chrono::steady_clock::now());
    };
    for (const auto start = now(); now() == start;) {
    }
    const std::vector<std::uint8_t> keys(codes);
    for (const std::uint8_t key : keys) {
        fake(XCB_KEY_PRESS, key);
    }
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        fake(XCB_KEY_RELEASE, *key);
    }
    settle();
}

void Keyboard::fake(std::uint8_t type, std::uint8_t code)
{
    xcb_test_fake_input(m_connection, type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

/// A reply comes after everything before it has been done.
void Keyboard::settle()
{
    free(xcb_get_input_focus_reply( // NOLINT: libxcb's contract
        m_connection,
        xcb_get_input_focus(m_connection),
        nullptr));
}

void Keyboard::exchange(std::uint8_t first, std::uint8_t second)
{
    auto* const reply = xcb_get_keyboard_mapping_reply(
        m_connection, xcb_get_keyboard_mapping(m_connection, first, 1), nullptr);
    auto* const other = xcb_get_keyboard_mapping_reply(
        m_connection, xcb_get_keyboard_mapping(m_connection, second, 1), nullptr);
    const auto set = [&](std::uint8_t code, xcb_get_keyboard_mapping_reply_t* from) {
        xcb_change_keyboard_mapping(
            m_connection,
            1,
            code,
            from->keysyms_per_keycode,
            xcb_get_keyboard_mapping_keysyms(from));
    };
    set(first, other);
    set(second, reply);
    free(reply); // NOLINT: libxcb's contract
    free(other); // NOLINT
    settle();
}

PrivateDesktop& SessionTest::desktop()
{
    static PrivateDesktop desktop({640, 480});
    return desktop;
}

QDBusConnection SessionTest::connectToBus()
{
    static int number = 0;
    const QString name = QString("test-%1").arg(++number);
    m_connections.push_back(name);
    const std::string& address = desktop().environment().at("DBUS_SESSION_BUS_ADDRESS");
    return QDBusConnection::connectToBus(QString::fromStdString(address), name);
}

SessionTest::~SessionTest()
{
    for (const QString& name : m_connections) {
        QDBusConnection::disconnectFromBus(name);
    }
}

} // namespace zento::test
