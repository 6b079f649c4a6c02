#pragma once

#include "Zento/Demo/PrivateDesktop.h"
#include "ZentoCapture/Desktop.h"
#include "ZentoCore/Geometry.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zento {

/// Waits until something holds. False if it does not within a time that only a fault takes.
bool eventually(const std::function<bool()>& condition);

struct DisconnectXcb {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XcbConnection = std::unique_ptr<xcb_connection_t, DisconnectXcb>;

/// Throws when there is no server.
XcbConnection connectTo(const std::string& display);

xcb_window_t rootOf(xcb_connection_t* connection);

/// Until the server has done all it was asked on this connection.
void roundTrip(xcb_connection_t* connection);

/// Hands on mouse and keyboard. Every act has happened when the call returns.
class TestUser {
public:
    explicit TestUser(const std::string& display);
    ~TestUser();

    void move(int x, int y);
    void press(std::uint8_t button);
    void release(std::uint8_t button);
    void click(std::uint8_t button);
    void pressKey(std::uint8_t code);
    void releaseKey(std::uint8_t code);
    void type(std::uint8_t code);

private:
    void act(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);

    XcbConnection m_connection;
    xcb_window_t m_root = 0;
};

/// A window of one colour, which a press of a button changes: black, white, black, …
class ColourWindow {
public:
    ColourWindow(const std::string& display, int x, int y, int width, int height);
    ~ColourWindow(); // nothing is left of it on the screen
    ColourWindow(const ColourWindow&) = delete;
    ColourWindow& operator=(const ColourWindow&) = delete;

    void setColour(std::uint32_t rgb); // on the screen when it returns
    void moveTo(int x, int y);

    std::uint32_t id() const { return m_window; }

private:
    void run(const std::stop_token& stop);

    XcbConnection m_connection;
    xcb_window_t m_window = 0;
    std::jthread m_thread;
};

/// Displays side by side, in place of the one a server without hardware has.
class TestMonitors {
public:
    TestMonitors(const std::string& display, const std::vector<Rect>& rects); // named M0, M1, …
    ~TestMonitors();

    void unplug(std::size_t index);
    void resizeScreen(int width, int height); // at most what the server was started with

private:
    XcbConnection m_connection;
    std::vector<xcb_atom_t> m_names;
};

/// A test on a desktop of its own, one for all tests of the process.
class DesktopTest : public testing::Test {
protected:
    static constexpr int kWidth = 640;
    static constexpr int kHeight = 360;

    static PrivateDesktop& stage();
    static void endStage(); // for a process that ends within the test
    static const std::string& display() { return stage().display(); }

    std::unique_ptr<Desktop> m_desktop = openDesktop(display());
    TestUser m_user{display()};
};

} // namespace zento
