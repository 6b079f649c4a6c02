#pragma once

#include "Zento/Demo/PrivateDesktop.h"

#include <QDBusConnection>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace zento::test {

/// Hands on events until something holds. False if it does not within a time that only a fault
/// takes.
bool eventually(const std::function<bool()>& condition);

/// Hands on mouse and keyboard of a display: every key is pressed, then released in reverse.
class Keyboard {
public:
    explicit Keyboard(const std::string& display);
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    void strike(std::initializer_list<std::uint8_t> codes);

    /// Gives two keys each other's signs.
    void exchange(std::uint8_t first, std::uint8_t second);

    // Codes of the usual keyboard.
    static constexpr std::uint8_t kControl = 37;
    static constexpr std::uint8_t kAlt = 64;
    static constexpr std::uint8_t kCapsLock = 66;
    static constexpr std::uint8_t kNumLock = 77;
    static constexpr std::uint8_t kSuper = 133;
    static constexpr std::uint8_t kR = 27;
    static constexpr std::uint8_t kT = 28;

private:
    void fake(std::uint8_t type, std::uint8_t code);
    void settle();

    xcb_connection_t* m_connection;
};

/// A test with a desktop and a session bus of its own, one for all tests of the process.
class SessionTest : public testing::Test {
protected:
    static PrivateDesktop& desktop();
    static const std::string& display() { return desktop().display(); }

    /// A further connection to the bus, as another program has.
    QDBusConnection connectToBus();

    ~SessionTest() override;

private:
    std::vector<QString> m_connections;
};

} // namespace zento::test
