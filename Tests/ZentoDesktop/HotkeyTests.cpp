#include "PrivateSession.h"
#include "Zento/Desktop/DesktopWindows.h"
#include "Zento/Desktop/X11Hotkeys.h"

#include <algorithm>
#include <array>
#include <optional>

namespace zento::test {

namespace {

using HotkeyTest = SessionTest;

const KeyStroke kStroke{.key = "r", .super = true, .alt = true};

TEST_F(HotkeyTest, ReachesUsWhateverTheLocksAre)
{
    X11Hotkeys hotkeys(display());
    Keyboard keyboard(display());
    int pressed = 0;
    auto hotkey = hotkeys.registerHotkey(kStroke, {}, [&] { ++pressed; });
    ASSERT_TRUE(hotkey);
    keyboard.strike({Keyboard::kSuper, Keyboard::kAlt, Keyboard::kR});
    EXPECT_TRUE(eventually([&] { return pressed == 1; }));
    for (const std::uint8_t lock : {Keyboard::kCapsLock, Keyboard::kNumLock}) {
        keyboard.strike({lock});
        const int before = pressed;
        keyboard.strike({Keyboard::kSuper, Keyboard::kAlt, Keyboard::kR});
        EXPECT_TRUE(eventually([&] { return pressed == before + 1; })) << int(lock);
    }
    keyboard.strike({Keyboard::kSuper, Keyboard::kR});
    keyboard.strike({Keyboard::kSuper, Keyboard::kAlt, Keyboard::kT});
    keyboard.strike({Keyboard::kSuper, Keyboard::kAlt, Keyboard::kR}); // behind the others
    EXPECT_TRUE(eventually([&] { return pressed == 4; }));
    EXPECT_EQ(pressed, 4);
}

TEST_F(HotkeyTest, AKeyThatAnotherHasIsRefusedUntilItIsGivenBack)
{
    X11Hotkeys first(display());
    X11Hotkeys second(display());
    auto taken = first.registerHotkey(kStroke, {}, [] {});
    ASSERT_TRUE(taken);
    EXPECT_EQ(second.registerHotkey(kStroke, {}, [] {}), nullptr);
    EXPECT_TRUE(second.registerHotkey({.key = "t", .super = true}, {}, [] {}));
    taken.reset();
    // Two connections: the server may hear the second before the first has given back.
    EXPECT_TRUE(eventually([&] { return second.registerHotkey(kStroke, {}, [] {}) != nullptr; }));
    EXPECT_EQ(second.registerHotkey({.key = "no such key"}, {}, [] {}), nullptr);
}

TEST_F(HotkeyTest, FollowsTheLayout)
{
    X11Hotkeys hotkeys(display());
    Keyboard keyboard(display());
    int pressed = 0;
    const auto hotkey = hotkeys.registerHotkey(kStroke, {}, [&] { ++pressed; });
    ASSERT_TRUE(hotkey);
    keyboard.exchange(Keyboard::kR, Keyboard::kT);
    // The server tells of the change in its own time; the key that gave the sign before is free
    // then.
    X11Hotkeys other(display());
    EXPECT_TRUE(eventually([&] {
        return other.registerHotkey({.key = "t", .super = true, .alt = true}, {}, [] {}) != nullptr;
    }));
    keyboard.strike({Keyboard::kSuper, Keyboard::kAlt, Keyboard::kT});
    EXPECT_TRUE(eventually([&] { return pressed == 1; }));
    keyboard.exchange(Keyboard::kR, Keyboard::kT);
}

TEST_F(HotkeyTest, AHotkeyMayReplaceItself)
{
    X11Hotkeys hotkeys(display());
    Keyboard keyboard(display());
    int pressed = 0;
    std::unique_ptr<GlobalHotkey> hotkey;
    hotkey = hotkeys.registerHotkey(kStroke, {}, [&] {
        ++pressed;
        hotkey.reset();
        hotkey = hotkeys.registerHotkey(kStroke, {}, [&] { pressed += 10; });
    });
    keyboard.strike({Keyboard::kSuper, Keyboard::kAlt, Keyboard::kR});
    EXPECT_TRUE(eventually([&] { return pressed == 1; }));
    keyboard.strike({Keyboard::kSuper, Keyboard::kAlt, Keyboard::kR});
    EXPECT_TRUE(eventually([&] { return pressed == 11; }));
}

TEST_F(HotkeyTest, WithoutAServerThereAreNone)
{
    X11Hotkeys hotkeys(":4095");
    EXPECT_FALSE(hotkeys.isAvailable());
    EXPECT_EQ(hotkeys.registerHotkey(kStroke, {}, [] {}), nullptr);
    EXPECT_TRUE(desktopWindows(":4095").empty());
    EXPECT_TRUE(windowThumbnail(1, 320, ":4095").isNull());
}

/// A window of one colour with a title.
class TitledWindow {
public:
    TitledWindow(const std::string& display, std::uint16_t width, std::uint16_t height)
        : m_connection(xcb_connect(display.c_str(), nullptr))
        , m_window(xcb_generate_id(m_connection))
    {
        const xcb_screen_t* const screen =
            xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        const std::array<std::uint32_t, 1> red{0xff0000};
        xcb_create_window(
            m_connection,
            XCB_COPY_FROM_PARENT,
            m_window,
            screen->root,
            0,
            0,
            width,
            height,
            0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT,
            screen->root_visual,
            XCB_CW_BACK_PIXEL,
            red.data());
        const std::string title = "Harbour – Invoices";
        xcb_change_property(
            m_connection,
            XCB_PROP_MODE_REPLACE,
            m_window,
            XCB_ATOM_WM_NAME,
            XCB_ATOM_STRING,
            8,
            static_cast<std::uint32_t>(title.size()),
            title.data());
        xcb_map_window(m_connection, m_window);
        xcb_flush(m_connection);
    }
    ~TitledWindow() { xcb_disconnect(m_connection); }
    TitledWindow(const TitledWindow&) = delete;
    TitledWindow& operator=(const TitledWindow&) = delete;

    std::uint32_t id() const { return m_window; }

private:
    xcb_connection_t* m_connection;
    xcb_window_t m_window;
};

TEST_F(HotkeyTest, WindowsAreListedFromTheFrontWithTheirPictures)
{
    const auto areThere = [&](std::size_t count) {
        const auto windows = desktopWindows(display());
        return windows.size() == count
               && std::ranges::all_of(windows, [](const auto& w) { return w.width >= 320; });
    };
    // openbox lists a window before its frame has grown around it, and one of ten times, just
    // started, leaves the frame at three pixels for good: then the window comes anew.
    std::optional<TitledWindow> backWindow;
    std::optional<TitledWindow> frontWindow; // covers it
    const auto open = [&](std::optional<TitledWindow>& window,
                          std::uint16_t width,
                          std::uint16_t height,
                          std::size_t count) {
        constexpr int kPatience = 100;
        int asked = 0;
        return eventually([&] {
            if (asked++ % kPatience == 0)
                window.emplace(display(), width, height);
            return areThere(count);
        });
    };
    ASSERT_TRUE(open(backWindow, 320, 240, 1));
    ASSERT_TRUE(open(frontWindow, 400, 300, 2));
    const TitledWindow& back = *backWindow;
    const TitledWindow& front = *frontWindow;
    const auto windows = desktopWindows(display());
    EXPECT_EQ(windows.at(0).id, front.id());
    EXPECT_EQ(windows.at(1).id, back.id());
    EXPECT_EQ(windows.at(1).title, "Harbour – Invoices");
    EXPECT_TRUE(isPickable(windows.at(1)));
    EXPECT_GE(windows.at(1).width, 320);

    const QImage picture = windowThumbnail(back.id(), 160, display());
    EXPECT_EQ(picture.width(), 160);
    EXPECT_EQ(picture.pixelColor(80, 80), QColor(255, 0, 0));
    EXPECT_TRUE(windowThumbnail(1, 160, display()).isNull());
}

} // namespace

} // namespace zento::test
